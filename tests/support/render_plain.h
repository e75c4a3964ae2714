#pragma once

#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"

// The plain forms of frame and pick: state set for each face, single calls, one depth read for each vertex.
namespace plain {

/// Paints the frame at PixelScale 1.
void PaintFrame();
/// The vertices that a pick takes, in ascending order; box in GL window coordinates, at PixelScale 1.
[[nodiscard]] std::vector<int32_t> PickedVertices(int16_t mesh, int32_t x, int32_t y, int32_t width, int32_t height);

/// Sets the texture and the colours of a material, by its number in the scene.
void Bind(int32_t material);
/// Draws the mesh's faces one by one, each with its material, as a pass that only fills the depth.
void DepthFaces(const MvmMesh& mesh);

} // namespace plain
