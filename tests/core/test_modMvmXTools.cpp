#include <cmath>

#include "app/modFrontEnd.h"
#include "app/modMath.h"
#include "core/shapes.h"
#include "support/fresh.h"
#include "weights/modMvmXTools.h"

using testing::ElementsAre;

namespace {

using Tools = Fresh;

} // namespace

TEST(Math, KeepsDoublePrecisionWithoutEpsilon)
{
    const float tiny = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(VecNormalize({0, -tiny, 0}).Y, -1);
    EXPECT_EQ(VecNormalize({3, 0, 4}).Z, 0.8F);
    EXPECT_EQ(VecNormalize({0, 0, 0}).X, 0);
    EXPECT_EQ(VecNormalize({0, 1, std::nanf("")}).Y, 0);
    EXPECT_EQ(VecDistance({16777216, 0, 0}, {-1, 0, 0}), 16777217.0); // not rounded to 32 bits
    EXPECT_EQ(TriangleArea({0, 0, 0}, {3, 0, 0}, {3, 4, 0}), 6);
    EXPECT_EQ(VecAngle({0, 2, 0}, {0, 5, 0}), 0);
    EXPECT_EQ(VecAngle({0, 2, 0}, {0, -5, 0}), 3.1415927);
    EXPECT_DOUBLE_EQ(VecAngle({0, 0, 0}, {1, 2, 3}), 3.14159265358979 / 2);
    EXPECT_NEAR(ArcCos(0.5F), std::acos(0.5), 1e-12);
    EXPECT_TRUE(std::isnan(ArcCos(1.0000001F)));
}

TEST_F(Tools, AutoAssignEqualsThePlainLoop)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const int kind = static_cast<int>(seed % shapes::Kinds);
        const float step = shapes::Pick(&random, {0.01F, 1.0F, 1e-44F, 250000.0F});
        SkinScale = shapes::Pick(&random, {1, 1, 0.37F, std::numeric_limits<float>::infinity()});
        SkinOffset = random() % 2 == 0 ? Vec3{} : shapes::Place(&random, 0, step);
        for (auto b = 1 + random() % 60; b > 0; --b) {
            Bones.Add({.Position = shapes::Place(&random, kind, step), .IsShadow = random() % 5 == 0});
        }
        MvmMesh& mesh = AddSkin("S", {}, {});
        for (int v = 0; v < 80; ++v) {
            mesh.Vertices.Add(shapes::Place(&random, random() % 4 == 0 ? 0 : kind, step));
            mesh.VertexBones.Add(static_cast<int16_t>(random() % 8 == 0 ? static_cast<int>(random() % 3) - 1 : 0));
        }
        std::vector<int16_t> expected = mesh.VertexBones.Items;
        for (size_t v = 0; v < expected.size(); ++v) {
            float nearest = 1000000.0F;
            for (int16_t b = 1; mesh.VertexBones.Items[v] == 0 && b <= static_cast<int16_t>(BoneCount()); ++b) {
                const auto toSkin = [](float at, double offset) {
                    return static_cast<float>((at + offset) * SkinScale);
                };
                const Vec3& at = Bones[b].Position;
                const Vec3 place = {toSkin(at.X, SkinOffset.X), toSkin(at.Y, SkinOffset.Y), toSkin(at.Z, SkinOffset.Z)};
                const auto distance = static_cast<float>(VecDistance(place, mesh.Vertices.Items[v]));
                expected[v] = !Bones[b].IsShadow && distance < nearest ? b : expected[v];
                nearest = Bones[b].IsShadow ? nearest : std::fmin(nearest, distance);
            }
        }
        AutoAssign(1);
        ASSERT_EQ(mesh.VertexBones.Items, expected) << "seed " << seed;
        ASSERT_EQ(scripted::Redraws, 1);
    }
}

TEST_F(Tools, AutoAssignRefusesInOrderAndMeasuresIn32Bits)
{
    AutoAssign(1);
    EXPECT_TRUE(scripted::Messages.empty());
    MvmMesh& mesh = Meshes.Add();
    AutoAssign(1);
    // 64-bit distances to the first two differ, 32-bit ones do not: the lower index stays.
    Bones.Items = {{.Position = {1, 1e-4F, 0}}, {.Position = {1, 0, 0}}, {.Position = {0, 1000000, 0}}};
    AutoAssign(1);
    EXPECT_THAT(scripted::Messages, ElementsAre(IsBox(BoxIcon::Warning, "No boned found to assign."),
                                                IsBox(BoxIcon::Warning, "Mesh is not a skin.")));
    EXPECT_EQ(scripted::Redraws, 0);
    mesh.Vertices.Items = {{0, 0, 0}, {0, 0, 2000000}, {0, 2000000, 0}, {0, 1999999, 0}};
    MakeSkin(1);
    AutoAssign(1);
    EXPECT_THAT(mesh.VertexBones.Items, ElementsAre(1, 0, 0, 3)); // nearer than 1000000
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
    const double pi = std::acos(-1.0);
    const double expected[5][2] = {{1 * pi / 2, 0.5 * pi / 2}, {0, 1}, {std::atan(2.0), 0.5 * pi / 4}, {1, 0}, {0, 0}};
    for (int32_t i = 1; i <= 5; ++i) {
        const auto& [x, z] = expected[i - 1];
        const double length = std::max(std::hypot(x, z), 0.5);
        EXPECT_NEAR(mesh.Normals[i].X, x / length, 1e-6) << i;
        EXPECT_NEAR(mesh.Normals[i].Z, z / length, 1e-6) << i;
    }
    for (const MvmFace& face : mesh.Faces) {
        EXPECT_EQ(face.Normal, face.Vertex);
    }
}
