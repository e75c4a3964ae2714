#include <limits>
#include <random>
#include <sstream>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modOpenGL.h"
#include "modSession.h"
#include "modViewFlags.h"
#include "support/render_harness.h"
#include "support/render_plain.h"

// The frame in batches against the frame in single calls, pixel for pixel.

namespace {

class FrameEquality : public harness::RenderTest {
protected:
    std::mt19937 random{20250101};

    bool Coin() { return random() % 2 == 0; }
    int16_t Below(uint32_t end) { return static_cast<int16_t>(random() % end); }

    /// Throws all flags, tabs, cameras and mouse positions.
    void Shuffle()
    {
        for (bool* flag : {&ViewWire, &ViewGrid, &ViewTextures, &ViewLighting, &ViewBackfaces, &ViewIsolines,
                           &ViewNormals, &ViewCullVerts, &LineAA, &FilterTextures}) {
            *flag = Coin();
        }
        ViewWire = random() % 4 == 0;
        ActiveTab = static_cast<int16_t>(random() % 4 == 0 ? 0 : 1);
        DisplayMode = Below(3);
        EditTarget = static_cast<int16_t>(random() % 8 == 0 ? 1 : 0);
        PointSize = 1 + Below(10);
        CurrentCamera = static_cast<int16_t>(1 + Below(8));
        InitCameras();
        ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
        camera.Rotation = Coin() ? Vec3{Below(90) * 1.0F, Below(360) * 1.0F, 0} : camera.Rotation;
        camera.Position.Z *= 0.3F + Below(100) * 0.015F;
        MouseButton = Coin() ? 1 : 0;
        MouseStartX = 12.5F;
        MouseStartY = 17;
        MouseLastX = static_cast<float>(Below(200));
        MouseLastY = static_cast<float>(Below(160)) + 0.5F;
    }

    static std::string State()
    {
        std::ostringstream text;
        text << "wire " << ViewWire << " grid " << ViewGrid << " textures " << ViewTextures << " lighting "
             << ViewLighting << " backfaces " << ViewBackfaces << " isolines " << ViewIsolines << " normals "
             << ViewNormals << " cull " << ViewCullVerts << " aa " << LineAA << " filter " << FilterTextures << " tab "
             << ActiveTab << " mode " << DisplayMode << " target " << EditTarget << " camera " << CurrentCamera;
        return text.str();
    }

    /// Paints the scene in both forms.
    static void ExpectEqualFrames()
    {
        plain::PaintFrame();
        const harness::Picture expected = harness::Grab();
        EXPECT_EQ(harness::Differences(expected, harness::Paint()), 0) << State();
    }
};

TEST_F(FrameEquality, RandomScenesInRandomStates)
{
    for (int scene = 0; scene < 8; ++scene) {
        ResetSession();
        harness::BuildCreature(&random, 4 + 3 * scene, 6 + 2 * scene);
        SkinScale = scene % 2 == 0 ? 1.0F : 1.5F;
        SkinOffset = {0.1F, 0, -0.05F};
        ShadowMesh = scene % 3 == 0 ? SkinMesh : int16_t{0};
        for (int round = 0; round < 15; ++round) {
            Shuffle();
            ExpectEqualFrames();
        }
    }
}

TEST_F(FrameEquality, EveryFlagAloneInEveryMode)
{
    harness::BuildCreature(&random, 10, 14);
    bool* const flags[] = {&ViewWire,     &ViewGrid,    &ViewTextures,  &ViewLighting, &ViewBackfaces,
                           &ViewIsolines, &ViewNormals, &ViewCullVerts, &LineAA,       &FilterTextures};
    for (ActiveTab = 0; ActiveTab < 2; ++ActiveTab) {
        for (DisplayMode = 0; DisplayMode < 3; ++DisplayMode) {
            for (bool* flag : flags) {
                *flag = !*flag;
                ExpectEqualFrames();
                *flag = !*flag;
            }
        }
    }
}

TEST_F(FrameEquality, MeshesWithoutContents)
{
    ModelOpen = true;
    ActiveTab = 1;
    ExpectEqualFrames();
    Meshes.Add();
    SkinMesh = 1;
    ViewIsolines = ViewNormals = true;
    ExpectEqualFrames();
    MakeSkin(1);
    ExpectEqualFrames();
    Meshes[1].Faces.Add({{1, 2, 3}, {1, 1, 1}, {1, 1, 1}, 1});
    ExpectEqualFrames();
}

TEST_F(FrameEquality, AMeshThatIsNoSkinShowsItsBareSurface)
{
    harness::BuildCreature(&random, 8, 10);
    Meshes[SkinMesh].IsSkin = false;
    Meshes[SkinMesh].VertexBones.Clear();
    ActiveTab = 1;
    for (DisplayMode = 0; DisplayMode < 3; ++DisplayMode) {
        ExpectEqualFrames();
    }
}

TEST_F(FrameEquality, StrangeCoordinatesDoNoHarm)
{
    harness::BuildCreature(&random, 10, 10);
    constexpr float infinite = std::numeric_limits<float>::infinity();
    constexpr float strange[] = {infinite, -infinite, std::numeric_limits<float>::quiet_NaN(), 3e38F, -3e38F, 1e-45F};
    MvmMesh& mesh = Meshes[SkinMesh];
    for (int32_t i = 1; i <= mesh.VertexCount(); i += 7) {
        mesh.Vertices[i].Y = strange[static_cast<size_t>(i) % 6];
        mesh.Normals[i].X = strange[static_cast<size_t>(i + 1) % 6];
        mesh.TexCoords[i].U = strange[static_cast<size_t>(i + 2) % 6];
    }
    Bones[3].Position.X = infinite;
    SkinScale = infinite;
    for (int round = 0; round < 30; ++round) {
        Shuffle();
        PaintFrame();
    }
    // A sound scene draws as ever afterwards.
    ResetSession();
    harness::BuildCreature(&random, 8, 8);
    Shuffle();
    ExpectEqualFrames();
}

TEST_F(FrameEquality, MoreVerticesThanFacesCanName)
{
    harness::BuildCreature(&random, 6, 8);
    MvmMesh& mesh = Meshes[SkinMesh];
    mesh.Vertices.Items.resize(70000, Vec3{0.2F, 0.1F, 0.7F});
    mesh.VertexBones.Items.resize(70000, 2);
    ActiveTab = 1;
    ExpectEqualFrames();
}

TEST_F(FrameEquality, NoStateOfOthersShowsInAFrame)
{
    harness::BuildCreature(&random, 8, 10);
    ActiveTab = 1;
    PaintFrame(); // lowers the alpha test's reference for good
    const harness::Picture expected = harness::Paint();
    glClearColor(1, 0, 0, 1);
    glViewport(3, 4, 20, 20);
    glDepthMask(GL_FALSE);
    glDepthFunc(GL_ALWAYS);
    glColorMask(GL_FALSE, GL_TRUE, GL_TRUE, GL_TRUE);
    glMatrixMode(GL_PROJECTION);
    glScissor(0, 0, 30, 30);
    for (const GLenum on : std::initializer_list<GLenum>{GL_BLEND, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_LINE_STIPPLE,
                                                         GL_ALPHA_TEST, GL_LIGHTING}) {
        glEnable(on);
    }
    glDisable(GL_NORMALIZE);
    glDisable(GL_POLYGON_OFFSET_FILL);
    glDisable(GL_DEPTH_TEST);
    glPointSize(9);
    glLineWidth(4);
    EXPECT_EQ(harness::Differences(expected, harness::Paint()), 0);
}

} // namespace
