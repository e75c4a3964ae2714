#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A model file tells the bone of a vertex by a joint number and the role of a mesh by its name. What a load of the
// saved file will make of that can differ from what stands in memory.

enum class LossReason {
    NoRole,      ///< the mesh is neither skin nor shadow, or its name will give it no such role
    OtherKind,   ///< the bone is a shadow bone and the mesh will be no shadow, or the other way round
    NoNumber,    ///< the bone's name ends in no number
    SharedNumber ///< a later bone of the kind has the same joint number
};

/// Vertices of a mesh that belong to one bone and will belong to another one, or to none, after a save and a load.
struct LostAssignment {
    int32_t Mesh = 0;
    int16_t Bone = 0;
    LossReason Reason = LossReason::NoRole;
    int16_t Winner = 0; ///< the bone that they will belong to, 0 for none
    int32_t Vertices = 0;
};

/// True when the last two characters of a bone's name begin a number, so that it has a joint number of its own.
[[nodiscard]] bool EndsInNumber(std::string_view boneName);

/// By mesh, then by bone.
[[nodiscard]] std::vector<LostAssignment> FindLostAssignments();

/// One line, UTF-8, that says how many vertices of which mesh, and why.
[[nodiscard]] std::string DescribeLoss(const LostAssignment& loss);

/// Puts a line into the Info Log for each loss, a last one for all beyond a few dozen.
void LogLostAssignments();
