#include <limits>
#include <random>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modOpenGL.h"
#include "modPick.h"
#include "modSession.h"
#include "modViewFlags.h"
#include "support/render_harness.h"
#include "support/render_plain.h"
#include "support/scripted.h"

namespace {

constexpr int16_t picked = 7;

class PickTest : public harness::RenderTest {
protected:
    std::mt19937 random{7};

    /// Numbers of the skin's vertices that a pick gives the active bone.
    static std::vector<int32_t> Pick(int32_t x, int32_t y, int32_t width, int32_t height)
    {
        MvmMesh& mesh = Meshes[SkinMesh];
        mesh.VertexBones.Items.assign(mesh.Vertices.Items.size(), 1);
        ActiveBone = picked;
        PickVertices(SkinMesh, x, y, width, height);
        std::vector<int32_t> taken;
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            if (mesh.VertexBones[i] == picked) {
                taken.push_back(i);
            }
        }
        return taken;
    }

    /// A square of half side 0.5 at Z = 0, seen by camera 4: corners at pixels 60 and 140 by 40 and 120.
    void OpenSquare()
    {
        SkinMesh = harness::AddSquare(0.5F, 0);
        ModelOpen = true;
        ActiveTab = 1;
        PaintFrame();
    }
};

using Numbers = std::vector<int32_t>;

TEST_F(PickTest, BoxOfADrag)
{
    struct Row {
        float StartX, StartY, EndX, EndY;
        PickBox Box;
    };
    const Row rows[] = {
        {10, 20, 40, 50, {10, 110, 30, 30}},
        {40, 50, 10, 20, {10, 110, 30, 30}},
        {10, 20, 12, 70, {10, 90, 1, 1}}, // two pixels wide: a point at the lower left
        {10, 20, 13, 23, {10, 137, 3, 3}},
        {10.5F, 20.5F, 10.5F, 20.5F, {10, 140, 1, 1}}, // ties to even: 10.5 and 139.5
        {-1e9F, 0, 1e9F, 160, {-32768, 0, 65535, 160}},
    };
    for (const Row& row : rows) {
        const PickBox box = BoxOfDrag(row.StartX, row.StartY, row.EndX, row.EndY, 160);
        EXPECT_EQ(box.X, row.Box.X) << row.EndX;
        EXPECT_EQ(box.Y, row.Box.Y) << row.EndX;
        EXPECT_EQ(box.Width, row.Box.Width) << row.EndX;
        EXPECT_EQ(box.Height, row.Box.Height) << row.EndX;
    }
}

