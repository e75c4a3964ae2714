#pragma once

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "modModels.h"

/// What all commands that change a model are told.
struct EditOptions {
    std::vector<std::string> Models{};
    SaveTarget Save{};
    std::string Skin{};                     ///< mesh to be made the skin first; empty for what the file says
    std::string Shadow{};                   ///< the same for the shadow
    bool OnShadow = false;                  ///< the shadow is edited in place of the skin
    bool AcceptLosses = false;              ///< a save in place may drop what the file has and a load does not keep
    std::vector<std::string> Others{};      ///< files that the command reads beside the models
    std::function<void(bool saved)> Done{}; ///< is called at the end of each model in place of the line that tells it
};

/// Where the changed model goes.
void AddSaveOptions(CLI::App* command, SaveTarget* target);
/// The flag AcceptLosses.
void AddLosses(CLI::App* command, EditOptions* options);
/// The options of EditOptions.
void AddEditOptions(CLI::App* command, EditOptions* options);
/// The models, one or more.
void AddModels(CLI::App* command, std::vector<std::string>* models);

/// The tolerances of mirroring, which the command then finds in MirrorVertexThreshold and MirrorBoneThreshold.
void AddThresholds(CLI::App* command);

/// Opens each model, makes the meshes the skin and the shadow that the user named, edits, and saves when `edit` gives
/// Done. Puts one line for each model: how many vertices have another bone now. With `needsTarget` a model without the
/// mesh to be edited is refused. What the save drops of a file is told; a save in place that would make a damage final
/// is refused unless the user accepts it.
[[nodiscard]] ExitCode RunEdit(const EditOptions& options, bool needsTarget, const std::function<ExitCode()>& edit);
