#include <cstring>

#include <GL/gl.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include "modCamera.h"
#include "modOpenGL.h"
#include "support/render_harness.h"

namespace {

class CameraTest : public harness::RenderTest {};

void ExpectVector(const Vec3& v, double x, double y, double z)
{
    SCOPED_TRACE(CurrentCamera);
    EXPECT_NEAR(v.X, x, 1e-5);
    EXPECT_NEAR(v.Y, y, 1e-5);
    EXPECT_NEAR(v.Z, z, 1e-5);
}

/// Where the camera shows a point, in units of half the view's height from its middle, and its depth from 0 to 1.
Vec3 Shown(double x, double y, double z)
{
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    const std::array<GLint, 4> viewport{0, 0, 200, 160};
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    std::array<double, 3> at{};
    gluProject(x, y, z, modelview.data(), projection.data(), viewport.data(), &at[0], &at[1], &at[2]);
    return {static_cast<float>(at[0] - 100) / 80, static_cast<float>(at[1] - 80) / 80, static_cast<float>(at[2])};
}

TEST_F(CameraTest, EachLooksAlongItsAxis)
{
    // Where the axes +X, +Y and +Z point: to the right, up and to the eye. The first two are turned by 200 degrees about
    // Y, then by 10 about X.
    const Vec3 turned[] = {
        {-0.939693F, 0.059391F, -0.336824F}, {0, 0.984808F, 0.173648F}, {0.34202F, 0.163176F, -0.925417F}};
    const Vec3 ways[][3] = {{turned[0], turned[1], turned[2]},   {turned[0], turned[1], turned[2]},
                            {{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                            {{0, 0, -1}, {0, 1, 0}, {1, 0, 0}},  {{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}},
                            {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}},  {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}};
    for (CurrentCamera = 1; CurrentCamera <= CameraCount; ++CurrentCamera) {
        Vec3& position = Cameras[static_cast<size_t>(CurrentCamera)].Position;
        position = {0.25F, 0.125F, CurrentCamera == 1 ? -2.0F : 1.5F};
        ApplyCamera();
        for (int k = 0; k < 3; ++k) {
            const Vec3& way = ways[CurrentCamera - 1][k];
            // From 2 away the view is tan 22.5 degrees times 4 high; its planes lie at 0.1 and 500. The back camera's
            // box is 200 deep, the others' 400.
            const double distance = 2.0 - static_cast<double>(way.Z);
            const double half = CurrentCamera == 1 ? 0.41421356 * distance : 1.5;
            const double depth = CurrentCamera == 1
                                     ? (10 - 1 / distance) / (10 - 1 / 500.0)
                                     : 0.5 - static_cast<double>(way.Z) / (CurrentCamera == 4 ? 200 : 400);
            ExpectVector(Shown(k == 0, k == 1, k == 2), (static_cast<double>(way.X) + 0.25) / half,
                         (static_cast<double>(way.Y) + 0.125) / half, depth);
        }
    }
}

TEST_F(CameraTest, MouseMovesOnlyTheCurrentCamera)
{
    const auto before = Cameras;
    for (int16_t number = -1; number <= CameraCount + 1; ++number) {
        CurrentCamera = number;
        RotateCamera(10, -2005);
        ZoomCamera(-0.5F);
        PanCamera(100, 50);
        PaintFrame();
        for (size_t i = 1; i < Cameras.size(); ++i) {
            const ViewCamera& camera = Cameras[i];
            if (i != static_cast<size_t>(number)) {
                EXPECT_EQ(std::memcmp(&camera, &before[i], sizeof(camera)), 0);
                continue;
            }
            ExpectVector(camera.Rotation, before[i].Rotation.X + 2, before[i].Rotation.Y - 401, 0);
            // Panned by thousandths in perspective, else by the height of the box.
            ExpectVector(camera.Position, 0.1, -0.05, number == 1 ? -1.5 : 0.5);
            ZoomCamera(-50);
            EXPECT_EQ(camera.Position.Z, number == 1 ? 48.5F : 0.001F);
        }
        Cameras = before;
    }
}

} // namespace
