#include "modGltfNodes.h"

#include <algorithm>

namespace {

Matrix LocalOf(const tinygltf::Node& node)
{
    if (node.matrix.size() == 16) {
        Matrix matrix{};
        std::copy(node.matrix.begin(), node.matrix.end(), matrix.begin());
        return matrix;
    }
    std::array<double, 3> move{};
    std::array<double, 4> turn{0, 0, 0, 1};
    std::array<double, 3> scale{1, 1, 1};
    const auto take = [](const std::vector<double>& from, auto* to) {
        if (from.size() == to->size()) {
            std::copy(from.begin(), from.end(), to->begin());
        }
    };
    take(node.translation, &move);
    take(node.rotation, &turn);
    take(node.scale, &scale);
    return MatrixOf(move, turn, scale);
}

/// The roots that the file shows: those of its scene, or all nodes without a parent.
std::vector<int> RootsOf(const tinygltf::Model& file)
{
    const auto scene = static_cast<size_t>(std::max(file.defaultScene, 0));
    if (scene < file.scenes.size()) {
        return file.scenes[scene].nodes;
    }
    std::vector<char> isChild(file.nodes.size());
    for (const tinygltf::Node& node : file.nodes) {
        for (const int child : node.children) {
            if (child >= 0 && static_cast<size_t>(child) < isChild.size()) {
                isChild[static_cast<size_t>(child)] = 1;
            }
        }
    }
    std::vector<int> roots;
    for (size_t node = 0; node < isChild.size(); ++node) {
        if (isChild[node] == 0) {
            roots.push_back(static_cast<int>(node));
        }
    }
    return roots;
}

} // namespace

bool ReadNodes(const tinygltf::Model& file, NodeTree* tree, std::string* error)
{
    std::vector<char> isSeen(file.nodes.size());
    const auto visit = [&](int node, int parent) {
        if (node < 0 || static_cast<size_t>(node) >= file.nodes.size() || isSeen[static_cast<size_t>(node)] != 0) {
            *error = "Its tree of nodes is damaged.";
            return false;
        }
        const auto index = static_cast<size_t>(node);
        isSeen[index] = 1;
        tree->Order.push_back(node);
        tree->Parents[index] = parent;
        const Matrix local = LocalOf(file.nodes[index]);
        tree->Worlds[index] = parent < 0 ? local : Multiply(tree->Worlds[static_cast<size_t>(parent)], local);
        if (!IsFinite(tree->Worlds[index])) {
            *error = "The transform of its node " + std::to_string(node) + " is not finite.";
            return false;
        }
        return true;
    };
    tree->Parents.assign(file.nodes.size(), -1);
    tree->Worlds.assign(file.nodes.size(), identityMatrix);
    for (const int root : RootsOf(file)) {
        if (!visit(root, -1)) {
            return false;
        }
    }
    size_t next = 0;
    while (next < tree->Order.size()) { // it grows on the way
        const int node = tree->Order[next++];
        for (const int child : file.nodes[static_cast<size_t>(node)].children) {
            if (!visit(child, node)) {
                return false;
            }
        }
    }
    return true;
}
