#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

/// Whether bones can be assigned to the vertices of the mesh: it is a skin, and there are bones. Warns when it cannot.
[[nodiscard]] bool MayAssign(int16_t mesh);
/// Where the joint of a bone lies in the space of the skin; each coordinate is rounded once.
[[nodiscard]] Vec3 JointInSkin(const MvmBone& bone);

/// Gives each unassigned vertex of the mesh to the nearest ordinary bone. Warns without bones or when it is no skin;
/// ends with Redraw.
void AutoAssign(int16_t mesh);

/// Replaces the normals of a mesh by one smooth normal for each vertex, weighted by area and angle.
void RegenerateNormals(int16_t mesh);
