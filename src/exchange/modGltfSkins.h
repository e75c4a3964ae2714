#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"
#include "modGltfNodes.h"

/// A skin of a file as the model takes it.
struct SkinInFile {
    std::vector<int32_t> Bones{};    ///< of each joint: its number in the exchange model; -1 for the joint of no bone
    std::vector<Matrix> ToScene{};   ///< of each joint: from the mesh's own space to the scene, as the nodes stand
    Matrix Placing = identityMatrix; ///< from the mesh's own space to the scene, in the bind pose
    bool IsPosed = false;            ///< the nodes do not stand as the mesh was bound
    bool IsLoose = false;            ///< each vertex is held in the space of its joint: ToScene places it
};

/// Reads all skins, and their joints as bones of the model, in order.
bool ReadSkins(const tinygltf::Model& file, const NodeTree& tree, ExchangeModel* model, std::vector<SkinInFile>* skins,
               std::string* error);

/// What became of weights that are not rigid.
struct WeightLoss {
    size_t Vertices = 0;
    double Dropped = 0; ///< sum of the shares that other joints had, 0 to 1 for each vertex
    double Largest = 0;
};

/// The joint of each vertex, by all sets of joints of a primitive: the one with the largest share, the first in the skin
/// of several. -1 for a vertex without weight.
bool ReadJoints(const tinygltf::Model& file, const tinygltf::Primitive& primitive, size_t vertices, size_t joints,
                std::vector<int32_t>* result, WeightLoss* loss, std::string* error);
