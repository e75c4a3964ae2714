#pragma once

#include <array>
#include <cstdint>
#include <string>

// The OpenGL context of the view and the frame. All functions but InitOpenGL do nothing while there is no context. The
// context must be current; MakeViewCurrent sees to that outside a paint event.

inline bool GLContext = false; ///< a context stands
inline int32_t ViewWidth = 1;  ///< size of the view in device pixels
inline int32_t ViewHeight = 1;
inline int32_t MaxTextureSide = 64; ///< of a picture that the context takes; 64 is what every driver takes
inline std::array<uint8_t, 10240> CameraLabels{}; ///< eight images of 80 by 16 bytes, bottom row first

/// Sets the state that holds for the life of the current context and fills CameraLabels. False when the context lacks
/// the fixed pipeline, which it says in a message box.
bool InitOpenGL();
/// Sizes the view, in device pixels; sides below 1 become 1. The viewport itself follows with the next frame. Ends with
/// Redraw.
void ResizeViewport(int32_t width, int32_t height);
/// Paints one whole frame into the current framebuffer, on mid grey. Redraw asks for it; the window shows it. Relies on
/// no GL state of earlier frames. The 2D layer, line widths and point sizes are in pixels of the window system, so that
/// they keep their size to the eye and the rubber band lies under the mouse at any PixelScale.
void PaintFrame();
/// Forgets the context. GL textures must have been freed.
void ShutdownOpenGL();

/// Makes the context of the view current. The window implements it; without a context it does nothing.
void MakeViewCurrent();

/// Vendor, renderer, version and extensions as the context tells them; empty without one.
struct OpenGLInfo {
    std::string Vendor, Renderer, Version, Extensions;
};
[[nodiscard]] OpenGLInfo QueryOpenGLInfo();
