#pragma once

#include <vector>

#include "app/modMvmDef.h"
#include "modMaterialState.h"

/// Colours of vertices by their bone.
struct AssignmentColors {
    Color4 Unassigned;
    Color4 Active; ///< belongs to ActiveBone
    Color4 Other;
};

/// One colour for each vertex of the mesh. Valid until the next call.
[[nodiscard]] const std::vector<Color4>& ColorsOfVertices(const MvmMesh& mesh, const AssignmentColors& colors);
