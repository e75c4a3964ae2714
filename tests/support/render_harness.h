#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "app/modMvmDef.h"

// A real OpenGL context with a framebuffer of its own, pictures read from it, and scenes to draw.
namespace harness {

using Rgb = std::array<int, 3>;

/// A picture, bottom row first.
struct Picture {
    int Width = 0;
    int Height = 0;
    std::vector<uint8_t> Bytes; ///< red, green, blue

    [[nodiscard]] Rgb At(int x, int y) const;
    /// Pixels that equal the colour within `tolerance` in each channel.
    [[nodiscard]] int Count(const Rgb& color, int tolerance = 1) const;
};

/// Makes the view this large, in device pixels, with a new framebuffer, and binds it.
void SizeView(int width, int height);
/// Reads the framebuffer.
[[nodiscard]] Picture Grab();
/// Paints a frame and reads it.
[[nodiscard]] Picture Paint();
/// Pixels that differ in any channel; all of them when the sizes differ.
[[nodiscard]] int Differences(const Picture& a, const Picture& b);
/// True when no channel of the two colours is further apart than `tolerance`.
[[nodiscard]] bool Near(const Rgb& a, const Rgb& b, int tolerance = 1);

/// Adds a texture of 16 by 16 texels in two colours; with opacity, half of the texels are transparent. Gives its number.
int16_t AddTexture(const Rgb& color, bool opacity);
/// Adds a skin mesh with one square of the given half side in the plane Z = z, facing +Z, and gives its index.
int16_t AddSquare(float half, float z);
/// A lumpy round mesh with several materials, bones and textures, some faces that point nowhere, assigned at random.
/// Makes it the skin and opens the model.
void BuildCreature(std::mt19937* random, int rings, int segments);

/// Starts each test from the state of the program's start, with camera 4 (looking along -Z) and a view of 200 by 160.
class RenderTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace harness
