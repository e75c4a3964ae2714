#pragma once

#include <cstdint>
#include <vector>

// The plain forms of frame and pick: state set for each face, single calls, one depth read for each vertex.
namespace plain {

/// Paints the frame at PixelScale 1.
void PaintFrame();
/// The vertices that a pick takes, in ascending order; box in GL window coordinates, at PixelScale 1.
[[nodiscard]] std::vector<int32_t> PickedVertices(int16_t mesh, int32_t x, int32_t y, int32_t width, int32_t height);

} // namespace plain