TEST_F(PickTest, EdgesOfTheBoxAreInside)
{
    OpenSquare();
    EXPECT_EQ(Pick(60, 40, 80, 80), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(Pick(60, 40, 79, 80), (Numbers{1, 4}));
    EXPECT_EQ(Pick(61, 40, 79, 79), (Numbers{2}));
    EXPECT_EQ(Pick(-500, -500, 5000, 5000), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(Pick(62, 42, 70, 70), Numbers{});
}

TEST_F(PickTest, AClickTakesABoxOfPointSize)
{
    OpenSquare();
    // Half of 5 is 2.5: 62 - 2.5 and 62 + 2.5 round to 60 and 64, 63 - 2.5 to 60, 64 - 2.5 to 62.
    EXPECT_EQ(Pick(63, 40, 1, 1), (Numbers{1}));
    EXPECT_EQ(Pick(64, 40, 1, 1), Numbers{});
    EXPECT_EQ(Pick(63, 40, 2, 50), (Numbers{1}));
    PointSize = 10;
    EXPECT_EQ(Pick(65, 45, 1, 1), (Numbers{1}));
    EXPECT_EQ(Pick(66, 45, 1, 1), Numbers{});
}

TEST_F(PickTest, OnlyVisibleVerticesWhileCulling)
{
    OpenSquare();
    MvmMesh& mesh = Meshes[SkinMesh];
    mesh.Vertices.Add({0.2F, 0.2F, -0.5F}); // behind the square
    mesh.Vertices.Add({0.2F, 0.1F, 0});     // on it
    mesh.Vertices.Add({0.7F, 0.1F, -3});    // beside it
    EXPECT_EQ(Pick(100, 60, 90, 50), (Numbers{6, 7}));
    ViewCullVerts = false;
    EXPECT_EQ(Pick(100, 60, 90, 50), (Numbers{5, 6, 7}));
    ViewCullVerts = true;
    ViewWire = true;
    EXPECT_EQ(Pick(100, 60, 90, 50), (Numbers{5, 6, 7}));
    ViewWire = false;
    // From behind, the square's culled faces hide nothing unless back faces are drawn.
    CurrentCamera = 3;
    EXPECT_EQ(Pick(0, 0, 199, 159).size(), 7U);
    ViewBackfaces = true;
    EXPECT_EQ(Pick(0, 0, 199, 159).size(), 7U) << "vertex 5 is the nearest from behind";
    mesh.Vertices.Add({0.2F, 0.3F, 0.5F});
    EXPECT_EQ(Pick(0, 0, 199, 159).size(), 7U);
}

TEST_F(PickTest, HolesOfATextureHideNothing)
{
    OpenSquare();
    MvmMesh& mesh = Meshes[SkinMesh];
    Materials.Add().Texture = harness::AddTexture({10, 20, 30}, true);
    mesh.MeshMaterials.Add().Index = 1;
    for (MvmFace& face : mesh.Faces) {
        face.Material = 1;
        face.TexCoord = {1, 1, 1};
    }
    mesh.Vertices.Add({0.2F, 0.2F, -0.5F});
    mesh.TexCoords[1] = {2.5F / 16, 2.5F / 16}; // a transparent texel
    FilterTextures = false;
    EXPECT_EQ(Pick(110, 90, 10, 10), (Numbers{5}));
    mesh.TexCoords[1] = {6.5F / 16, 2.5F / 16}; // an opaque one
    EXPECT_EQ(Pick(110, 90, 10, 10), Numbers{});
    ViewTextures = false;
    mesh.TexCoords[1] = {2.5F / 16, 2.5F / 16};
    EXPECT_EQ(Pick(110, 90, 10, 10), Numbers{});
}

TEST_F(PickTest, TheSameVerticesAsOneByOne)
{
    for (int scene = 0; scene < 6; ++scene) {
        ResetSession();
        harness::BuildCreature(&random, 10 + 6 * scene, 12 + 4 * scene);
        ActiveTab = 1;
        for (int round = 0; round < 12; ++round) {
            ViewCullVerts = random() % 3 != 0;
            ViewBackfaces = random() % 2 == 0;
            ViewTextures = random() % 2 == 0;
            ViewLighting = random() % 2 == 0;
            CurrentCamera = static_cast<int16_t>(1 + random() % 8);
            const auto x = static_cast<int32_t>(random() % 160) - 20;
            const auto y = static_cast<int32_t>(random() % 120) - 20;
            const auto width = static_cast<int32_t>(random() % 140);
            const auto height = static_cast<int32_t>(random() % 120);
            PaintFrame();
            const Numbers expected = plain::PickedVertices(SkinMesh, x, y, width, height);
            PaintFrame();
            EXPECT_EQ(Pick(x, y, width, height), expected)
                << x << " " << y << " " << width << " " << height << " camera " << CurrentCamera;
        }
    }
}

TEST_F(PickTest, EyeInsideTheMesh)
{
    harness::BuildCreature(&random, 20, 20);
    ActiveTab = 1;
    CurrentCamera = 1;
    for (const float distance : {0.0F, -0.3F, 0.5F, -0.55F}) {
        for (const bool cull : {true, false}) {
            Cameras[1].Position.Z = distance;
            ViewCullVerts = cull;
            PaintFrame();
            const Numbers expected = plain::PickedVertices(SkinMesh, 0, 0, 199, 159);
            PaintFrame();
            EXPECT_EQ(Pick(0, 0, 199, 159), expected) << distance;
        }
    }
}

TEST_F(PickTest, StrangeCoordinatesAreOutside)
{
    OpenSquare();
    constexpr float infinite = std::numeric_limits<float>::infinity();
    for (const float strange : {infinite, -infinite, std::numeric_limits<float>::quiet_NaN(), 3e38F, -3e38F}) {
        Meshes[SkinMesh].Vertices.Add({strange, 0, 0});
        Meshes[SkinMesh].Vertices.Add({0, strange, strange});
    }
    ViewCullVerts = false;
    for (CurrentCamera = 1; CurrentCamera <= CameraCount; ++CurrentCamera) {
        for (const int32_t number : Pick(-32768, -32768, 65535, 65535)) {
            EXPECT_LE(number, 4) << CurrentCamera;
        }
    }
}

TEST_F(PickTest, BoxesFollowThePixelScale)
{
    OpenSquare();
    PixelScale = 1.5F;
    harness::SizeView(300, 240); // corners at device pixels 90 and 210 by 60 and 180
    PaintFrame();
    EXPECT_EQ(Pick(60, 40, 80, 80), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(Pick(61, 41, 70, 70), Numbers{});
    EXPECT_EQ(Pick(62, 40, 1, 1), (Numbers{1}));
    EXPECT_EQ(Pick(64, 40, 1, 1), Numbers{});
}

TEST_F(PickTest, LeavesTheViewAsItWas)
{
    harness::BuildCreature(&random, 10, 10);
    ActiveTab = 1;
    PaintFrame(); // lowers the alpha test's reference for good
    const harness::Picture before = harness::Paint();
    const auto bones = Meshes[SkinMesh].VertexBones.Items;
    static_cast<void>(Pick(0, 0, 100, 100));
    EXPECT_EQ(harness::Differences(before, harness::Grab()), 0) << "a pick draws nothing that shows";
    GLboolean mask[4] = {};
    glGetBooleanv(GL_COLOR_WRITEMASK, mask);
    EXPECT_TRUE(mask[0] == GL_TRUE && mask[1] == GL_TRUE && mask[2] == GL_TRUE && mask[3] == GL_TRUE);
    Meshes[SkinMesh].VertexBones.Items = bones;
    ActiveBone = 2;
    EXPECT_EQ(harness::Differences(before, harness::Paint()), 0);
}

TEST_F(PickTest, StatusFollowsEveryPickOfAValidMesh)
{
    OpenSquare();
    scripted::Panels.clear();
    PickVertices(0, 0, 0, 50, 50);
    PickVertices(2, 0, 0, 50, 50);
    EXPECT_TRUE(scripted::Panels.empty());
    Bones.Items.resize(picked);
    static_cast<void>(Pick(400, 400, 10, 10));
    EXPECT_FALSE(scripted::Panels.empty());
    ActiveBone = 0;
    Meshes[SkinMesh].VertexBones.Items.assign(4, 3);
    PickVertices(SkinMesh, 0, 0, 199, 159);
    EXPECT_EQ(Meshes[SkinMesh].VertexBones.Items, (std::vector<int16_t>{0, 0, 0, 0}));
}

} // namespace
