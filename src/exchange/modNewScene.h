#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"

/// What a new model is made with.
struct NewSceneOptions {
    std::string Skin{};   ///< the one skinned mesh that becomes the skin; empty for all of them, joined
    std::string Folder{}; ///< of the new model, with a separator at its end: its pictures go there
};

/// Fills the empty scene from an exchange model: from its record when that still fits all of it, else anew. *files are
/// the pictures to be written beside the model. False, with *error set, when it does not fit a model.
struct MapFile;
bool SceneFromExchange(const ExchangeModel& model, const NewSceneOptions& options, std::vector<MapFile>* files,
                       std::vector<std::string>* notes, std::string* error);
