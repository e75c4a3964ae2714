#pragma once

#include <cstdint>

// The tool and the drag under way. Positions are pixels of the view, origin at the top left.

inline int16_t ToolMode = 0;    ///< 0 select, 1 orbit, 2 pan, 3 zoom
inline int32_t MouseButton = 0; ///< button of the drag: 1 left, 4 middle, 0 none
inline float MouseLastX = 0;
inline float MouseLastY = 0;
inline float MouseStartX = 0;
inline float MouseStartY = 0;

/// Puts all of the above back to 0.
void ResetDrag();
