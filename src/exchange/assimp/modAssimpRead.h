#pragma once

#include <string>

#include "modExchangeModel.h"

/// Reads a model of another program: .fbx, .dae, .obj or .x. Nothing but files of its folder is looked at. Corners stay
/// apart, faces become triangles, all stands in the pose in which the meshes were bound to their bones; lengths are
/// metres where the file says what its own are. *error says why it fails.
bool ReadByAssimp(const std::string& path, ExchangeModel* model, std::string* error);
