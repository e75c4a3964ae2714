#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <assimp/scene.h>

#include "modExchangeModel.h"
#include "modFileListing.h"

/// Takes the materials that are used, one after the other, with their pictures.
struct MaterialTaker {
    const aiScene* Scene = nullptr;
    std::string Folder{}; ///< of the model, with a separator at its end; empty for the current one
    FolderNames Names{};
    std::map<uint32_t, int32_t> Taken{};       ///< number in the scene, index in the model
    std::map<std::string, int32_t> Pictures{}; ///< what the scene calls it, index in the model
};

/// The index of a material of the scene in the model; -1 when the scene has none of that number.
int32_t TakeMaterial(uint32_t number, MaterialTaker* taker, ExchangeModel* model);
