#include "modGltfSkins.h"

#include <algorithm>
#include <optional>

#include "modExchangeNames.h"
#include "modGltfAccessor.h"

namespace {

bool ReadBindings(const tinygltf::Model& file, const tinygltf::Skin& skin, std::vector<Matrix>* bindings,
                  std::string* error)
{
    bindings->assign(skin.joints.size(), identityMatrix);
    if (skin.inverseBindMatrices < 0) {
        return true;
    }
    std::vector<float> numbers;
    if (!ReadFloats(file, skin.inverseBindMatrices, 16, &numbers, error)) {
        return false;
    }
    if (numbers.size() < 16 * skin.joints.size()) {
        *error = "A skin has fewer matrices than joints.";
        return false;
    }
    for (size_t joint = 0; joint < skin.joints.size(); ++joint) {
        std::copy_n(numbers.begin() + static_cast<std::ptrdiff_t>(16 * joint), 16, (*bindings)[joint].begin());
    }
    return true;
}

Vec3 OriginOf(const Matrix& matrix)
{
    return {static_cast<float>(matrix[12]), static_cast<float>(matrix[13]), static_cast<float>(matrix[14])};
}

/// The extent of the skeleton, to measure differences of matrices by.
double SizeOf(const NodeTree& tree, const tinygltf::Skin& skin)
{
    double size = 1e-30;
    for (const int joint : skin.joints) {
        for (size_t axis = 12; axis < 15; ++axis) {
            size = std::max(size, std::abs(tree.Worlds[static_cast<size_t>(joint)][axis]));
        }
    }
    return size;
}

/// Where the mesh stands, and whether the nodes stand as it was bound.
void FindPlacing(const NodeTree& tree, const tinygltf::Skin& skin, const std::vector<Matrix>& bindings,
                 SkinInFile* result)
{
    for (size_t joint = 0; joint < skin.joints.size(); ++joint) {
        result->ToScene.push_back(Multiply(tree.Worlds[static_cast<size_t>(skin.joints[joint])], bindings[joint]));
    }
    result->IsLoose = skin.inverseBindMatrices < 0;
    if (result->IsLoose) {
        return;
    }
    result->Placing = result->ToScene.front();
    const double size = SizeOf(tree, skin);
    result->IsPosed = std::any_of(result->ToScene.begin(), result->ToScene.end(), [&](const Matrix& matrix) {
        // Places of the mesh are as large as the skeleton in its own space.
        const std::optional<Matrix> back = Inverse(result->Placing);
        const Vec3 corner = back ? Transformed(*back, {static_cast<float>(size), 0, 0}) : Vec3{};
        const double own = std::max({static_cast<double>(std::abs(corner.X)), static_cast<double>(std::abs(corner.Y)),
                                     static_cast<double>(std::abs(corner.Z)), 1e-30});
        return !AreAlike(matrix, result->Placing, own);
    });
}

int32_t ParentBone(const NodeTree& tree, const std::vector<int32_t>& boneOfNode, int node)
{
    for (int above = tree.Parents[static_cast<size_t>(node)]; above >= 0;
         above = tree.Parents[static_cast<size_t>(above)]) {
        if (boneOfNode[static_cast<size_t>(above)] >= 0) {
            return boneOfNode[static_cast<size_t>(above)];
        }
    }
    return -1;
}

/// The sets of joints and weights of a primitive, four numbers of each for each vertex.
struct JointSets {
    std::vector<std::vector<uint32_t>> Joints{};
    std::vector<std::vector<float>> Weights{};
};

constexpr int mostSets = 16; // which can share what lies in the file once

bool ReadSets(const tinygltf::Model& file, const tinygltf::Primitive& primitive, size_t vertices, JointSets* sets,
              std::string* error)
{
    for (int set = 0;; ++set) {
        const auto joints = primitive.attributes.find("JOINTS_" + std::to_string(set));
        const auto weights = primitive.attributes.find("WEIGHTS_" + std::to_string(set));
        if (joints == primitive.attributes.end() || weights == primitive.attributes.end()) {
            return true;
        }
        if (set == mostSets) {
            *error = "A mesh has more than " + std::to_string(mostSets) + " sets of joints.";
            return false;
        }
        if (!ReadWholes(file, joints->second, 4, &sets->Joints.emplace_back(), error) ||
            !ReadFloats(file, weights->second, 4, &sets->Weights.emplace_back(), error)) {
            return false;
        }
        if (sets->Joints.back().size() != 4 * vertices || sets->Weights.back().size() != 4 * vertices) {
            *error = "A mesh has more or fewer weights than vertices.";
            return false;
        }
    }
}

} // namespace

