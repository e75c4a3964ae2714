// How often the commands that assign all vertices give a vertex the bone that weighs most in a model rigged by others.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include "app/modMvmDef.h"
#include "bench.h"
#include "modSession.h"
#include "weights/modMvmXTools.h"
#include "weights/modSegments.h"
#include "weights/modSkeleton.h"

namespace {

constexpr const char* modelFolder = "/usr/share/assimp/models/";

// All files of the package with weights for eight bones and more, but for those whose meshes are drawn around a bare
// skeleton by the loader (BVH, CSM): a woman, a dog, and three that are no creatures: a cylinder with an arm, a bar and
// a row of plates.
constexpr std::array modelFiles = {"X/BCN_Epileptic.X", "X/Testwuson.X", "FBX/huesitos.fbx",
                                   "FBX/animation_with_skeleton.fbx", "MDL/MDL (HL1)/unnamed_bones.mdl"};

using Triple = std::array<float, 3>;

struct Rig {
    std::vector<const aiNode*> Nodes; ///< of each bone, from 0 on
    std::vector<Triple> Joints;
    std::vector<Triple> Vertices; ///< each place once
    std::vector<int16_t> Artist;  ///< the bone of each, as a bone number
};

/// The number of a bone, which is added when it is new.
int16_t BoneNumber(const aiScene& scene, const aiBone& bone, Rig* rig)
{
    const aiNode* const node = scene.mRootNode->FindNode(bone.mName);
    const auto found = std::find(rig->Nodes.begin(), rig->Nodes.end(), node);
    if (found == rig->Nodes.end()) {
        aiMatrix4x4 place = bone.mOffsetMatrix;
        place.Inverse();
        rig->Nodes.push_back(node);
        rig->Joints.push_back({place.a4, place.b4, place.c4});
        return static_cast<int16_t>(rig->Nodes.size());
    }
    return static_cast<int16_t>(found - rig->Nodes.begin() + 1);
}

Rig ReadRig(const aiScene& scene)
{
    Rig rig;
    std::map<Triple, bool> places;
    for (unsigned m = 0; m < scene.mNumMeshes; ++m) {
        const aiMesh& mesh = *scene.mMeshes[m];
        std::vector<float> most(mesh.mNumVertices);
        std::vector<int16_t> bones(mesh.mNumVertices);
        for (unsigned b = 0; b < mesh.mNumBones; ++b) {
            const aiBone& bone = *mesh.mBones[b];
            const int16_t number = BoneNumber(scene, bone, &rig);
            for (unsigned w = 0; w < bone.mNumWeights; ++w) {
                const aiVertexWeight& weight = bone.mWeights[w];
                if (weight.mWeight > most[weight.mVertexId]) {
                    most[weight.mVertexId] = weight.mWeight;
                    bones[weight.mVertexId] = number;
                }
            }
        }
        for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
            const Triple place = {mesh.mVertices[v].x, mesh.mVertices[v].y, mesh.mVertices[v].z};
            if (bones[v] != 0 && places.emplace(place, true).second) {
                rig.Vertices.push_back(place);
                rig.Artist.push_back(bones[v]);
            }
        }
    }
    return rig;
}

/// The plane that the joints mirror best in, across an axis through their median; the X axis unless another is better.
std::pair<size_t, float> MirrorPlane(const std::vector<Triple>& joints)
{
    std::pair<size_t, float> plane;
    double least = INFINITY;
    for (size_t axis = 0; axis < 3; ++axis) {
        std::vector<float> values;
        values.reserve(joints.size());
        for (const Triple& joint : joints) {
            values.push_back(joint[axis]);
        }
        std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
        const float median = values[values.size() / 2];
        double error = 0;
        for (Triple mirrored : joints) {
            mirrored[axis] = 2 * median - mirrored[axis];
            double nearest = INFINITY;
            for (const Triple& joint : joints) {
                nearest = std::min(nearest, std::hypot(static_cast<double>(joint[0]) - mirrored[0],
                                                       static_cast<double>(joint[1]) - mirrored[1],
                                                       static_cast<double>(joint[2]) - mirrored[2]));
            }
            error += nearest;
        }
        if (error < least * 0.999 - 1e-6) {
            least = error;
            plane = {axis, median};
        }
    }
    return plane;
}

