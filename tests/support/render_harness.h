#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

// A real OpenGL context with a framebuffer of its own, pictures read from it, and scenes to draw.
namespace harness {

using Rgb = std::array<uint8_t, 3>;

/// A picture, bottom row first.
struct Picture {
    int Width = 0;
    std::vector<Rgb> Pixels;

    [[nodiscard]] Rgb At(int x, int y) const { return Pixels.at(static_cast<size_t>(y * Width + x)); }
    [[nodiscard]] int Count(const Rgb& color) const;
};

inline int MadeCurrent = 0; ///< calls of MakeViewCurrent

/// Makes the view this large, in device pixels, with a new framebuffer, and binds it.
void SizeView(int width, int height);
/// Reads the framebuffer.
[[nodiscard]] Picture Grab();
/// Paints a frame and reads it.
[[nodiscard]] Picture Paint();
/// True when no channel of the two colours is further apart than two steps.
[[nodiscard]] bool Near(const Rgb& a, const Rgb& b);

/// Opens a model whose skin is a square of half side 0.5 in the plane Z = 0, facing +Z.
void OpenSquare();
/// Opens a model whose skin is a lumpy round mesh with several materials, bones and textures, some faces that point
/// nowhere, assigned at random.
void BuildCreature(std::mt19937* random, int rings, int segments);

/// Starts each test from the state of the program's start, with camera 4 (looking along -Z) and a view of 200 by 160:
/// the scene's (x, y) lies at pixel (100 + 80 x, 80 + 80 y).
class RenderTest : public testing::Test {
protected:
    std::mt19937 random{20250101};

    void SetUp() override;
    void TearDown() override;
};

} // namespace harness
