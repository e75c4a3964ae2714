#pragma once

#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"

inline constexpr float DefaultThreshold = 0.01F;
inline float MirrorVertexThreshold = DefaultThreshold;
inline float MirrorBoneThreshold = DefaultThreshold;

/// The choices of the mirror dialog. Reassign lets a vertex that has a bone take the mirrored one; Unassign clears a
/// vertex whose mirror vertex has no partner bone.
struct MirrorOptions {
    bool LeftToRight = true;
    bool Reassign = true;
    bool Unassign = false;
};

/// Carries the assignments of one side of the target mesh to the other. Bone pairs go to the Info Log.
void MirrorWeights(const MirrorOptions& options);

/// True when the side of `x` is the one that mirroring writes.
[[nodiscard]] bool IsTargetSide(float x, bool leftToRight);
/// True when bones of this mesh are paired by the links of its alias file, false when by their positions.
[[nodiscard]] bool IsMirroredByAliases(const MvmMesh& mesh);
/// For each bone the one that takes over from it when this mesh is mirrored, 0 for none; entry 0 is not used.
[[nodiscard]] std::vector<int16_t> MirrorBones(const MvmMesh& mesh, bool leftToRight);
