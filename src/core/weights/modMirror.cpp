#include "weights/modMirror.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "weights/modBoneAlias.h"
#include "weights/modPointTree.h"

namespace {

/// Where a point of the source side lies on the target side.
Place Mirrored(const Vec3& position)
{
    return {-position.X, position.Y, position.Z};
}

bool HasAliasFile(const std::string& name)
{
    return std::any_of(AliasFiles.begin(), AliasFiles.end(),
                       [&](const BoneAliasFile& file) { return file.Name == name; });
}

/// Searches that begin with the lowest index look for the highest of these.
int32_t Backwards(int32_t index)
{
    return INT32_MAX - index;
}

bool Any(const TreeNode& /*node*/)
{
    return true;
}

using BonePair = std::pair<int32_t, int32_t>;

/// The partner of each bone by position, 0 for none; entry 0 is not used. Of each pair the bone of the target side
/// stands first in *pairs.
std::vector<int16_t> PairBones(bool leftToRight, std::vector<BonePair>* pairs)
{
    const int32_t count = std::min<int32_t>(BoneCount(), INT16_MAX);
    std::vector<TreeNode> sources;
    for (int32_t j = 1; j <= count; ++j) {
        if (!IsTargetSide(Bones[j].Position.X, leftToRight)) {
            sources.push_back({.At = Mirrored(Bones[j].Position), .Index = Backwards(j)});
        }
    }
    const PointTree tree = BuildPointTree(std::move(sources));
    std::vector<int16_t> partners(static_cast<size_t>(count) + 1);
    for (int32_t i = 1; i <= count; ++i) {
        if (!IsTargetSide(Bones[i].Position.X, leftToRight)) {
            continue;
        }
        const OpenBox box = BoxAround(PlaceOf(Bones[i].Position), MirrorBoneThreshold);
        if (const int32_t found = HighestInside(tree, box, Any)) {
            const int32_t first = Backwards(found);
            partners[static_cast<size_t>(i)] = static_cast<int16_t>(first);
            partners[static_cast<size_t>(first)] = static_cast<int16_t>(i);
            pairs->emplace_back(i, first);
        }
    }
    return partners;
}

/// MirrorBones, with the pairs that were found by position.
std::vector<int16_t> MirrorBonesOf(const MvmMesh& mesh, bool leftToRight, std::vector<BonePair>* pairs)
{
    if (!IsMirroredByAliases(mesh)) {
        return PairBones(leftToRight, pairs);
    }
    std::vector<int16_t> partners{0};
    for (const MvmBone& bone : Bones) {
        partners.push_back(std::max(bone.MirrorBone, int16_t{0}));
    }
    return partners;
}

/// The bone that each vertex gives to its mirror vertices, 0 for none; entry 0 is not used. Mirroring writes one side
/// and reads the other, so these can be settled before.
std::vector<int16_t> GivenBones(const MvmMesh& mesh, const std::vector<int16_t>& partners)
{
    std::vector<int16_t> given(mesh.VertexBones.Items.size() + 1);
    for (int32_t j = 1; j <= mesh.VertexBones.Count(); ++j) {
        const int16_t bone = mesh.VertexBones[j];
        given[static_cast<size_t>(j)] = IsValidBone(bone) ? partners[static_cast<size_t>(bone)] : int16_t{0};
    }
    return given;
}

/// The vertices of the source side: those that give a bone, for filling alone once more with backward indices, and
/// those that give none.
struct Sources {
    PointTree Filling, FillingBackwards, Clearing;
};

Sources CollectSources(const MvmMesh& mesh, const std::vector<int16_t>& given, const MirrorOptions& options)
{
    std::vector<TreeNode> filling;
    std::vector<TreeNode> backwards;
    std::vector<TreeNode> clearing;
    for (int32_t j = 1; j <= mesh.VertexBones.Count(); ++j) {
        const Vec3& position = mesh.Vertices[j];
        if (IsTargetSide(position.X, options.LeftToRight)) {
            continue;
        }
        if (given[static_cast<size_t>(j)] == 0) {
            clearing.push_back({.At = Mirrored(position), .Index = j});
        } else {
            filling.push_back({.At = Mirrored(position), .Index = j});
            if (!options.Reassign) {
                backwards.push_back({.At = Mirrored(position), .Index = Backwards(j)});
            }
        }
    }
    return {BuildPointTree(std::move(filling)), BuildPointTree(std::move(backwards)),
            BuildPointTree(std::move(clearing))};
}

/// The bone of a vertex after all sources that pair with it have been worked through in index order. A source that
/// gives a bone fills a vertex without one, or any with Reassign; one that gives none clears it with Unassign.
int16_t BoneAfter(int16_t bone, const Sources& sources, const std::vector<int16_t>& given, const OpenBox& box,
                  const MirrorOptions& options)
{
    const int32_t lastFilling = HighestInside(sources.Filling, box, Any);
    const int32_t lastClearing = options.Unassign ? HighestInside(sources.Clearing, box, Any) : 0;
    if (lastFilling <= lastClearing) {
        return lastClearing != 0 ? int16_t{0} : bone;
    }
    if (options.Reassign) {
        return given[static_cast<size_t>(lastFilling)];
    }
    if (lastClearing == 0 && bone >= 1) {
        return bone;
    }
    // The first that fills behind the last that clears.
    const auto isBehind = [lastClearing](const TreeNode& node) { return Backwards(node.Index) > lastClearing; };
    return given[static_cast<size_t>(Backwards(HighestInside(sources.FillingBackwards, box, isBehind)))];
}

void MirrorMesh(MvmMesh* mesh, const MirrorOptions& options)
{
    std::vector<BonePair> pairs;
    const std::vector<int16_t> given = GivenBones(*mesh, MirrorBonesOf(*mesh, options.LeftToRight, &pairs));
    for (const auto& [target, source] : pairs) {
        LogLine(std::to_string(target) + " : " + std::to_string(source));
    }
    const Sources sources = CollectSources(*mesh, given, options);
    for (int32_t i = 1; i <= mesh->VertexBones.Count(); ++i) {
        if (IsTargetSide(mesh->Vertices[i].X, options.LeftToRight)) {
            const OpenBox box = BoxAround(PlaceOf(mesh->Vertices[i]), MirrorVertexThreshold);
            mesh->VertexBones[i] = BoneAfter(mesh->VertexBones[i], sources, given, box, options);
        }
    }
}

} // namespace

bool IsMirroredByAliases(const MvmMesh& mesh)
{
    return AliasesOn && HasAliasFile(mesh.Name);
}

bool IsTargetSide(float x, bool leftToRight)
{
    return leftToRight ? x > 0 : x < 0;
}

std::vector<int16_t> MirrorBones(const MvmMesh& mesh, bool leftToRight)
{
    std::vector<BonePair> pairs;
    return MirrorBonesOf(mesh, leftToRight, &pairs);
}

void MirrorWeights(const MirrorOptions& options)
{
    const int16_t target = TargetMesh();
    if (IsValidMesh(target)) {
        RunGuarded("MirrorWeights", [&] {
            Touch(ScenePart::Assignments, target);
            MirrorMesh(&Meshes[target], options);
        });
    }
}
