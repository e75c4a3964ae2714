#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"

/// Makes an exchange model of the open one, whose file lies in `folder` (with a separator at its end), with its record.
/// False, with *error set, when it cannot be one.
bool ExchangeFromScene(const std::string& folder, ExchangeModel* model, std::string* error);

/// What is not finite has no form in a file: *error tells the first of it.
[[nodiscard]] bool AllFinite(std::string* error);

/// The names that ExchangeFromScene gives the bones of the scene.
[[nodiscard]] std::vector<std::string> BoneNamesInFiles();
/// The same of the materials, and behind them of the names that only meshes have. `names` are all these names.
[[nodiscard]] std::vector<std::string> MaterialNamesInFiles(std::vector<std::string>* names);
[[nodiscard]] std::vector<std::string> MeshNamesInFiles();

/// Where the skin and the shadow stand, which the window shows alike: as the first instance of the skin says.
[[nodiscard]] ExchangePlacement SkinPlacement();
/// Where any other mesh stands: as its instances say, or at the origin.
[[nodiscard]] std::vector<ExchangePlacement> PlacementsOfMesh(const MvmMesh& mesh);
