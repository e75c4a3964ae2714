#pragma once

#include <vector>

#include "app/modMvmDef.h"
#include "render/modMaterialLook.h"

/// Colours of vertices by their bone.
struct AssignmentColors {
    Color4 Unassigned;
    Color4 Active; ///< belongs to ActiveBone
    Color4 Other;
};

/// Alpha of vertices and bones that lie over the surface, 0 to 255.
[[nodiscard]] int OverlayAlpha();
/// The colours in which vertices are drawn as points.
[[nodiscard]] AssignmentColors PointColors();
/// One colour for each vertex of the mesh. Valid until the next call.
[[nodiscard]] const std::vector<Color4>& ColorsOfVertices(const MvmMesh& mesh, const AssignmentColors& colors);
