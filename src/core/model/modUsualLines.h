#pragma once

#include "app/modMvmDef.h"

/// Reads the line at `at` of an open mesh where it has the shape that writers of models give to vertices, texture
/// coordinates, normals and faces, and adds its entry. Gives the line's end, which must be a CR. A line that it takes
/// reads under the general rules as it does here and holds no brace; for any other it gives nullptr and changes
/// nothing.
const char* ReadUsualLine(const char* at, MvmMesh* mesh);
