#include "weights/modMirrorProof.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

#include "app/modMvmDef.h"
#include "weights/modPointTree.h"

namespace {

void AddSources(const MvmMesh& mesh, const std::vector<int16_t>& partners, bool leftToRight, MirrorProof* proof)
{
    const auto given = [&](int32_t vertex) {
        const int16_t bone = mesh.VertexBones[vertex];
        return IsValidBone(bone) ? partners[static_cast<size_t>(bone)] : int16_t{0};
    };
    std::vector<TreeNode> nodes;
    std::set<int16_t> withoutPartner;
    for (int32_t v = 1; v <= mesh.VertexBones.Count(); ++v) {
        const Vec3& at = mesh.Vertices[v];
        if (IsTargetSide(at.X, leftToRight)) {
            continue;
        }
        nodes.push_back({.At = {-at.X, at.Y, at.Z}, .Index = v});
        if (IsValidBone(mesh.VertexBones[v]) && given(v) == 0) {
            withoutPartner.insert(mesh.VertexBones[v]);
        }
    }
    proof->WithoutPartner.assign(withoutPartner.begin(), withoutPartner.end());
    const PointTree tree = BuildPointTree(std::move(nodes));
    for (int32_t v = 1; v <= mesh.VertexBones.Count(); ++v) {
        if (!IsTargetSide(mesh.Vertices[v].X, leftToRight)) {
            continue;
        }
        int32_t sources = 0;
        std::set<int16_t> bones;
        const auto visit = [&](const TreeNode& source) {
            ++sources;
            bones.insert(given(source.Index));
            return false; // so that the search goes on to the next one
        };
        static_cast<void>(HighestInside(tree, BoxAround(PlaceOf(mesh.Vertices[v]), MirrorVertexThreshold), visit));
        if (sources == 0) {
            proof->WithoutSource.push_back(v);
        }
        if (sources > 1) {
            proof->WithSeveral.push_back(v);
        }
        if (bones.size() > 1) {
            proof->Disagreeing.push_back(v);
        }
    }
}

void AddBones(const MvmMesh& mesh, const Array1<int16_t>& before, bool leftToRight, MirrorProof* proof)
{
    std::map<int16_t, MirroredBone> rows;
    for (int32_t v = 1; v <= before.Count(); ++v) {
        if (!IsTargetSide(mesh.Vertices[v].X, leftToRight)) {
            continue;
        }
        const int16_t old = before[v];
        const int16_t now = mesh.VertexBones[v];
        if (old == now) {
            ++rows[old].Kept;
            continue;
        }
        ++rows[now].Taken;
        ++(now == 0 ? rows[old].Cleared : rows[old].Lost);
    }
    for (auto& [bone, row] : rows) {
        row.Bone = bone;
        proof->Bones.push_back(row);
    }
}

} // namespace

MirrorProof MirrorWithProof(const MirrorOptions& options)
{
    MirrorProof proof;
    const int16_t target = TargetMesh();
    if (!IsValidMesh(target)) {
        return proof;
    }
    const MvmMesh& mesh = Meshes[target];
    const Array1<int16_t> before = mesh.VertexBones;
    const std::vector<int16_t> partners = MirrorBones(mesh, options.LeftToRight);
    proof.ByAliases = IsMirroredByAliases(mesh);
    for (size_t bone = 1; bone < partners.size(); ++bone) {
        const int16_t partner = partners[bone];
        const int16_t back = partner == 0 ? int16_t{0} : partners[static_cast<size_t>(partner)];
        if (partner != 0 && back != static_cast<int16_t>(bone)) {
            proof.NotMutual.push_back({static_cast<int16_t>(bone), partner, back});
        }
    }
    AddSources(mesh, partners, options.LeftToRight, &proof);
    MirrorWeights(options);
    AddBones(mesh, before, options.LeftToRight, &proof);
    return proof;
}
