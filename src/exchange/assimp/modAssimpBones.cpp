#include "modAssimpBones.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <set>
#include <string_view>

#include <assimp/commonMetaData.h>

#include "modAssimpTexts.h"

namespace {

struct Standing {
    const aiNode* Node = nullptr;
    Matrix ToScene{};
};

/// What is asked of the nodes while the bones are taken.
struct Nodes {
    std::map<std::string, Standing> ByName{}; ///< the first of each name
    std::set<std::string> Carrying{};         ///< bones that vertices weigh on
    std::set<std::string> Others{};           ///< lights and cameras
    std::set<const aiNode*> AboveBones{};     ///< nodes with a bone of a mesh below them
    std::set<const aiNode*> AboveMeshes{};    ///< nodes with a mesh, or with one below them
};

void AddNode(const aiNode& node, const Matrix& parent, Nodes* nodes)
{
    const Matrix toScene = parent * Matrix(node.mTransformation);
    nodes->ByName.emplace(node.mName.C_Str(), Standing{&node, toScene});
    for (unsigned i = 0; i < node.mNumChildren; ++i) {
        AddNode(*node.mChildren[i], toScene, nodes);
    }
}

void MarkAbove(const aiNode* node, std::set<const aiNode*>* above)
{
    while (node != nullptr && above->insert(node).second) {
        node = node->mParent;
    }
}

bool IsFinite(const Matrix& matrix)
{
    const double sum = std::abs(matrix.a1) + std::abs(matrix.a2) + std::abs(matrix.a3) + std::abs(matrix.a4) +
                       std::abs(matrix.b1) + std::abs(matrix.b2) + std::abs(matrix.b3) + std::abs(matrix.b4) +
                       std::abs(matrix.c1) + std::abs(matrix.c2) + std::abs(matrix.c3) + std::abs(matrix.c4);
    return std::isfinite(sum);
}

/// True when both put the mesh, by the corners of its box, into the same place but for a thousandth of its size.
bool AreAlike(const aiMesh& mesh, const Matrix& a, const Matrix& b)
{
    Vector low(INFINITY, INFINITY, INFINITY);
    Vector high = -low;
    for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
        const aiVector3D& at = mesh.mVertices[i];
        low = {std::min<double>(low.x, at.x), std::min<double>(low.y, at.y), std::min<double>(low.z, at.z)};
        high = {std::max<double>(high.x, at.x), std::max<double>(high.y, at.y), std::max<double>(high.z, at.z)};
    }
    constexpr double part = 1e-3;
    const double size = (a * high - a * low).Length();
    for (const Vector& corner : {low, high, Vector(low.x, high.y, low.z), Vector(low.x, low.y, high.z)}) {
        if (!((a * corner - b * corner).Length() <= part * size)) {
            return false;
        }
    }
    return true;
}

/// What the formats mean by the transformations of skins.
struct Habits {
    bool IsFbx = false;             ///< a mesh was bound where its node stands
    bool IsBlendersCollada = false; ///< a mesh is told in the space of its skeleton's node
};

Habits HabitsOf(const aiScene& scene)
{
    aiString format;
    aiString generator;
    const bool told = scene.mMetaData != nullptr && scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format);
    (void)(told && scene.mMetaData->Get(AI_METADATA_SOURCE_GENERATOR, generator));
    const std::string_view name(format.C_Str());
    return {.IsFbx = name.find("FBX") != std::string_view::npos,
            .IsBlendersCollada =
                name.starts_with("Collada") && std::string_view(generator.C_Str()).starts_with("Blender")};
}

/// How the mesh stands in the pose that it was bound in, as its bones tell. Where a bone of it is known from another
/// mesh, both must agree on it; else the nodes of its bones tell, if they all say the same. False when they do not: then
/// the file was saved in another pose.
bool BoundMesh(const aiMesh& mesh, const Nodes& nodes, const Skeleton& skeleton, Matrix* bound)
{
    bool found = false;
    for (unsigned i = 0; i < mesh.mNumBones; ++i) {
        const aiBone& bone = *mesh.mBones[i];
        const auto known = skeleton.Bound.find(bone.mName.C_Str());
        if (known != skeleton.Bound.end()) {
            *bound = known->second * Matrix(bone.mOffsetMatrix);
            return IsFinite(*bound);
        }
        const auto node = nodes.ByName.find(bone.mName.C_Str());
        if (node == nodes.ByName.end()) {
            continue;
        }
        const Matrix posed = node->second.ToScene * Matrix(bone.mOffsetMatrix);
        if (found && !AreAlike(mesh, *bound, posed)) {
            return false;
        }
        *bound = found ? *bound : posed;
        found = true;
    }
    return found && IsFinite(*bound);
}

void BindMesh(const aiMesh& mesh, const Matrix& ofNode, const Matrix& ofRoot, const Habits& habits, Nodes* nodes,
              Skeleton* skeleton)
{
    Matrix toScene;
    const bool told = !habits.IsFbx && BoundMesh(mesh, *nodes, *skeleton, &toScene);
    if (!told) {
        toScene = ofNode;
    }
    const bool moves = told && habits.IsBlendersCollada;
    skeleton->MeshesToScene.emplace(&mesh, moves ? ofNode * Matrix(ofRoot).Inverse() * toScene : toScene);
    for (unsigned i = 0; i < mesh.mNumBones; ++i) {
        const aiBone& bone = *mesh.mBones[i];
        const std::string name = bone.mName.C_Str();
        const auto node = nodes->ByName.find(name);
        Matrix bound = toScene * Matrix(bone.mOffsetMatrix).Inverse();
        if (!IsFinite(bound)) {
            bound = node != nodes->ByName.end() ? node->second.ToScene : toScene;
        }
        skeleton->Bound.emplace(name, bound);
        if (node != nodes->ByName.end()) {
            MarkAbove(node->second.Node, &nodes->AboveBones);
        }
        if (bone.mNumWeights > 0) {
            nodes->Carrying.insert(name);
        }
    }
}