/// Makes the rig our scene: one skin, names with joint numbers, left and right along X.
void MakeScene(const Rig& rig)
{
    ResetSession();
    const auto [axis, middle] = MirrorPlane(rig.Joints);
    const auto turned = [axis = axis, middle = middle](const Triple& place) {
        return Vec3{place[axis] - middle, place[(axis + 1) % 3], place[(axis + 2) % 3]};
    };
    for (size_t b = 0; b < rig.Nodes.size(); ++b) {
        char number[8];
        std::snprintf(number, sizeof number, "%02d", static_cast<int>((b + 1) % 100));
        Bones.Add({.Name = rig.Nodes[b]->mName.C_Str() + std::string(number), .Position = turned(rig.Joints[b])});
    }
    Meshes.Add({.Name = "Skin"});
    for (const Triple& vertex : rig.Vertices) {
        Meshes[1].Vertices.Add(turned(vertex));
    }
    MakeSkin(1);
}

/// The number of links between two nodes of the model's own tree.
int NodeDistance(const aiNode* a, const aiNode* b)
{
    int up = 0;
    for (const aiNode* from = a; from != nullptr; from = from->mParent, ++up) {
        int down = 0;
        for (const aiNode* to = b; to != nullptr; to = to->mParent, ++down) {
            if (from == to) {
                return up + down;
            }
        }
    }
    return INT16_MAX;
}

/// In percent of the vertices.
struct Shares {
    double Same = 0;
    double Near = 0; ///< within one link of the model's own tree
};

/// What a command gives the vertices, compared to the artist. Leaves them unassigned.
Shares Compare(const Rig& rig, void (*assign)(int16_t))
{
    Shares shares;
    assign(1);
    const double part = 100 / static_cast<double>(rig.Artist.size());
    for (size_t v = 0; v < rig.Artist.size(); ++v) {
        int16_t& bone = Meshes[1].VertexBones[static_cast<int32_t>(v) + 1];
        const auto node = [&rig](int16_t number) { return rig.Nodes[static_cast<size_t>(number) - 1]; };
        shares.Same += bone == rig.Artist[v] ? part : 0;
        shares.Near += bone != 0 && NodeDistance(node(bone), node(rig.Artist[v])) <= 1 ? part : 0;
        bone = 0;
    }
    return shares;
}

/// Gives the bones the links of the model's own tree.
void LinkAsTheModelDoes(const Rig& rig)
{
    for (size_t b = 0; b < rig.Nodes.size(); ++b) {
        for (const aiNode* at = rig.Nodes[b]->mParent; at != nullptr && Bones.Items[b].LinkBone == 0;
             at = at->mParent) {
            const auto found = std::find(rig.Nodes.begin(), rig.Nodes.end(), at);
            Bones.Items[b].LinkBone =
                static_cast<int16_t>(found == rig.Nodes.end() ? 0 : found - rig.Nodes.begin() + 1);
        }
    }
}

std::string Percent(double share)
{
    char text[16];
    std::snprintf(text, sizeof text, "%.1f %%", share);
    return text;
}

} // namespace

void MeasureSegments()
{
    Shares sumTold;
    Shares sumOurs;
    double count = 0;
    for (const std::string file : modelFiles) {
        Assimp::Importer importer;
        const aiScene* const scene = importer.ReadFile(modelFolder + file, 0);
        if (scene == nullptr) {
            std::printf("%s%s is not there: install assimp-testmodels\n", modelFolder, file.c_str());
            continue;
        }
        const Rig rig = ReadRig(*scene);
        MakeScene(rig);
        const Shares told = Compare(rig, AutoAssign);
        const Shares ours = Compare(rig, AutoAssignBySegments);
        LinkAsTheModelDoes(rig);
        const Shares own = Compare(rig, AutoAssignBySegments);
        const std::string name = std::filesystem::path(file).stem().string();
        std::printf("%-24s nearest joint %5.1f %% (within a link %5.1f %%), segments %5.1f %% (%5.1f %%), with the "
                    "model's own links %5.1f %% (%5.1f %%)\n",
                    name.c_str(), told.Same, told.Near, ours.Same, ours.Near, own.Same, own.Near);
        MeasuredRows.push_back(
            {"segments over joints, " + name, Percent(ours.Same), Percent(told.Same), ours.Same / told.Same, 1});
        sumTold = {sumTold.Same + told.Same, sumTold.Near + told.Near};
        sumOurs = {sumOurs.Same + ours.Same, sumOurs.Near + ours.Near};
        ++count;
    }
    if (count > 0) {
        MeasuredRows.push_back({"segments, share of the artists' bones, percent", Percent(sumOurs.Same / count),
                                Percent(sumTold.Same / count), sumOurs.Same / count, 55});
        MeasuredRows.push_back({"segments, share within one link, percent", Percent(sumOurs.Near / count),
                                Percent(sumTold.Near / count), sumOurs.Near / count, 90});
    }
    ResetSession();
}
