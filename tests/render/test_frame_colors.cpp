#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modMvmDraw.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/render_harness.h"
#include "support/scripted.h"

// Probes of single pixels against colours worked out by hand. Camera 4 looks along -Z at a box of half height 1, so that
// in a view of 200 by 160 the scene's (x, y) lies at pixel (100 + 80 x, 80 + 80 y).

namespace {

using harness::Near;
using harness::Picture;
using harness::Rgb;

constexpr Rgb background{128, 128, 128};

class FrameColors : public harness::RenderTest {
protected:
    /// A square of half side 0.5 at Z = 0 as the skin, with one material and no lighting, grid or smoothing.
    void OpenSquare()
    {
        ViewGrid = ViewLighting = LineAA = false;
        SkinMesh = harness::AddSquare(0.5F, 0);
        ModelOpen = true;
    }

    static void GiveMaterial(int16_t texture)
    {
        Materials.Add().Texture = texture;
        Meshes[SkinMesh].MeshMaterials.Add().Index = MaterialCount();
        for (MvmFace& face : Meshes[SkinMesh].Faces) {
            face.Material = 1;
        }
    }

    static Rgb Middle() { return harness::Paint().At(110, 90); }
};

TEST_F(FrameColors, EmptyViewShowsBackgroundGridAndLabel)
{
    LineAA = false;
    const Picture picture = harness::Paint();
    EXPECT_TRUE(Near(picture.At(110, 90), background)) << picture.At(110, 90)[0];
    // Centre lines are opaque black, the others let three quarters of the grey through.
    EXPECT_GT(picture.Count({0, 0, 0}), 300);
    EXPECT_TRUE(Near(picture.At(180, 120), {96, 96, 96}, 2) || Near(picture.At(179, 120), {96, 96, 96}, 2));
    EXPECT_GT(picture.Count({255, 255, 255}, 0), 50);
    ViewGrid = false;
    EXPECT_EQ(harness::Paint().Count({0, 0, 0}), 0);
    // A wider spacing moves the neighbour of the centre line away.
    ViewGrid = true;
    SkinScale = 5;
    EXPECT_TRUE(Near(harness::Paint().At(180, 120), background));
}

TEST_F(FrameColors, UnlitMaterialsShowTheirFlatColors)
{
    OpenSquare();
    EXPECT_TRUE(Near(Middle(), {255, 127, 255}));
    GiveMaterial(0);
    EXPECT_TRUE(Near(Middle(), {255, 191, 64}));
    Materials[1].Texture = 9; // a number without a texture draws white
    EXPECT_TRUE(Near(Middle(), {255, 255, 255}));
    ViewTextures = false;
    EXPECT_TRUE(Near(Middle(), {191, 191, 191}));
    Meshes[SkinMesh].MeshMaterials[1].Index = 2;
    EXPECT_TRUE(Near(Middle(), {255, 127, 255}));
}

TEST_F(FrameColors, TexturesModulateAndOpacityCutsHoles)
{
    OpenSquare();
    FilterTextures = false;
    GiveMaterial(harness::AddTexture({200, 40, 90}, false));
    Picture picture = harness::Paint();
    const int first = picture.Count({200, 40, 90});
    const int second = picture.Count({55, 215, 165});
    EXPECT_GT(first, 2000);
    EXPECT_EQ(first + second, 80 * 80);
    Materials[1].Texture = harness::AddTexture({200, 40, 90}, true);
    picture = harness::Paint();
    EXPECT_EQ(picture.Count({200, 40, 90}), 0);
    EXPECT_EQ(picture.Count({55, 215, 165}), second);
}

TEST_F(FrameColors, LightingAddsAmbientAndBothLamps)
{
    OpenSquare();
    ViewLighting = true;
    SkinScale = 1;
    // A tiny square at the origin: lamp 0 stands at (100, 100, 100), so n . l = 1 / sqrt(3) = 0.57735; lamp 1 lies
    // behind. Pink (1, 0.5, 1): ambient material 0.25 of it, times scene 0.5 + lamps 0.5 + 0.5, plus diffuse.
    const double shade = 0.25 * 1.5 + 0.57735;
    const Rgb expected{static_cast<int>(255 * shade), static_cast<int>(127.5 * shade), static_cast<int>(255 * shade)};
    EXPECT_TRUE(Near(harness::Paint().At(101, 82), expected, 2)) << harness::Paint().At(101, 82)[0];
}

TEST_F(FrameColors, ShadedSurfaceShowsTheAssignments)
{
    OpenSquare();
    ActiveTab = 1;
    DisplayMode = 1;
    ActiveBone = 3;
    for (const auto& [bone, color] :
         {std::pair<int, Rgb>{0, {0, 0, 127}}, {-4, {0, 0, 127}}, {3, {0, 224, 255}}, {2, {0, 0, 255}}}) {
        Meshes[SkinMesh].VertexBones.Items.assign(4, static_cast<int16_t>(bone));
        EXPECT_TRUE(Near(Middle(), color)) << bone;
    }
    // No bone is active: unassigned comes first.
    ActiveBone = 0;
    Meshes[SkinMesh].VertexBones.Items.assign(4, 0);
    EXPECT_TRUE(Near(Middle(), {0, 0, 127}));
}

TEST_F(FrameColors, TintLiesOverTheSurface)
{
    OpenSquare();
    ActiveTab = 1;
    ActiveBone = 3;
    const double share = 127.0 / 255;
    const auto mix = [share](int tint, int under) { return static_cast<int>(tint * share + under * (1 - share)); };
    const std::pair<int, Rgb> cases[] = {{0, {mix(0, 255), mix(255, 127), mix(0, 255)}},
                                         {3, {mix(255, 255), mix(0, 127), mix(0, 255)}},
                                         {2, {255, 127, 255}}};
    for (const auto& [bone, color] : cases) {
        Meshes[SkinMesh].VertexBones.Items.assign(4, static_cast<int16_t>(bone));
        EXPECT_TRUE(Near(Middle(), color, 2)) << bone;
    }
    // From behind, with back faces on, the surface shows bare.
    ViewBackfaces = true;
    CurrentCamera = 3;
    Meshes[SkinMesh].VertexBones.Items.assign(4, 0);
    EXPECT_TRUE(Near(Middle(), {255, 127, 255}));
    ViewBackfaces = false;
    EXPECT_TRUE(Near(Middle(), background));
}

TEST_F(FrameColors, AlphaTestStaysLoweredOnceAssignmentsWereDrawn)
{
    OpenSquare();
    GiveMaterial(harness::AddTexture({200, 40, 90}, true));
    // Filtered edges of the holes have alphas between 0 and 1: with the low reference more of them is drawn.
    for (Vec2& place : Meshes[SkinMesh].TexCoords) {
        place = {place.U * 0.1F, place.V * 0.1F};
    }
    const int before = harness::Paint().Count(background);
    ActiveTab = 1;
    static_cast<void>(harness::Paint());
    ActiveTab = 0;
    const int after = harness::Paint().Count(background);
    EXPECT_LT(after, before);
    ASSERT_TRUE(InitOpenGL());
    EXPECT_EQ(harness::Paint().Count(background), before);
}

TEST_F(FrameColors, VerticesAndBonesAsPoints)
{
    OpenSquare();
    ActiveTab = 1;
    DisplayMode = 1;
    ActiveBone = 1;
    Bones.Add().Position = {0.7F, 0.7F, 0};
    Bones.Add().Position = {-0.7F, 0.7F, 0};
    Bones.Add().Position = {-0.7F, -0.7F, 0};
    Bones[3].IsShadow = true;
    Meshes[SkinMesh].VertexBones.Items = {0, 1, 2, 0};
    Picture picture = harness::Paint();
    EXPECT_TRUE(Near(picture.At(59, 39), {0, 255, 0}));
    EXPECT_TRUE(Near(picture.At(140, 39), {255, 0, 0}));
    EXPECT_TRUE(Near(picture.At(140, 120), {255, 255, 255}));
    EXPECT_EQ(picture.Count({255, 127, 0}), 12 * 12);
    EXPECT_EQ(picture.Count({255, 255, 0}), 8 * 8);
    EXPECT_TRUE(Near(picture.At(44, 24), background)) << "the shadow bone hides in the skin";

    Bones[1].LinkBone = 2;
    picture = harness::Paint();
    EXPECT_TRUE(Near(picture.At(100, 136), {255, 127, 0}) || Near(picture.At(100, 135), {255, 127, 0}));

    // Half transparent over the grey unless shaded; the active vertex stays opaque.
    DisplayMode = 0;
    picture = harness::Paint();
    EXPECT_TRUE(Near(picture.At(42, 134), {191, 191, 64}, 2));
    EXPECT_TRUE(Near(picture.At(140, 39), {255, 0, 0}));

    EditTarget = 1;
    picture = harness::Paint();
    EXPECT_TRUE(Near(picture.At(42, 22), {191, 191, 64}, 2));
    EXPECT_TRUE(Near(picture.At(42, 134), background));

    // Scale, then offset: a bone at p lands at scale * (p + offset).
    EditTarget = 0;
    DisplayMode = 1;
    SkinScale = 0.5F;
    SkinOffset = {0.5F, -0.7F, 0};
    EXPECT_TRUE(Near(harness::Paint().At(148, 80), {255, 127, 0}));
}

TEST_F(FrameColors, HiddenVerticesShowOnlyWithoutCulling)
{
    OpenSquare();
    ActiveTab = 1;
    DisplayMode = 1;
    Meshes[SkinMesh].Vertices.Add({0.2F, 0.2F, -0.5F});
    Meshes[SkinMesh].VertexBones.Items.assign(5, 1);
    EXPECT_TRUE(Near(harness::Paint().At(116, 96), {0, 0, 255}));
    ViewCullVerts = false;
    EXPECT_TRUE(Near(harness::Paint().At(116, 96), {255, 255, 255}));
    ViewCullVerts = true;
    ViewWire = true;
    EXPECT_TRUE(Near(harness::Paint().At(116, 96), {255, 255, 255}));
}

TEST_F(FrameColors, RubberBandNeedsMoreThanFourPixelsBothWays)
{
    ViewGrid = false;
    MouseStartX = MouseStartY = 50;
    const auto whites = [](float x, float y) {
        MouseLastX = x;
        MouseLastY = y;
        return harness::Paint().Count({255, 255, 255}, 0);
    };
    MouseButton = 0;
    const int label = whites(150, 150);
    MouseButton = 1;
    EXPECT_EQ(whites(54, 150), label);
    EXPECT_EQ(whites(150, 46), label);
    EXPECT_GT(whites(55, 55), label);
    EXPECT_NEAR(whites(150, 110) - label, 160, 4); // half of the 320 pixels around it
    ToolMode = 1;
    EXPECT_EQ(whites(150, 110), label);
    ToolMode = 0;
    MouseButton = 4;
    EXPECT_EQ(whites(150, 110), label);
}

TEST_F(FrameColors, LabelStandsInTheCornerWithoutABox)
{
    ViewGrid = false;
    for (CurrentCamera = 1; CurrentCamera <= CameraCount; ++CurrentCamera) {
        const Picture picture = harness::Paint();
        int wrong = 0;
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 80; ++x) {
                const size_t image = static_cast<size_t>(8 - CurrentCamera) * 1280;
                const bool ink = CameraLabels[image + static_cast<size_t>(y * 80 + x)] == 255;
                wrong += Near(picture.At(5 + x, 160 - 21 + y), ink ? Rgb{255, 255, 255} : background) ? 0 : 1;
            }
        }
        EXPECT_EQ(wrong, 0) << CurrentCamera;
    }
    CurrentCamera = 0;
    EXPECT_EQ(harness::Paint().Count({255, 255, 255}, 0), 0);
}

