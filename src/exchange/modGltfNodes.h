#pragma once

#include <string>
#include <vector>

#include "modMatrix.h"
#include "modTinyGltf.h"

/// The nodes of a file that its scene shows.
struct NodeTree {
    std::vector<int> Order{};     ///< parents in front of their children
    std::vector<int> Parents{};   ///< of each node; -1 for a root or one that is not shown
    std::vector<Matrix> Worlds{}; ///< of each node
};

/// Fails for a circle, a node with two parents, a number that leads nowhere, or a transform that is not finite.
bool ReadNodes(const tinygltf::Model& file, NodeTree* tree, std::string* error);
