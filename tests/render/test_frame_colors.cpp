#include <algorithm>

#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/render_harness.h"
#include "support/scripted.h"

// Pixels against colours and places worked out by hand: what the plain frame leaves out.

namespace {

using harness::Near;
using harness::Picture;
using harness::Rgb;

constexpr Rgb white{255, 255, 255};

class FrameColors : public harness::RenderTest {};

TEST_F(FrameColors, MaterialsWithAndWithoutLight)
{
    const struct {
        int32_t Material;
        int16_t Texture;
        bool Textures;
        Rgb Flat;
        std::array<double, 3> Diffuse;
    } rows[] = {
        {0, 0, true, {255, 127, 255}, {1, 0.5, 1}},
        {2, 0, true, {255, 127, 255}, {1, 0.5, 1}},
        {1, 0, true, {255, 191, 64}, {1, 0.75, 0.25}},
        {1, 1, true, {255, 255, 255}, {1, 1, 1}}, // a number without a texture
        {1, 9, false, {191, 191, 191}, {0.5, 0.5, 0.5}},
    };
    ViewGrid = false;
    harness::OpenSquare();
    Materials.Add();
    Meshes[1].MeshMaterials.Add();
    Meshes[1].Faces[1].Material = 1;
    for (const auto& row : rows) {
        Materials[1].Texture = row.Texture;
        Meshes[1].MeshMaterials[1].Index = row.Material;
        ViewTextures = row.Textures;
        ViewLighting = false;
        EXPECT_TRUE(Near(harness::Paint().At(103, 82), row.Flat)) << row.Material << " " << row.Texture;
        ViewLighting = true;
        // A quarter of the colour as ambient, times 0.5 of the scene and 0.5 of each lamp. Lamp 0 stands at (100, 100,
        // 100), so n . l = 1 / sqrt(3), lamp 1 with a quarter of its light opposite.
        for (const auto& [up, lamp] : {std::pair{1.0F, 1.0}, {-1.0F, 0.25}}) {
            Meshes[1].Normals[1] = {0, 0, 3 * up};
            const double shade = 255 * (0.25 * 1.5 + lamp * 0.57735);
            const Rgb lit{static_cast<uint8_t>(shade * row.Diffuse[0]), static_cast<uint8_t>(shade * row.Diffuse[1]),
                          static_cast<uint8_t>(shade * row.Diffuse[2])};
            EXPECT_TRUE(Near(harness::Paint().At(103, 82), lit)) << row.Material << " " << row.Texture << " " << up;
        }
    }
}

TEST_F(FrameColors, RubberBandNeedsMoreThanFourPixelsBothWays)
{
    const struct {
        float X, Y;
        int32_t Button;
        int16_t Tool;
        bool Shown;
    } rows[] = {{150, 110, 1, 0, true},  {150, 110, 0, 0, false},   {150, 110, 4, 0, false},
                {150, 110, 1, 1, false}, {54.5F, 110, 1, 0, false}, {150, 46, 1, 0, false},
                {55, 55, 1, 0, true},    {8, 110, 1, 0, true},      {1e9F, 1e9F, 1, 0, true}};
    ViewGrid = false;
    CameraLabels.fill(0);
    MouseStartX = 50.5F; // ties to even: 50
    MouseStartY = 50;
    for (const auto& row : rows) {
        MouseButton = row.Button;
        ToolMode = row.Tool;
        MouseLastX = row.X;
        MouseLastY = row.Y;
        const Picture picture = harness::Paint();
        EXPECT_EQ(picture.Count(white) > 0, row.Shown) << row.X << " " << row.Y;
        if (row.Shown && row.X == 150) {
            EXPECT_NEAR(picture.Count(white), 160, 4); // half of the 320 pixels around it
            for (const auto& [x, y] : {std::pair{50, 80}, {150, 80}, {100, 160 - 50}, {100, 160 - 110}}) {
                int on = 0;
                for (int i = 0; i < 16; ++i) { // a row of four by four: lines may lie on either side of their place
                    on += picture.At(x - 2 + i % 4, y - 2 + i / 4) == white ? 1 : 0;
                }
                EXPECT_EQ(on, 2) << x << " " << y;
            }
        }
    }
}

TEST_F(FrameColors, EachCameraHasALabel)
{
    ViewGrid = false;
    for (CurrentCamera = 0; CurrentCamera <= CameraCount + 1; ++CurrentCamera) {
        const bool labelled = CurrentCamera >= 1 && CurrentCamera <= CameraCount;
        EXPECT_EQ(harness::Paint().Count(white) > 60, labelled) << CurrentCamera;
    }
}

TEST_F(FrameColors, EverythingGrowsWithThePixelScale)
{
    LineAA = false;
    harness::OpenSquare();
    ActiveTab = 1;
    DisplayMode = 1;
    ActiveBone = 1;
    Bones.Items.resize(3);
    Bones[1].Position = {0.7F, 0.5F, 0};
    Bones[2].Position = {-0.7F, 0.7F, 0};
    Bones[3].Position = {-0.1F, 0.7F, 0};
    Bones[2].LinkBone = 3;
    MouseButton = 1;
    MouseStartX = 10;
    MouseLastX = 70;
    MouseStartY = 100;
    MouseLastY = 150;
    const auto label = static_cast<int>(std::count(CameraLabels.begin() + 5120, CameraLabels.begin() + 6400, 255));
    for (const int scale : {1, 2}) {
        PixelScale = static_cast<float>(scale);
        harness::SizeView(200 * scale, 160 * scale);
        const int area = scale * scale;
        const Picture picture = harness::Paint();
        EXPECT_EQ(picture.Count({255, 127, 0}), area * 12 * 12); // the active bone
        // Two more with a link of 48 pixels between their middles, 1.5 pixels wide.
        EXPECT_EQ(picture.Count({255, 255, 0}), area * 2 * 8 * 8 + (48 - 8) * scale * (scale == 1 ? 2 : 3));
        EXPECT_EQ(picture.Count({0, 255, 0}), area * 4 * 5 * 5);           // unassigned vertices
        EXPECT_NEAR(picture.Count(white), area * (label + 110), area * 4); // with half of the band
        EXPECT_EQ(picture.Count({0, 0, 0}), area * (200 + 160 - 1));       // the grid's middle lines cross
    }
}

TEST_F(FrameColors, SizesBelowOneBecomeOneAndNoneCountsWithoutAContext)
{
    const int before = scripted::Redraws;
    ResizeViewport(0, -5);
    EXPECT_EQ(ViewWidth, 1);
    EXPECT_EQ(ViewHeight, 1);
    EXPECT_EQ(ViewAspect, 1);
    EXPECT_EQ(scripted::Redraws, before + 1);
    EXPECT_FALSE(QueryOpenGLInfo().Version.empty());
    ShutdownOpenGL();
    ResizeViewport(30, 30);
    PaintFrame();
    EXPECT_EQ(ViewWidth, 1);
    EXPECT_TRUE(QueryOpenGLInfo().Version.empty());
}

} // namespace
