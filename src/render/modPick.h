#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

// Picking: the visible vertices of a mesh inside a box get the active bone. Boxes are in pixels of the window system
// with the origin at the bottom left of the view; PickVertices takes them to device pixels by PixelScale.

/// What a released drag asks for; a drag of at most 2 pixels in a direction is 1 by 1.
struct PickBox {
    int32_t X = 0, Y = 0, Width = 0, Height = 0;
};
/// The box of a drag from (startX, startY) to (endX, endY), mouse positions with origin top left, in a view of this
/// height. Positions are held to 16 bits.
[[nodiscard]] PickBox BoxOfDrag(float startX, float startY, float endX, float endY, int32_t viewHeight);

/// Assigns the vertices of `mesh` that the box takes, edges included, then updates the status. A width or height of at
/// most 2 stands for a click at (x, y), which takes a box of PointSize. While ViewCullVerts is true and faces are
/// solid, only visible vertices are taken. Nothing happens for an invalid mesh or without a context.
void PickVertices(int16_t mesh, int32_t x, int32_t y, int32_t width, int32_t height);
/// While true, a pick passes over vertices that have a bone, and says in the panel "toolhelp" how many.
inline bool PickOnlyFree = false;
/// The vertex that a click at (x, y) would take, the nearest of several; 0 for none.
[[nodiscard]] int32_t VertexAt(int16_t mesh, int32_t x, int32_t y);
/// Gives the active bone to a vertex; nothing for a number outside the mesh.
void AssignVertex(int16_t mesh, int32_t vertex);
[[nodiscard]] bool InPickRect(int32_t px, int32_t py, int32_t left, int32_t bottom, int32_t right, int32_t top);