TEST_F(FrameColors, EverythingGrowsWithThePixelScale)
{
    OpenSquare();
    ActiveTab = 1;
    DisplayMode = 1;
    ActiveBone = 1;
    Bones.Add().Position = {0.7F, 0.7F, 0};
    const int label = harness::Paint().Count({255, 255, 255}, 0);
    PixelScale = 2;
    harness::SizeView(400, 320);
    Picture picture = harness::Paint();
    EXPECT_EQ(picture.Count({255, 127, 0}), 24 * 24);
    EXPECT_EQ(picture.Count({255, 255, 255}, 0), 4 * label);
    MouseButton = 1;
    MouseStartX = MouseStartY = 40;
    MouseLastX = 150;
    MouseLastY = 120;
    picture = harness::Paint();
    int onBand = 0;
    for (int x = 80; x < 300; ++x) {
        onBand +=
            Near(picture.At(x, 320 - 80), {255, 255, 255}, 0) || Near(picture.At(x, 320 - 81), {255, 255, 255}, 0);
    }
    EXPECT_GT(onBand, 100);
}

TEST_F(FrameColors, SizesBelowOneBecomeOne)
{
    const int before = scripted::Redraws;
    ResizeViewport(0, -5);
    EXPECT_EQ(ViewWidth, 1);
    EXPECT_EQ(ViewHeight, 1);
    EXPECT_EQ(ViewAspect, 1);
    EXPECT_EQ(scripted::Redraws, before + 1);
}

TEST_F(FrameColors, NothingHappensWithoutAContext)
{
    ShutdownOpenGL();
    ResizeViewport(30, 30);
    PaintFrame();
    EXPECT_EQ(ViewWidth, 200);
    EXPECT_TRUE(QueryOpenGLInfo().Version.empty());
    ASSERT_TRUE(InitOpenGL());
    EXPECT_FALSE(QueryOpenGLInfo().Version.empty());
    EXPECT_TRUE(scripted::Messages.empty());
}

} // namespace
