#include <array>

#include <GL/gl.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include "modCamera.h"
#include "modOpenGL.h"
#include "support/render_harness.h"

namespace {

class CameraTest : public harness::RenderTest {};

/// Window position of a point under the camera's matrices.
std::array<double, 3> WindowOf(double x, double y, double z)
{
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    std::array<GLint, 4> viewport{0, 0, 200, 160};
    ApplyCamera();
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    std::array<double, 3> window{};
    gluProject(x, y, z, modelview.data(), projection.data(), viewport.data(), &window[0], &window[1], &window[2]);
    return window;
}

TEST_F(CameraTest, AxisCamerasLookAlongTheirAxes)
{
    // Where +X, +Y and +Z lie on the screen: right and up in units of the half height, 80 pixels.
    struct Row {
        int16_t Camera;
        std::array<int, 2> X, Y, Z;
    };
    const Row rows[] = {
        {3, {-1, 0}, {0, 1}, {0, 0}}, {4, {1, 0}, {0, 1}, {0, 0}},  {5, {0, 0}, {0, 1}, {1, 0}},
        {6, {0, 0}, {0, 1}, {-1, 0}}, {7, {1, 0}, {0, 0}, {0, -1}}, {8, {1, 0}, {0, 0}, {0, 1}},
    };
    for (const Row& row : rows) {
        CurrentCamera = row.Camera;
        const auto expect = [&row](const std::array<int, 2>& way, double x, double y, double z) {
            const auto window = WindowOf(x, y, z);
            EXPECT_NEAR(window[0], 100 + 80 * way[0], 1e-4) << row.Camera;
            EXPECT_NEAR(window[1], 80 + 80 * way[1], 1e-4) << row.Camera;
        };
        expect(row.X, 1, 0, 0);
        expect(row.Y, 0, 1, 0);
        expect(row.Z, 0, 0, 1);
    }
    // Only the back camera's box is half as deep: a point 50 nearer lies at a quarter and at three eighths.
    CurrentCamera = 4;
    EXPECT_NEAR(WindowOf(0, 0, 50)[2], 0.25, 1e-6);
    CurrentCamera = 3;
    EXPECT_NEAR(WindowOf(0, 0, -50)[2], 0.375, 1e-6);
}

TEST_F(CameraTest, PerspectiveSeesTheOriginTwoUnitsAway)
{
    CurrentCamera = 1;
    const auto origin = WindowOf(0, 0, 0);
    EXPECT_NEAR(origin[0], 100, 1e-4);
    EXPECT_NEAR(origin[1], 80, 1e-4);
    // Depth of a point at distance 2 between the planes 0.1 and 500.
    EXPECT_NEAR(origin[2], (1 / 0.1 - 1 / 2.0) / (1 / 0.1 - 1 / 500.0), 1e-5);
    // Panned by half the visible height (tan 22.5 degrees times 2), the origin reaches the upper edge.
    Cameras[1].Position.Y = 0.82842712F;
    EXPECT_NEAR(WindowOf(0, 0, 0)[1], 160, 1e-3);
}

TEST_F(CameraTest, MouseMovesOnlyTheCurrentCamera)
{
    CurrentCamera = 2;
    RotateCamera(10, -2005);
    EXPECT_FLOAT_EQ(Cameras[2].Rotation.X, 12);
    EXPECT_FLOAT_EQ(Cameras[2].Rotation.Y, -601);
    EXPECT_FLOAT_EQ(Cameras[1].Rotation.X, 10);
    Cameras[2].Position.Z = 0.5F;
    PanCamera(100, 50);
    EXPECT_FLOAT_EQ(Cameras[2].Position.X, 0.1F);
    EXPECT_FLOAT_EQ(Cameras[2].Position.Y, -0.05F);
    CurrentCamera = 1;
    PanCamera(100, 50);
    EXPECT_FLOAT_EQ(Cameras[1].Position.X, 0.1F);
    EXPECT_FLOAT_EQ(Cameras[1].Position.Y, -0.05F);
}

TEST_F(CameraTest, ZoomStopsAtTheSmallestBoxButNotInPerspective)
{
    CurrentCamera = 3;
    ZoomCamera(-50);
    EXPECT_EQ(Cameras[3].Position.Z, 0.001F);
    ZoomCamera(0.5F);
    EXPECT_FLOAT_EQ(Cameras[3].Position.Z, 0.501F);
    CurrentCamera = 1;
    ZoomCamera(-3);
    EXPECT_FLOAT_EQ(Cameras[1].Position.Z, 1);
}

TEST_F(CameraTest, NumbersOutsideTheTableDoNothing)
{
    const auto before = Cameras;
    for (const int16_t camera : {int16_t{0}, int16_t{9}, int16_t{-1}}) {
        CurrentCamera = camera;
        RotateCamera(5, 5);
        PanCamera(5, 5);
        ZoomCamera(5);
        PaintFrame();
    }
    for (size_t i = 0; i < Cameras.size(); ++i) {
        EXPECT_EQ(Cameras[i].Rotation.X, before[i].Rotation.X);
        EXPECT_EQ(Cameras[i].Position.X, before[i].Position.X);
        EXPECT_EQ(Cameras[i].Position.Z, before[i].Position.Z);
    }
}

} // namespace