bool ReadSkins(const tinygltf::Model& file, const NodeTree& tree, ExchangeModel* model, std::vector<SkinInFile>* skins,
               std::string* error)
{
    std::vector<int32_t> boneOfNode(file.nodes.size(), -1);
    std::vector<int> nodes;
    for (const tinygltf::Skin& skin : file.skins) {
        SkinInFile& result = skins->emplace_back();
        const bool known = std::all_of(skin.joints.begin(), skin.joints.end(), [&](int joint) {
            return joint >= 0 && static_cast<size_t>(joint) < file.nodes.size();
        });
        if (skin.joints.empty() || !known) {
            *error = "A skin has no joints, or one that is no node.";
            return false;
        }
        std::vector<Matrix> bindings;
        if (!ReadBindings(file, skin, &bindings, error)) {
            return false;
        }
        FindPlacing(tree, skin, bindings, &result);
        if (!std::all_of(result.ToScene.begin(), result.ToScene.end(), IsFinite)) {
            *error = "The transform of a joint is not finite.";
            return false;
        }
        for (size_t joint = 0; joint < skin.joints.size(); ++joint) {
            const auto node = static_cast<size_t>(skin.joints[joint]);
            int32_t& bone = boneOfNode[node];
            if (bone < 0 && !IsUnassignedJoint(file.nodes[node].name)) {
                bone = static_cast<int32_t>(model->Bones.size());
                nodes.push_back(static_cast<int>(node));
                const std::optional<Matrix> bound = result.IsPosed ? Inverse(bindings[joint]) : std::nullopt;
                Matrix head = bound ? Multiply(result.Placing, *bound) : tree.Worlds[node];
                head = IsFinite(head) ? head : tree.Worlds[node];
                model->Bones.push_back({file.nodes[node].name, -1, OriginOf(head)});
            }
            result.Bones.push_back(bone);
        }
    }
    for (size_t bone = 0; bone < nodes.size(); ++bone) {
        model->Bones[bone].Parent = ParentBone(tree, boneOfNode, nodes[bone]);
    }
    return true;
}

bool ReadJoints(const tinygltf::Model& file, const tinygltf::Primitive& primitive, size_t vertices, size_t joints,
                std::vector<VertexJoint>* result, std::string* error)
{
    JointSets sets;
    if (!ReadSets(file, primitive, vertices, &sets, error)) {
        return false;
    }
    result->assign(vertices, {});
    std::vector<std::pair<uint32_t, double>> shares;
    for (size_t vertex = 0; vertex < vertices; ++vertex) {
        shares.clear();
        double sum = 0;
        for (size_t set = 0; set < sets.Joints.size(); ++set) {
            for (size_t k = 4 * vertex; k < 4 * vertex + 4; ++k) {
                const uint32_t joint = sets.Joints[set][k];
                const double weight = sets.Weights[set][k];
                if (!(weight > 0)) {
                    continue;
                }
                if (joint >= joints) {
                    *error = "A vertex leans on joint " + std::to_string(joint) + " of a skin that has " +
                             std::to_string(joints) + ".";
                    return false;
                }
                const auto same =
                    std::find_if(shares.begin(), shares.end(), [&](const auto& share) { return share.first == joint; });
                if (same == shares.end()) {
                    shares.emplace_back(joint, weight);
                } else {
                    same->second += weight;
                }
                sum += weight;
            }
        }
        if (shares.empty()) {
            continue;
        }
        const auto largest = *std::max_element(shares.begin(), shares.end(), [](const auto& a, const auto& b) {
            return a.second != b.second ? a.second < b.second : a.first > b.first;
        });
        VertexJoint& own = (*result)[vertex];
        own.Joint = static_cast<int32_t>(largest.first);
        const double dropped = 1 - largest.second / sum;
        constexpr double noise = 1e-4; // what weights of few bits are off by
        if (dropped > noise) {
            own.Dropped = static_cast<float>(dropped);
        }
    }
    return true;
}
