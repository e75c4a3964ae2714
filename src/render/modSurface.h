#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

// The surface of a mesh. Mesh indices that are not valid draw nothing.

/// The faces with their materials.
void DrawMesh(int16_t mesh);
/// The faces in the colours of their vertices' bones.
void DrawAssignments(int16_t mesh);
/// The depth of the surface as the overlays want it: nothing in wire mode.
void DrawDepthOnly(int16_t mesh);
