#include <cmath>

#include "app/modFrontEnd.h"
#include "app/modMath.h"
#include "core/shapes.h"
#include "support/fresh.h"
#include "weights/modMvmXTools.h"

using testing::ElementsAre;
using Tools = Fresh;

TEST_F(Tools, MathKeepsDoublePrecisionWithoutEpsilon)
{
    EXPECT_EQ(VecNormalize({0, -1e-45F, 0}).Y, -1);
    EXPECT_EQ(VecNormalize({3, 0, 4}).Z, 0.8F);
    EXPECT_EQ(VecNormalize({0, 1, std::nanf("")}).Y, 0);
    EXPECT_EQ(VecDistance({16777216, 0, 0}, {-1, 0, 0}), 16777217.0); // not rounded to 32 bits
    EXPECT_EQ(TriangleArea({0, 0, 0}, {3, 0, 0}, {3, 4, 0}), 6);
    EXPECT_EQ(VecAngle({0, 2, 0}, {0, 5, 0}), 0);
    EXPECT_EQ(VecAngle({0, 2, 0}, {0, -5, 0}), 3.1415927);
    EXPECT_DOUBLE_EQ(VecAngle({0, 0, 0}, {1, 2, 3}), 3.14159265358979 / 2);
    EXPECT_TRUE(std::isnan(ArcCos(1.0000001F)));
}

TEST_F(Tools, AutoAssignFindsTheNearestBone)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        const float step = shapes::Pick(&random, {0.01F, 1.0F, 1e-44F, 250000.0F});
        const auto place = [&] { return shapes::Place(&random, static_cast<int>(seed % shapes::Kinds), step); };
        scripted::Reset();
        for (int b = 0; b < 40; ++b) {
            Bones.Add({.Position = place()});
        }
        MvmMesh& mesh = AddSkin("S", {}, std::vector<int16_t>(80));
        std::vector<int16_t> expected(80);
        for (int16_t& best : expected) {
            mesh.Vertices.Add(place());
            float nearest = 1000000;
            for (int16_t b = 1; b <= 40; ++b) {
                const auto distance = static_cast<float>(VecDistance(Bones[b].Position, mesh.Vertices.Items.back()));
                best = distance < nearest ? b : best;
                nearest = std::fmin(nearest, distance);
            }
        }
        AutoAssign(1);
        ASSERT_EQ(mesh.VertexBones.Items, expected) << "seed " << seed;
    }
}

TEST_F(Tools, AutoAssignRefusesInOrderAndMeasuresIn32Bits)
{
    AutoAssign(1);
    EXPECT_TRUE(scripted::Messages.empty());
    Meshes.Add();
    AutoAssign(1);
    SkinScale = 0.5F;
    SkinOffset = {2, 0, 0};
    // 64-bit distances to the first two differ, 32-bit ones do not: the lower index stays.
    for (const Vec3& place : {Vec3{0, 2e-4F, 0}, Vec3{0, 0, 0}, Vec3{-2, 2000000, 0}, Vec3{-2, 0, 0}}) {
        Bones.Add({.Position = place, .IsShadow = place.X + place.Y == -2});
    }
    AutoAssign(1);
    EXPECT_THAT(scripted::Messages, ElementsAre(IsBox(BoxIcon::Warning, "No boned found to assign."),
                                                IsBox(BoxIcon::Warning, "Mesh is not a skin.")));
    EXPECT_EQ(scripted::Redraws, 0);
    Meshes.Clear();
    AddSkin("S", {{0, 0, 0}, {0, 0, 2000000}, {0, 2000000, 0}, {0, 1999999, 0}, {}}, {0, 0, 0, 0, -1});
    AutoAssign(1);
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(1, 0, 0, 3, -1)); // nearer than 1000000
    EXPECT_EQ(scripted::Redraws, 1);
}

TEST_F(Tools, NormalsWeighFacesByAreaAndAngle)
{
    MvmMesh& mesh = Meshes.Add();
    mesh.Vertices.Items = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 2}, {5, 5, 5}};
    mesh.Normals.Items.resize(9);
    // Of area 1/2 towards Z, of area 1 towards X, and one that is not whole.
    mesh.Faces.Items = {{.Vertex = {1, 2, 3}}, {.Vertex = {1, 3, 4}}, {.Vertex = {1, 2, 6}}};
    RegenerateNormals(2);
    RegenerateNormals(1);
    ASSERT_EQ(mesh.NormalCount(), 5);
    const double quarter = std::acos(0.0);
    const double expected[5][2] = {{quarter, quarter / 2}, {0, 1}, {std::atan(2.0), quarter / 4}, {1, 0}, {0, 0}};
    for (int32_t i = 1; i <= 5; ++i) {
        const auto& [x, z] = expected[i - 1];
        EXPECT_NEAR(mesh.Normals[i].X, x / std::max(std::hypot(x, z), 0.5), 1e-6) << i;
        EXPECT_NEAR(mesh.Normals[i].Z, z / std::max(std::hypot(x, z), 0.5), 1e-6) << i;
    }
    EXPECT_EQ(mesh.Faces[3].Normal, mesh.Faces[3].Vertex);
}
