#pragma once

#include <array>
#include <cstdint>

// What a material looks like in the present frame. Materials of equal look share a batch.

using Color4 = std::array<float, 4>; ///< red, green, blue, alpha, 0 to 1

enum class Surface : uint8_t {
    NoMaterial,  ///< pink
    NoTexture,   ///< orange: no usable texture
    Textured,    ///< white, times the texture
    TexturesOff, ///< grey
};

/// Texture is a number into the texture table, 0 for none.
struct Look {
    Surface Kind = Surface::NoMaterial;
    int16_t Texture = 0;

    bool operator==(const Look&) const = default;
};

/// The look of a number into Materials under the present flags; any other number is no material.
[[nodiscard]] Look LookOf(int32_t material);
/// Turns a look into GL state. `previous` is the look in force, or null when nothing is known: what both share is not
/// set again.
void ApplyLook(const Look& look, const Look* previous);
