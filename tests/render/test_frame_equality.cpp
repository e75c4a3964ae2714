#include <cmath>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modGLState.h"
#include "modOpenGL.h"
#include "modSession.h"
#include "modViewFlags.h"
#include "support/render_harness.h"
#include "support/render_plain.h"

// The frame in batches against the frame in single calls, pixel for pixel.

namespace {

constexpr std::array<bool*, 10> flags{&ViewWire,     &ViewGrid,    &ViewTextures,  &ViewLighting, &ViewBackfaces,
                                      &ViewIsolines, &ViewNormals, &ViewCullVerts, &LineAA,       &FilterTextures};

class FrameEquality : public harness::RenderTest {
protected:
    int16_t Below(uint32_t end) { return static_cast<int16_t>(random() % end); }

    /// Throws all flags, tabs, modes, targets and cameras.
    void Shuffle()
    {
        for (bool* flag : flags) {
            *flag = Below(2) == 0;
        }
        ViewWire = Below(4) == 0;
        AlphaReference = Below(2) == 0 ? 0.5F : AlphaReference;
        CurrentCamera = static_cast<int16_t>(CurrentCamera % CameraCount + 1);
        DisplayMode = static_cast<int16_t>((DisplayMode + 1) % 3);
        ActiveTab = Below(4) == 0 ? 0 : 1;
        ActiveBone = Below(4);
        EditTarget = Below(8) == 0 ? 1 : 0;
        PointSize = 1 + Below(10);
        InitCameras();
        ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
        camera.Rotation = Below(2) == 0 ? Vec3{Below(90) * 1.0F, Below(360) * 1.0F, 0} : camera.Rotation;
        camera.Position.Z *= 0.3F + Below(100) * 0.015F;
    }

    static std::string State()
    {
        std::string text;
        for (const bool* flag : flags) {
            text += *flag ? '1' : '0';
        }
        for (const int number : {ActiveTab, DisplayMode, EditTarget, CurrentCamera}) {
            text += ' ' + std::to_string(number);
        }
        return text;
    }

    /// Paints the scene in both forms.
    static void ExpectEqualFrames()
    {
        plain::PaintFrame();
        const harness::Picture expected = harness::Grab();
        EXPECT_TRUE(expected.Pixels == harness::Paint().Pixels) << State();
        if (ActiveTab == 1 && DisplayMode != 0 && IsValidMesh(TargetMesh())) {
            EXPECT_EQ(AlphaReference, 0.01F) << "lowered for good";
        }
    }
};

TEST_F(FrameEquality, RandomScenesInRandomStates)
{
    EXPECT_EQ(State(), "0111000111 0 2 0 4");
    for (int scene = 0; scene < 8; ++scene) {
        ResetSession();
        harness::BuildCreature(&random, 4 + 3 * scene, 6 + 2 * scene);
        SkinScale = scene % 2 == 0 ? 1.0F : 1.5F;
        SkinOffset = {0.1F, 0, -0.05F};
        ShadowMesh = scene % 3 == 0 ? SkinMesh : int16_t{0};
        for (int round = 0; round < 24; ++round) {
            Shuffle();
            ExpectEqualFrames();
        }
    }
}

TEST_F(FrameEquality, MeshesThatLackSomething)
{
    ModelOpen = true;
    ActiveTab = 1;
    ViewIsolines = ViewNormals = true;
    ExpectEqualFrames(); // no mesh at all
    Meshes.Add();
    SkinMesh = 1;
    ExpectEqualFrames();
    MakeSkin(1);
    Meshes[1].Faces.Add({{1, 2, 3}, {1, 1, 1}, {1, 1, 1}, 1});
    ExpectEqualFrames();
    ResetSession();
    harness::BuildCreature(&random, 8, 10);
    ActiveTab = 1;
    Meshes[1].Vertices.Items.resize(70000, Vec3{0.2F, 0.1F, 0.7F}); // more than faces can name
    Meshes[1].VertexBones.Items.resize(70000, 2);
    ExpectEqualFrames();
    Meshes[1].IsSkin = false;
    Meshes[1].VertexBones.Clear();
    for (DisplayMode = 0; DisplayMode < 3; ++DisplayMode) {
        ExpectEqualFrames();
    }
}

TEST_F(FrameEquality, StrangeCoordinatesDoNoHarm)
{
    harness::BuildCreature(&random, 10, 10);
    const float strange[] = {HUGE_VALF, -HUGE_VALF, std::nanf(""), 3e38F, -3e38F, 1e-45F};
    for (int32_t i = 1; i <= Meshes[1].VertexCount(); i += 7) {
        Meshes[1].Vertices[i].Y = Meshes[1].Normals[i + 1].X = Meshes[1].TexCoords[i + 2].U = strange[i % 6];
    }
    Bones[3].Position.X = HUGE_VALF;
    SkinScale = HUGE_VALF;
    for (int round = 0; round < 30; ++round) {
        Shuffle();
        PaintFrame();
    }
}

TEST_F(FrameEquality, NoStateOfOthersShowsInAFrame)
{
    harness::BuildCreature(&random, 8, 10);
    ActiveTab = 1;
    MouseButton = 1;
    MouseLastX = MouseLastY = 100;
    EXPECT_EQ(AlphaReference, 0.5F);
    PaintFrame(); // lowers it for good
    const harness::Picture expected = harness::Paint();
    glClearColor(1, 0, 0, 1);
    glViewport(3, 4, 20, 20);
    glDepthMask(GL_FALSE);
    glDepthFunc(GL_ALWAYS);
    glAlphaFunc(GL_LESS, 0.1F);
    glColorMask(GL_FALSE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    glPolygonOffset(-9, -9);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL);
    glLineStipple(7, 0x1111);
    glMatrixMode(GL_PROJECTION);
    glScissor(0, 0, 30, 30);
    for (const GLenum what : std::initializer_list<GLenum>{
             GL_BLEND, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_LINE_STIPPLE, GL_ALPHA_TEST, GL_LIGHTING, GL_LINE_SMOOTH,
             GL_POINT_SMOOTH, GL_TEXTURE_2D, GL_NORMALIZE, GL_POLYGON_OFFSET_FILL, GL_DEPTH_TEST, GL_CULL_FACE}) {
        glIsEnabled(what) == GL_TRUE ? glDisable(what) : glEnable(what);
    }
    glPointSize(9);
    glLineWidth(4);
    EXPECT_TRUE(expected.Pixels == harness::Paint().Pixels);
}

} // namespace
