#include <algorithm>
#include <gtest/gtest.h>

#include "render/modLabels.h"
#include "render/modOpenGL.h"

namespace {

/// Box around the ink of an image.
struct Ink {
    int Left = LabelWidth, Right = -1, Bottom = LabelHeight, Top = -1;
};

Ink InkOf(int image)
{
    Ink ink;
    for (int y = 0; y < LabelHeight; ++y) {
        for (int x = 0; x < LabelWidth; ++x) {
            const uint8_t value = CameraLabels[static_cast<size_t>((image * LabelHeight + y) * LabelWidth + x)];
            EXPECT_TRUE(value == 0 || value == 255);
            if (value == 255) {
                ink = {std::min(ink.Left, x), std::max(ink.Right, x), std::min(ink.Bottom, y), std::max(ink.Top, y)};
            }
        }
    }
    return ink;
}

TEST(CameraLabels, WordsStandOnTheirBaselines)
{
    FillCameraLabels();
    // Bottom, Top, Right, Left, Back, Front, Ortho, Perspective; "p" and "g" reach three rows below the baseline.
    constexpr int lowest[] = {5, 2, 2, 4, 5, 5, 5, 2};
    constexpr int baseline[] = {5, 5, 5, 4, 5, 5, 5, 5};
    for (int image = 0; image < 8; ++image) {
        const Ink ink = InkOf(image);
        EXPECT_EQ(ink.Left, 1) << image;
        EXPECT_EQ(ink.Bottom, lowest[image]) << image;
        EXPECT_EQ(ink.Top, baseline[image] + 8) << image;
        EXPECT_LE(ink.Right, 76) << image;
    }
    EXPECT_EQ(InkOf(7).Right, 76);
}

} // namespace
