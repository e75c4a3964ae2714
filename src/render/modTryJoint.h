#pragma once

#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"

// A try of a joint: the frame shows the vertices of the active bone, and of the bones that hang on it by their links,
// turned about its joint around the axis of sight. The scene stays as it is.

inline bool TryingJoint = false;
inline double JointAngle = 0; ///< degrees, positive anticlockwise to the eye

/// The places of the vertices of `mesh` with the joint of `bone` turned by `degrees` as the current camera sees it.
[[nodiscard]] std::vector<Vec3> TurnedVertices(const MvmMesh& mesh, int16_t bone, double degrees);

/// Lends the turned places to the edited mesh for its life, while a joint is tried.
class LentPose {
public:
    LentPose();
    ~LentPose();
    LentPose(const LentPose&) = delete;
    LentPose& operator=(const LentPose&) = delete;

private:
    int16_t mesh = 0; ///< 0 when nothing is lent
    std::vector<Vec3> places;
};
