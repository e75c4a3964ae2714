#pragma once

#include <cstdint>

// What the view shows. The main window sets these from the ticks of its menus.

inline bool ViewWire = false;
inline bool ViewGrid = true;
inline bool ViewTextures = true;
inline bool ViewLighting = true;
inline bool ViewBackfaces = false;
inline bool ViewIsolines = false;
inline bool ViewNormals = false;
inline bool ViewCullVerts = true;
inline bool LineAA = true;
inline bool FilterTextures = true;
inline int32_t PointSize = 5; ///< drawn size of a vertex in pixels, 1 to 10
inline float PixelScale = 1;  ///< device pixels for each pixel of the window system

/// Puts all of the above back to their start values.
void ResetViewFlags();