/// True for what exporters call the far end of a last bone.
bool IsTipName(std::string_view name)
{
    std::string lower(name.substr(name.size() - std::min<size_t>(name.size(), 4)));
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower == "_end" || lower.ends_with("nub");
}

bool IsJoint(const std::string& name, const Nodes& nodes)
{
    return nodes.Carrying.contains(name) || !IsTipName(name);
}

void AddBone(const std::string& name, const Matrix& bound, int32_t parent, ExchangeModel* model)
{
    model->Bones.push_back(
        {TextOf(name),
         parent,
         {static_cast<float>(bound.a4), static_cast<float>(bound.b4), static_cast<float>(bound.c4)}});
}

/// `bound` is how the node above stood when the meshes were bound; it counts only below a bone.
void AddBones(const aiNode& node, int32_t parent, const Matrix& bound, const Nodes& nodes, Skeleton* skeleton,
              ExchangeModel* model)
{
    const std::string name = node.mName.C_Str();
    const auto own = skeleton->Bound.find(name);
    const bool isOwn = own != skeleton->Bound.end() && nodes.ByName.at(name).Node == &node;
    const bool hangsOn = parent >= 0 && (nodes.AboveBones.contains(&node) ||
                                         (!nodes.AboveMeshes.contains(&node) && !nodes.Others.contains(name)));
    const Matrix here = isOwn ? own->second : bound * Matrix(node.mTransformation);
    if ((isOwn || hangsOn) && IsJoint(name, nodes)) {
        AddBone(name, here, parent, model);
        parent = static_cast<int32_t>(model->Bones.size()) - 1;
        if (isOwn) {
            skeleton->Index.emplace(name, parent);
        }
    }
    for (unsigned i = 0; i < node.mNumChildren; ++i) {
        AddBones(*node.mChildren[i], parent, here, nodes, skeleton, model);
    }
}

} // namespace

Skeleton TakeBones(const aiScene& scene, const Matrix& toScene, const std::vector<MeshNode>& meshNodes,
                   ExchangeModel* model)
{
    Nodes nodes;
    AddNode(*scene.mRootNode, toScene, &nodes);
    for (unsigned i = 0; i < scene.mNumLights; ++i) {
        nodes.Others.insert(scene.mLights[i]->mName.C_Str());
    }
    for (unsigned i = 0; i < scene.mNumCameras; ++i) {
        nodes.Others.insert(scene.mCameras[i]->mName.C_Str());
    }
    const Habits habits = HabitsOf(scene);
    const Matrix ofRoot = toScene * Matrix(scene.mRootNode->mTransformation);
    Skeleton skeleton;
    for (const MeshNode& at : meshNodes) {
        MarkAbove(at.Node, &nodes.AboveMeshes);
        for (unsigned i = 0; i < at.Node->mNumMeshes; ++i) {
            const aiMesh& mesh = *scene.mMeshes[at.Node->mMeshes[i]];
            if (mesh.HasBones()) {
                BindMesh(mesh, at.ToScene, ofRoot, habits, &nodes, &skeleton);
            }
        }
    }
    if (skeleton.Bound.empty()) {
        return skeleton;
    }
    AddBones(*scene.mRootNode, -1, toScene, nodes, &skeleton, model);
    for (const auto& [name, bound] : skeleton.Bound) {
        if (!skeleton.Index.contains(name) && IsJoint(name, nodes)) {
            skeleton.Index.emplace(name, static_cast<int32_t>(model->Bones.size()));
            AddBone(name, bound, -1, model);
        }
    }
    return skeleton;
}

void TakeWeights(const std::vector<const aiMesh*>& parts, const Skeleton& skeleton, ExchangeMesh* mesh)
{
    size_t start = 0;
    for (const aiMesh* part : parts) {
        std::vector<float> largest(part->mNumVertices);
        std::vector<float> sums(part->mNumVertices);
        for (unsigned i = 0; i < part->mNumBones; ++i) {
            const aiBone& bone = *part->mBones[i];
            for (unsigned w = 0; w < bone.mNumWeights; ++w) {
                const auto [vertex, weight] = bone.mWeights[w];
                if (vertex >= part->mNumVertices || !(weight > 0) || !std::isfinite(weight)) {
                    continue;
                }
                sums[vertex] += weight;
                if (weight > largest[vertex]) {
                    largest[vertex] = weight;
                    mesh->Vertices[start + vertex].Bone = skeleton.Index.at(bone.mName.C_Str());
                }
            }
        }
        for (size_t vertex = 0; vertex < sums.size(); ++vertex) {
            const float dropped = sums[vertex] > 0 ? 1 - largest[vertex] / sums[vertex] : 0;
            constexpr float noise = 1e-4F; // what weights of few digits are off by
            mesh->Vertices[start + vertex].Dropped = dropped > noise ? dropped : 0;
        }
        start += part->mNumVertices;
    }
}
