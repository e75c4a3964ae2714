#pragma once

#include <cstdint>

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
