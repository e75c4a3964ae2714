#pragma once

#include "app/modMvmDef.h"

// The faces of a mesh as vertex arrays, built anew for each pass in memory that is reused, so they always show the
// scene as it stands. Faces with a vertex number outside the mesh are left out; a normal or texture coordinate outside
// its array is (0, 0, 0) or (0, 0).

/// Draws the faces in their order with their materials, a batch for each run of equal state. The state of the last face
/// stays in force.
void DrawFaces(const MvmMesh& mesh);
/// Draws the faces in one batch, positions only. With the colour array enabled it takes a colour for each vertex.
void DrawPlainFaces(const MvmMesh& mesh);
