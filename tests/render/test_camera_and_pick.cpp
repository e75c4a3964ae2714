#include <cmath>

#include <GL/gl.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modOpenGL.h"
#include "modPick.h"
#include "modSession.h"
#include "modViewFlags.h"
#include "support/render_harness.h"
#include "support/scripted.h"

namespace {

class CameraTest : public harness::RenderTest {};

/// Where the current matrices put a point, in pixels of the view, and its depth.
std::array<double, 3> Project(const Vec3& point)
{
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    const std::array<GLint, 4> viewport{0, 0, ViewWidth, ViewHeight};
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    std::array<double, 3> at{};
    gluProject(point.X, point.Y, point.Z, modelview.data(), projection.data(), viewport.data(), &at[0], &at[1], &at[2]);
    return at;
}

void ExpectVector(const Vec3& v, double x, double y, double z)
{
    SCOPED_TRACE(CurrentCamera);
    EXPECT_NEAR(v.X, x, 1e-5);
    EXPECT_NEAR(v.Y, y, 1e-5);
    EXPECT_NEAR(v.Z, z, 1e-5);
}

TEST_F(CameraTest, EachLooksAlongItsAxis)
{
    // Where the axes +X, +Y and +Z point: to the right, up and to the eye. The first two are turned by 200 degrees
    // about Y, then by 10 about X.
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
            const auto [x, y, z] = Project({k == 0 ? 1.0F : 0.0F, k == 1 ? 1.0F : 0.0F, k == 2 ? 1.0F : 0.0F});
            EXPECT_NEAR(x, 100 + 80 * (static_cast<double>(way.X) + 0.25) / half, 1e-3) << CurrentCamera;
            EXPECT_NEAR(y, 80 + 80 * (static_cast<double>(way.Y) + 0.125) / half, 1e-3) << CurrentCamera;
            EXPECT_NEAR(z, depth, 1e-5) << CurrentCamera;
        }
    }
}

TEST_F(CameraTest, MouseMovesOnlyTheCurrentCamera)
{
    const auto numbers = [](const ViewCamera& c) {
        return std::array{c.Rotation.X, c.Rotation.Y, c.Rotation.Z, c.Position.X, c.Position.Y, c.Position.Z};
    };
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
                EXPECT_EQ(numbers(camera), numbers(before[i]));
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

using Numbers = std::vector<int32_t>;

class PickTest : public harness::RenderTest {
protected:
    /// Numbers of the skin's vertices that a pick gives the active bone.
    static Numbers Pick(const PickBox& box)
    {
        MvmMesh& mesh = Meshes[1];
        mesh.VertexBones.Items.assign(mesh.Vertices.Items.size(), 1);
        ActiveBone = 7;
        PickVertices(1, box.X, box.Y, box.Width, box.Height);
        Numbers taken;
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            if (mesh.VertexBones[i] == ActiveBone) {
                taken.push_back(i);
            }
        }
        return taken;
    }
};

TEST_F(PickTest, BoxOfADrag)
{
    const struct {
        float StartX, StartY, EndX, EndY;
        PickBox Box;
    } rows[] = {
        {10, 20, 40, 50, {10, 110, 30, 30}},
        {40, 50, 10, 20, {10, 110, 30, 30}},
        {10, 20, 12, 70, {10, 90, 1, 1}}, // two pixels wide: a point at the lower left
        {10, 20, 60, 18, {10, 140, 1, 1}},
        {10, 20, 13, 23, {10, 137, 3, 3}},
        {10.5F, 20.5F, 10.5F, 20.5F, {10, 140, 1, 1}}, // ties to even: 10.5 and 139.5
        {-1e9F, 0, 1e9F, 160, {-32768, 0, 65535, 160}},
        {std::nanf(""), 20, 40, 50, {0, 110, 40, 30}},
    };
    for (const auto& row : rows) {
        const PickBox box = BoxOfDrag(row.StartX, row.StartY, row.EndX, row.EndY, 160);
        EXPECT_EQ((std::array{box.X, box.Y, box.Width, box.Height}),
                  (std::array{row.Box.X, row.Box.Y, row.Box.Width, row.Box.Height}));
    }
}

