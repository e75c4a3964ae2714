#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A context of OpenGL that needs no display, with a framebuffer like the one of the window's view.

/// Makes a compatibility context and makes it current until the process ends, with a framebuffer of this size in pixels
/// bound. False, with *error set, when the system has none to give or when it is too large.
bool MakeOffscreenContext(int32_t width, int32_t height, std::string* error);
/// The pixels of the framebuffer: red, green, blue, one byte each, the top row first.
[[nodiscard]] std::vector<uint8_t> ReadOffscreenPixels(int32_t width, int32_t height);
