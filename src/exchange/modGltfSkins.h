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

/// What a vertex leans on.
struct VertexJoint {
    int32_t Joint = -1; ///< of the skin; -1 for a vertex without weight
    float Dropped = 0;  ///< the share of its weight that other joints had, 0 to 1
};
/// The joint of each vertex, by all sets of joints of a primitive: the one with the largest share, the first in the skin
/// of several.
bool ReadJoints(const tinygltf::Model& file, const tinygltf::Primitive& primitive, size_t vertices, size_t joints,
                std::vector<VertexJoint>* result, std::string* error);