TEST_F(PickTest, BoxesAndClicks)
{
    // Corners 1 to 4 of the square lie at pixels 60 and 140 by 40 and 120.
    const struct {
        PickBox Box;
        Numbers Taken;
        int32_t PointSize = 5;
        int Scale = 2; ///< twice the PixelScale
    } rows[] = {
        {{60, 40, 80, 80}, {1, 2, 3, 4}},
        {{60, 40, 79, 80}, {1, 4}},
        {{60, 40, 80, 79}, {1, 2}},
        {{61, 41, 79, 79}, {3}},
        {{-32768, -32768, 65535, 65535}, {1, 2, 3, 4, 5, 6}},
        {{400, 0, 50, 200}, {}},
        {{0, 40, 3, 3}, {5}}, // at the view's edge
        {{199, 159, 3, 3}, {6}},
        // Half of 5 is 2.5, and ties go to even: 63 - 2.5 gives 60, 64 - 2.5 gives 62, 57 + 2.5 gives 60.
        {{63, 40, 1, 1}, {1}},
        {{64, 40, 1, 1}, {}},
        {{57, 40, 1, 1}, {1}},
        {{56, 40, 1, 1}, {}},
        {{60, 44, 1, 1}, {}},
        {{60, 37, 1, 1}, {1}},
        {{60, 36, 1, 1}, {}},
        {{63, 40, 2, 50}, {1}},
        {{63, 40, 50, 2}, {1}},
        {{57, 37, 3, 3}, {1}},
        {{65, 45, 1, 1}, {1}, 10},
        {{66, 45, 1, 1}, {}, 10},
        {{61, 41, 79, 79}, {3}, 5, 3},
        {{60, 40, 79, 79}, {1}, 5, 3},
        {{62, 40, 1, 1}, {1}, 5, 3},
        {{64, 40, 1, 1}, {}, 5, 3},
    };
    harness::OpenSquare();
    Meshes[1].Vertices.Add({-1.25F, -0.5F, 0});
    Meshes[1].Vertices.Add({1.2375F, 0.9875F, 0});
    for (const float strange : {HUGE_VALF, -HUGE_VALF, std::nanf(""), 3e38F, -3e38F}) {
        Meshes[1].Vertices.Add({strange, 0, 0});
        Meshes[1].Vertices.Add({0, strange, strange});
    }
    for (const auto& row : rows) {
        PixelScale = static_cast<float>(row.Scale) / 2;
        PointSize = row.PointSize;
        harness::SizeView(100 * row.Scale, 80 * row.Scale);
        EXPECT_EQ(Pick(row.Box), row.Taken) << row.Box.X << " " << row.Box.Y << " " << row.Box.Width;
    }
}

TEST_F(PickTest, TakesWhatTheSurfaceDoesNotHide)
{
    harness::OpenSquare();
    MvmMesh& mesh = Meshes[1];
    mesh.Vertices.Add({0.1F, 0.2F, -0.5F});
    mesh.Vertices.Add({-0.2F, 0.3F, 0.5F});
    mesh.Vertices.Add({1.1F, 0.2F, -0.5F}); // beside the square
    const PickBox all{0, 0, 199, 159};
    const struct {
        bool Cull, Wire, Backfaces;
        int16_t Camera;
        Numbers Taken;
    } rows[] = {
        {true, false, false, 4, {1, 2, 3, 4, 6, 7}},   {false, false, false, 4, {1, 2, 3, 4, 5, 6, 7}},
        {true, true, false, 4, {1, 2, 3, 4, 5, 6, 7}}, {true, false, false, 3, {1, 2, 3, 4, 5, 6, 7}},
        {true, false, true, 3, {1, 2, 3, 4, 5, 7}}, // from behind, where its back alone hides
    };
    for (const auto& row : rows) {
        ViewCullVerts = row.Cull;
        ViewWire = row.Wire;
        ViewBackfaces = row.Backfaces;
        CurrentCamera = row.Camera;
        const harness::Picture shown = harness::Paint();
        EXPECT_EQ(Pick(all), row.Taken) << row.Camera << row.Cull << row.Wire << row.Backfaces;
        EXPECT_TRUE(shown.Pixels == harness::Grab().Pixels) << "a pick draws nothing that shows";
    }
}

TEST_F(PickTest, StatusFollowsEveryPickOfAValidMesh)
{
    harness::OpenSquare();
    scripted::Panels.clear();
    PickVertices(0, 0, 0, 50, 50);
    PickVertices(2, 0, 0, 50, 50);
    EXPECT_TRUE(scripted::Panels.empty());
    Bones.Items.resize(9);
    EXPECT_EQ(Pick({400, 400, 10, 10}), Numbers{});
    EXPECT_FALSE(scripted::Panels.empty());
    CurrentCamera = 0;
    EXPECT_EQ(Pick({0, 0, 199, 159}), Numbers{});
    CurrentCamera = 1;
    Cameras[1].Rotation = {};
    Meshes[1].Vertices[4] = {0, 0, 2}; // in the plane of the eye
    EXPECT_EQ(Pick({0, 0, 5, 5}), Numbers{});
    CurrentCamera = 4;
    ActiveBone = 0;
    PickVertices(1, 0, 0, 199, 159);
    EXPECT_EQ(Meshes[1].VertexBones.Items, (std::vector<int16_t>(4, 0)));
}

} // namespace
