#pragma once

#include <cstdint>

/// Binds a texture of the table with the present filters, or switches texturing off for an invalid number or while
/// ViewTextures is false.
void BindTexture(int16_t index);
