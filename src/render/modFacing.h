#pragma once

#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"

/// Marks the faces that GL will drop as back faces for certain, under its present matrices, viewport and culling: one
/// entry a face, 1 for a marked one. Faces that are nearly edge-on, that reach behind the eye or that name a vertex
/// outside the mesh are not marked; none is while culling is off. Valid until the next call.
[[nodiscard]] const std::vector<uint8_t>& FacesTurnedAway(const MvmMesh& mesh);
