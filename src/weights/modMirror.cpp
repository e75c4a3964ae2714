#include "weights/modMirror.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "platform/modDialogs.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"
#include "weights/modNear.h"

namespace {

bool IsTargetSide(float x, bool leftToRight)
{
    return leftToRight ? x > 0 : x < 0;
}

/// The places on the target side that pair with a point of the source side: those whose distance on each axis, worked
/// out in double precision from the target's coordinate, is strictly within the tolerance.
NearBox MirrorBox(const Vec3& source, float tolerance)
{
    const float x = -source.X;
    return {{-LargestWithin(-x, tolerance), -LargestWithin(-source.Y, tolerance), -LargestWithin(-source.Z, tolerance)},
            {LargestWithin(x, tolerance), LargestWithin(source.Y, tolerance), LargestWithin(source.Z, tolerance)}};
}

bool HasAliasFile(const std::string& name)
{
    return std::any_of(AliasFiles.begin(), AliasFiles.end(),
                       [&](const BoneAliasFile& file) { return file.Name == name; });
}

/// The partner of each bone by position, 0 for none; entry 0 is not used. Each pair goes to the Info Log.
std::vector<int16_t> PairBones(bool leftToRight)
{
    const int32_t count = std::min<int32_t>(BoneCount(), INT16_MAX);
    std::vector<NearPoint> targets;
    for (int32_t i = 1; i <= count; ++i) {
        const Vec3& place = Bones[i].Position;
        if (IsTargetSide(place.X, leftToRight)) {
            targets.push_back({{place.X, place.Y, place.Z}, i});
        }
    }
    // The first source bone that reaches a target bone takes it.
    NearTree tree = BuildNear(std::move(targets));
    std::vector<int16_t> firstSource(static_cast<size_t>(count) + 1);
    std::vector<int32_t> taken;
    for (int32_t j = 1; j <= count; ++j) {
        if (IsTargetSide(Bones[j].Position.X, leftToRight)) {
            continue;
        }
        taken.clear();
        TakeInBox(&tree, MirrorBox(Bones[j].Position, MirrorBoneThreshold), &taken);
        for (const int32_t i : taken) {
            firstSource[static_cast<size_t>(i)] = static_cast<int16_t>(j);
        }
    }
    std::vector<int16_t> partners(static_cast<size_t>(count) + 1);
    for (int32_t i = 1; i <= count; ++i) {
        if (const int16_t j = firstSource[static_cast<size_t>(i)]) {
            partners[static_cast<size_t>(i)] = j;
            partners[static_cast<size_t>(j)] = static_cast<int16_t>(i);
            LogLine(std::to_string(i) + " : " + std::to_string(j));
        }
    }
    return partners;
}

/// A vertex of the source side with the bone that it gives, 0 for none. Giving never changes a source: the sides are
/// disjoint, so the bones are settled before the pass.
struct Source {
    int32_t Vertex = 0;
    int16_t Gives = 0;
};

struct VertexPass {
    MvmMesh* Mesh = nullptr;
    std::vector<Source> Sources; ///< in index order
    std::vector<NearPoint> Targets;
};

/// With Reassign each matching source overwrites what earlier ones gave, so the last one that counts decides: sources
/// are walked backwards, and the first to reach a target settles it.
void OverwriteTargets(VertexPass pass, bool unassign)
{
    NearTree tree = BuildNear(std::move(pass.Targets));
    std::vector<int32_t> taken;
    for (auto source = pass.Sources.rbegin(); source != pass.Sources.rend(); ++source) {
        if (source->Gives == 0 && !unassign) {
            continue;
        }
        taken.clear();
        TakeInBox(&tree, MirrorBox(pass.Mesh->Vertices[source->Vertex], MirrorVertexThreshold), &taken);
        for (const int32_t i : taken) {
            pass.Mesh->VertexBones[i] = source->Gives;
        }
    }
}

/// Without Reassign a target with a bone keeps it until a source without a bone clears it (only with Unassign); the
/// first source with a bone after the last clearing one fills it. So the last clearing source of each target is found
/// first, walking backwards; then, walking forwards, a target can be filled from that source on.
void FillTargets(VertexPass pass, bool unassign)
{
    Array1<int16_t>& bones = pass.Mesh->VertexBones;
    NearTree tree = BuildNear(std::move(pass.Targets));
    std::vector<std::pair<int32_t, int32_t>> cleared; // (source, target)
    std::vector<int32_t> taken;
    if (unassign) {
        for (auto source = pass.Sources.rbegin(); source != pass.Sources.rend(); ++source) {
            if (source->Gives != 0) {
                continue;
            }
            taken.clear();
            TakeInBox(&tree, MirrorBox(pass.Mesh->Vertices[source->Vertex], MirrorVertexThreshold), &taken);
            for (const int32_t i : taken) {
                bones[i] = 0;
                cleared.emplace_back(source->Vertex, i);
            }
        }
    }
    for (const Source& source : pass.Sources) {
        for (; !cleared.empty() && cleared.back().first == source.Vertex; cleared.pop_back()) {
            ActivatePoint(&tree, cleared.back().second);
        }
        if (source.Gives == 0) {
            continue;
        }
        taken.clear();
        TakeInBox(&tree, MirrorBox(pass.Mesh->Vertices[source.Vertex], MirrorVertexThreshold), &taken);
        for (const int32_t i : taken) {
            if (bones[i] < 1) {
                bones[i] = source.Gives;
            }
        }
    }
}

void MirrorMesh(MvmMesh* mesh, const MirrorOptions& options)
{
    const bool useAliasLinks = AliasesOn && HasAliasFile(mesh->Name);
    std::vector<int16_t> partners;
    if (!useAliasLinks) {
        partners = PairBones(options.LeftToRight);
    }
    const auto mirrored = [&](int16_t bone) {
        if (!IsValidBone(bone)) {
            return int16_t{0};
        }
        const int16_t partner = useAliasLinks ? Bones[bone].MirrorBone : partners[static_cast<size_t>(bone)];
        return std::max(partner, int16_t{0});
    };
    VertexPass pass{mesh, {}, {}};
    for (int32_t i = 1; i <= mesh->VertexBones.Count(); ++i) {
        const Vec3& place = mesh->Vertices[i];
        if (IsTargetSide(place.X, options.LeftToRight)) {
            pass.Targets.push_back({{place.X, place.Y, place.Z}, i});
        } else {
            pass.Sources.push_back({i, mirrored(mesh->VertexBones[i])});
        }
    }
    if (options.Reassign) {
        OverwriteTargets(std::move(pass), options.Unassign);
    } else {
        FillTargets(std::move(pass), options.Unassign);
    }
}

} // namespace

void MirrorWeights(const MirrorOptions& options)
{
    const int16_t target = TargetMesh();
    if (!IsValidMesh(target)) {
        return;
    }
    try {
        MirrorMesh(&Meshes[target], options);
    } catch (const std::exception& error) {
        ShowMessage(BoxIcon::Stop, std::string("MirrorWeights\n") + error.what());
    }
}
