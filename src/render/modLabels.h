#pragma once

#include <cstddef>

// The names of the cameras as images for the corner of the view.

inline constexpr int LabelWidth = 80;
inline constexpr int LabelHeight = 16;
inline constexpr size_t LabelBytes = static_cast<size_t>(LabelWidth) * LabelHeight;

/// Draws the eight words into CameraLabels: one byte a pixel, 0 or 255, bottom row first, the image of camera 8 first.
void FillCameraLabels();
