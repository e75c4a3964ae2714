#pragma once

#include <cstdint>
#include <vector>

namespace plain {

/// The vertices that a pick takes, in ascending order, with one depth read for each; box in GL window coordinates, at
/// PixelScale 1.
[[nodiscard]] std::vector<int32_t> PickedVertices(int16_t mesh, int32_t x, int32_t y, int32_t width, int32_t height);

} // namespace plain
