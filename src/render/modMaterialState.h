#pragma once

#include <array>
#include <cstdint>

// What a material means to GL in the present frame. Neighbouring faces of equal state share a batch.

using Color4 = std::array<float, 4>; ///< red, green, blue, alpha, 0 to 1

/// A colour given in bytes, 0 to 255.
[[nodiscard]] constexpr Color4 ByteColor(int red, int green, int blue, int alpha)
{
    return {static_cast<float>(red) / 255.0F, static_cast<float>(green) / 255.0F, static_cast<float>(blue) / 255.0F,
            static_cast<float>(alpha) / 255.0F};
}

enum class Surface : uint8_t {
    NoMaterial,  ///< pink
    NoTexture,   ///< orange: no usable texture
    Textured,    ///< white, times the texture
    TexturesOff, ///< grey
};

/// Texture is a number into the texture table, 0 for none.
struct MaterialState {
    Surface Kind = Surface::NoMaterial;
    int16_t Texture = 0;

    bool operator==(const MaterialState&) const = default;
};

/// The state of a number into Materials under the present flags; any other number is no material.
[[nodiscard]] MaterialState StateOfMaterial(int32_t material);
/// Sets GL to a state.
void ApplyMaterialState(const MaterialState& state);
/// Sets GL to the state of a material. Any number outside 1 to MaterialCount stands for no material.
void BindMaterial(int32_t material);
