#pragma once

#include "app/modMvmDef.h"

// The frame in single calls, with state set for each face. What is checked by its pixels elsewhere is left out: the
// rubber band, other scales, and what the colours of materials and the lamps are.
namespace plain {

/// Paints the frame at PixelScale 1.
void PaintFrame();
/// Draws the faces one by one, each with its material if that is wanted.
void Surface(const MvmMesh& mesh, bool materials);

} // namespace plain
