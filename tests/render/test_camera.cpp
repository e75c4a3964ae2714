#include <GL/gl.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include "modCamera.h"
#include "modOpenGL.h"
#include "support/render_harness.h"

namespace {

class CameraTest : public harness::RenderTest {};

void ExpectVector(const Vec3& v, float x, float y, float z)
{
    SCOPED_TRACE(CurrentCamera);
    EXPECT_NEAR(v.X, x, 1e-5F);
    EXPECT_NEAR(v.Y, y, 1e-5F);
    EXPECT_NEAR(v.Z, z, 1e-5F);
}

/// Where the camera shows a point, in units of half the view's height from its middle, and its depth from 0 to 1.
Vec3 Shown(double x, double y, double z)
{
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    const std::array<GLint, 4> viewport{0, 0, 200, 160};
    ApplyCamera();
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    std::array<double, 3> at{};
    gluProject(x, y, z, modelview.data(), projection.data(), viewport.data(), &at[0], &at[1], &at[2]);
    return {static_cast<float>(at[0] - 100) / 80, static_cast<float>(at[1] - 80) / 80, static_cast<float>(at[2])};
}

TEST_F(CameraTest, AxisCamerasLookAlongTheirAxes)
{
    // Where +X, +Y and +Z lie, with depths: one unit of a box 400 deep, of the back camera 200.
    constexpr float m = 0.5F;
    constexpr float d = 1 / 400.0F;
    const struct {
        int16_t Camera;
        Vec3 X, Y, Z;
    } rows[] = {
        {3, {-1, 0, m}, {0, 1, m}, {0, 0, m + d}}, {4, {1, 0, m}, {0, 1, m}, {0, 0, m - 2 * d}},
        {5, {0, 0, m + d}, {0, 1, m}, {1, 0, m}},  {6, {0, 0, m - d}, {0, 1, m}, {-1, 0, m}},
        {7, {1, 0, m}, {0, 0, m - d}, {0, -1, m}}, {8, {1, 0, m}, {0, 0, m + d}, {0, 1, m}},
    };
    for (const auto& row : rows) {
        CurrentCamera = row.Camera;
        ExpectVector(Shown(1, 0, 0), row.X.X, row.X.Y, row.X.Z);
        ExpectVector(Shown(0, 1, 0), row.Y.X, row.Y.Y, row.Y.Z);
        ExpectVector(Shown(0, 0, 1), row.Z.X, row.Z.Y, row.Z.Z);
    }
    // 200 degrees about Y, then 10 about X: the point one unit up leans towards the eye.
    CurrentCamera = 2;
    ExpectVector(Shown(0, 1, 0), 0, 0.984808F, m - d * 0.173648F);
    ExpectVector(Shown(1, 0, 0), -0.939693F, 0.059391F, m + d * 0.336824F);
}

TEST_F(CameraTest, PerspectiveSeesTheOriginTwoUnitsAway)
{
    CurrentCamera = 1;
    // Depth of a point at distance 2 between the planes 0.1 and 500.
    constexpr float depth = (1 / 0.1F - 1 / 2.0F) / (1 / 0.1F - 1 / 500.0F);
    ExpectVector(Shown(0, 0, 0), 0, 0, depth);
    // Panned by half the visible height, tan 22.5 degrees times 2.
    Cameras[1].Position.Y = 0.82842712F;
    ExpectVector(Shown(0, 0, 0), 0, 1, depth);
}

TEST_F(CameraTest, MouseMovesOnlyTheCurrentCamera)
{
    for (CurrentCamera = 1; CurrentCamera <= CameraCount; ++CurrentCamera) {
        InitCameras();
        const auto before = Cameras;
        ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
        const Vec3 was = camera.Rotation;
        RotateCamera(10, -2005);
        ExpectVector(camera.Rotation, was.X + 2, was.Y - 401, 0);
        ZoomCamera(-0.5F);
        const bool perspective = CurrentCamera == 1;
        const float height = perspective ? -1.5F : 0.5F;
        ExpectVector(camera.Position, 0, 0, height);
        PanCamera(100, 50);
        ExpectVector(camera.Position, 0.1F, -0.05F, height); // in perspective by thousandths, else by the box's height
        ZoomCamera(-50);
        EXPECT_EQ(camera.Position.Z, perspective ? 48.5F : 0.001F);
        camera = before[static_cast<size_t>(CurrentCamera)];
        for (size_t i = 0; i < Cameras.size(); ++i) {
            ExpectVector(Cameras[i].Rotation, before[i].Rotation.X, before[i].Rotation.Y, 0);
            ExpectVector(Cameras[i].Position, 0, 0, before[i].Position.Z);
        }
    }
    for (const int camera : {0, 9, -1}) {
        CurrentCamera = static_cast<int16_t>(camera); // outside the table: nothing happens
        RotateCamera(5, 5);
        PanCamera(5, 5);
        ZoomCamera(5);
        PaintFrame();
        ExpectVector(Cameras[0].Position, 0, 0, 0);
    }
}

} // namespace
