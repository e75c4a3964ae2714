#include <algorithm>
#include <cmath>
#include <GL/gl.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <utility>

#include "interaction/modCamera.h"
#include "render/modFacing.h"
#include "render/modOpenGL.h"
#include "render/modViewFlags.h"
#include "support/render_harness.h"
#include "support/render_plain.h"

namespace {

using Facing = harness::RenderTest;

/// The red pixels that faces leave when GL draws them as they are, each for itself.
int PixelsOf(const MvmMesh& mesh, const std::vector<uint8_t>& chosen)
{
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glColor3f(1, 0, 0);
    glBegin(GL_TRIANGLES);
    for (size_t i = 0; i < chosen.size(); ++i) {
        const MvmFace& face = mesh.Faces.Items[i];
        for (size_t k = 0; k < 3 && chosen[i] != 0 && FaceCornersValid(mesh, face); ++k) {
            glVertex3fv(&mesh.Vertices[face.Vertex[k]].X);
        }
    }
    glEnd();
    return harness::Grab().Count({255, 0, 0});
}

TEST_F(Facing, MarksMostBackFacesAndNothingThatShows)
{
    std::mt19937 random{7};
    harness::BuildCreature(&random, 20, 16);
    MvmMesh& mesh = Meshes[SkinMesh];
    for (CurrentCamera = 1; CurrentCamera <= CameraCount; ++CurrentCamera) {
        SCOPED_TRACE(CurrentCamera);
        (void)harness::Paint();
        ApplyCamera();
        glEnable(GL_CULL_FACE);
        const std::vector<uint8_t> away = FacesTurnedAway(mesh);
        ASSERT_EQ(away.size(), mesh.Faces.Items.size());
        EXPECT_EQ(PixelsOf(mesh, away), 0);
        EXPECT_GT(std::count(away.begin(), away.end(), 1), static_cast<int64_t>(away.size()) / 4);
        glDisable(GL_CULL_FACE);
        EXPECT_GT(PixelsOf(mesh, away), 0);
        const std::vector<uint8_t>& none = FacesTurnedAway(mesh);
        EXPECT_EQ(std::count(none.begin(), none.end(), 1), 0) << "culling is off";
    }
}

TEST_F(Facing, KeepsTheStateOfALastFaceThatIsTurnedAway)
{
    std::mt19937 random{7};
    harness::BuildCreature(&random, 12, 16);
    MvmMesh& mesh = Meshes[SkinMesh];
    std::erase_if(mesh.Faces.Items, [&mesh](const MvmFace& face) { return !FaceCornersValid(mesh, face); });
    // Of two faces of the same corners one is turned away. Its alpha test rules how the normals are drawn.
    const int16_t holes = harness::AddTexture({255, 0, 0}, true);
    Materials.Add().Texture = holes;
    mesh.MeshMaterials.Add({"", MaterialCount()});
    ViewNormals = true;
    ActiveTab = 0;
    for (int last = 0; last < 2; ++last) {
        MvmFace face = mesh.Faces[mesh.FaceCount() / 2];
        face.Material = static_cast<int16_t>(mesh.MeshMaterialCount());
        mesh.Faces.Add(face);
        std::swap(mesh.Faces.Items.back().Vertex[0], mesh.Faces.Items.back().Vertex[last == 0 ? 0 : 1]);
        plain::PaintFrame();
        const harness::Picture expected = harness::Grab();
        EXPECT_EQ(harness::Differences(expected, harness::Paint()), 0) << last;
        mesh.Faces.Items.pop_back();
    }
}

TEST_F(Facing, LeavesToGLWhatRoundingOrTheEyeCouldTurn)
{
    constexpr float infinite = std::numeric_limits<float>::infinity();
    MvmMesh& mesh = Meshes[harness::AddSquare(1, 0)];
    std::swap(mesh.Faces[1].Vertex[0], mesh.Faces[1].Vertex[1]); // clockwise
    (void)harness::Paint();
    ApplyCamera();
    glEnable(GL_CULL_FACE);
    ASSERT_EQ(FacesTurnedAway(mesh)[0], 1);
    const Vec3 place = mesh.Vertices[mesh.Faces[1].Vertex[0]];
    const Vec3 next = mesh.Vertices[mesh.Faces[1].Vertex[1]];
    for (const Vec3& moved : {next, Vec3{infinite, place.Y, 0}, Vec3{place.X, std::nanf(""), 0}}) {
        mesh.Vertices[mesh.Faces[1].Vertex[0]] = moved;
        EXPECT_EQ(FacesTurnedAway(mesh)[0], 0) << moved.X << ' ' << moved.Y;
    }
    mesh.Vertices[mesh.Faces[1].Vertex[0]] = place;
    CurrentCamera = 1;
    ApplyCamera();
    for (Vec3& vertex : mesh.Vertices) {
        vertex = {vertex.X, vertex.Y, 1000}; // behind the eye
    }
    EXPECT_EQ(FacesTurnedAway(mesh)[0], 0);
    mesh.Faces[1].Vertex[0] = 99;
    EXPECT_EQ(FacesTurnedAway(mesh)[0], 0) << "no such vertex";
}

} // namespace
