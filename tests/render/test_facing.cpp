#include <algorithm>
#include <cmath>
#include <GL/gl.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <utility>

#include "interaction/modCamera.h"
#include "render/modFaceArrays.h"
#include "render/modFacing.h"
#include "render/modOpenGL.h"
#include "render/modTexture.h"
#include "render/modViewFlags.h"
#include "support/render_harness.h"
#include "support/render_plain.h"

namespace {

using FacingTest = harness::RenderTest;

/// The red pixels that the faces of a facing leave when GL draws them as they are.
int PixelsOf(const MvmMesh& mesh, const std::vector<Facing>& facings, Facing chosen)
{
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glColor3f(1, 0, 0);
    glBegin(GL_TRIANGLES);
    for (size_t i = 0; i < facings.size(); ++i) {
        const MvmFace& face = mesh.Faces.Items[i];
        for (size_t k = 0; k < 3 && facings[i] == chosen && FaceCornersValid(mesh, face); ++k) {
            glVertex3fv(&mesh.Vertices[face.Vertex[k]].X);
        }
    }
    glEnd();
    return harness::Grab().Count({255, 0, 0});
}

TEST_F(FacingTest, TellsMostFacesAsGLDoes)
{
    std::mt19937 random{7};
    harness::BuildCreature(&random, 20, 16);
    MvmMesh& mesh = Meshes[SkinMesh];
    for (CurrentCamera = 1; CurrentCamera <= CameraCount; ++CurrentCamera) {
        SCOPED_TRACE(CurrentCamera);
        (void)harness::Paint();
        ApplyCamera();
        glEnable(GL_CULL_FACE);
        const std::vector<Facing> facings = LookAtFaces(mesh).Facings;
        ASSERT_EQ(facings.size(), mesh.Faces.Items.size());
        for (const Facing facing : {Facing::Away, Facing::Front}) {
            EXPECT_GT(std::count(facings.begin(), facings.end(), facing), static_cast<int64_t>(facings.size()) / 5);
        }
        EXPECT_EQ(PixelsOf(mesh, facings, Facing::Away), 0);
        glCullFace(GL_FRONT);
        EXPECT_EQ(PixelsOf(mesh, facings, Facing::Front), 0);
        EXPECT_GT(PixelsOf(mesh, facings, Facing::Away), 0);
        glCullFace(GL_BACK);
        glDisable(GL_CULL_FACE);
        const std::vector<Facing>& all = LookAtFaces(mesh).Facings;
        EXPECT_EQ(std::count(all.begin(), all.end(), Facing::Unsure), static_cast<int64_t>(all.size()));
    }
}

TEST_F(FacingTest, KeepsTheStateOfALastFaceThatIsTurnedAway)
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

TEST_F(FacingTest, LeavesToGLWhatRoundingOrTheEyeCouldTurn)
{
    constexpr float infinite = std::numeric_limits<float>::infinity();
    MvmMesh& mesh = Meshes[harness::AddSquare(0.2F, 0)];
    std::swap(mesh.Faces[1].Vertex[0], mesh.Faces[1].Vertex[1]); // clockwise
    (void)harness::Paint();
    ApplyCamera();
    glEnable(GL_CULL_FACE);
    ASSERT_EQ(LookAtFaces(mesh).Facings[0], Facing::Away);
    const Vec3 place = mesh.Vertices[mesh.Faces[1].Vertex[0]];
    const Vec3 next = mesh.Vertices[mesh.Faces[1].Vertex[1]];
    for (const Vec3& moved :
         {next, Vec3{50 * place.X, 50 * place.Y, 0}, Vec3{infinite, place.Y, 0}, Vec3{place.X, std::nanf(""), 0}}) {
        mesh.Vertices[mesh.Faces[1].Vertex[0]] = moved;
        EXPECT_EQ(LookAtFaces(mesh).Facings[0], Facing::Unsure) << moved.X << ' ' << moved.Y;
    }
    mesh.Vertices[mesh.Faces[1].Vertex[0]] = place;
    CurrentCamera = 1;
    ApplyCamera();
    for (Vec3& vertex : mesh.Vertices) {
        vertex = {vertex.X, vertex.Y, 1000}; // behind the eye
    }
    EXPECT_EQ(LookAtFaces(mesh).Facings[0], Facing::Unsure);
    mesh.Faces[1].Vertex[0] = 99;
    EXPECT_EQ(LookAtFaces(mesh).Facings[0], Facing::Unsure) << "no such vertex";
}

TEST_F(FacingTest, FacesOfOneLookComeTogetherOnlyPastOthersThatTheyDoNotTouch)
{
    std::mt19937 random{11};
    for (int round = 0; round < 12; ++round) {
        ResetScene();
        FreeTextures();
        harness::BuildCreature(&random, 30, 40); // for its materials
        MvmMesh& mesh = Meshes[SkinMesh];
        if (round % 2 == 0) {
            // One flat heap: all depths are equal, so that each pixel keeps the face that came first.
            for (Vec3& vertex : mesh.Vertices) {
                vertex.Z = 0.25F;
            }
        }
        for (MvmFace& face : mesh.Faces) {
            face.Material = static_cast<int16_t>(1 + random() % static_cast<uint32_t>(mesh.MeshMaterialCount()));
        }
        CurrentCamera = static_cast<int16_t>(round % 4 < 2 ? 4 : 1);
        plain::PaintFrame();
        const harness::Picture expected = harness::Grab();
        EXPECT_EQ(harness::Differences(expected, harness::Paint()), 0) << round;
        ApplyCamera();
        glEnable(GL_CULL_FACE);
        const FaceBatches& batches = CollectRuns(mesh, FaceChoice::All);
        if (round % 2 == 1) {
            EXPECT_LT(batches.Runs.size() * 4, batches.Indices.size()) << "little came together";
        }
    }
}

} // namespace
