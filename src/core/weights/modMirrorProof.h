#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "weights/modMirror.h"

/// What mirroring did to the target side, for one bone.
struct MirroredBone {
    int16_t Bone = 0;    ///< 0 for vertices without a bone
    int32_t Taken = 0;   ///< vertices that have it now and had another one, or none, before
    int32_t Kept = 0;    ///< vertices that had it before and have it still
    int32_t Lost = 0;    ///< vertices that had it before and have another one now
    int32_t Cleared = 0; ///< vertices that had it before and have none now
};

struct MirrorProof {
    bool ByAliases = false;                ///< bones were paired by the alias file of the mesh, else by position
    std::vector<MirroredBone> Bones{};     ///< those with any vertex on the target side, by number
    std::vector<int32_t> WithoutSource{};  ///< target vertices with no vertex on the other side
    std::vector<int32_t> WithSeveral{};    ///< target vertices with more than one
    std::vector<int32_t> Disagreeing{};    ///< those of them whose sources give different bones
    std::vector<int16_t> WithoutPartner{}; ///< bones of source vertices that nothing takes over from
    /// Bones with a partner whose own partner is another one: bone, partner, the partner's partner (0 for none).
    std::vector<std::array<int16_t, 3>> NotMutual{};
};

/// MirrorWeights with an account of what it did.
[[nodiscard]] MirrorProof MirrorWithProof(const MirrorOptions& options);
