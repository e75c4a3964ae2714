#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

// Picking: the visible vertices of a mesh inside a box get the active bone. Window coordinates are GL's: device pixels,
// origin at the bottom left.

/// What a released drag asks for: box in window coordinates; a drag of at most 2 pixels in a direction is 1 by 1.
struct PickBox {
    int32_t X = 0, Y = 0, Width = 0, Height = 0;
};
/// The box of a drag from (startX, startY) to (endX, endY), mouse positions with origin top left, in a view of this
/// height. All in pixels of the window system; the result too.
[[nodiscard]] PickBox BoxOfDrag(float startX, float startY, float endX, float endY, int32_t viewHeight);

/// Assigns the vertices of `mesh` that the box takes. Sizes of at most 2 stand for a click. Needs the view's context.
void PickVertices(int16_t mesh, int32_t x, int32_t y, int32_t width, int32_t height);
void AssignVertex(int16_t mesh, int32_t vertex);
[[nodiscard]] bool InPickRect(int32_t px, int32_t py, int32_t left, int32_t bottom, int32_t right, int32_t top);
