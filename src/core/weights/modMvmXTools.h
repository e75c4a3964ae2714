#pragma once

#include <cstdint>

/// Gives each unassigned vertex of the mesh to the nearest ordinary bone. Warns without bones or when it is no skin;
/// ends with Redraw.
void AutoAssign(int16_t mesh);

/// Replaces the normals of a mesh by one smooth normal for each vertex, weighted by area and angle.
void RegenerateNormals(int16_t mesh);
