#include <bit>

#include "app/modFrontEnd.h"
#include "app/modMath.h"
#include "core/shapes.h"
#include "support/fresh.h"
#include "weights/modMvmXTools.h"

namespace {

using Tools = Fresh;

/// The plain double loop.
void AssignPlainly(MvmMesh* mesh)
{
    for (int32_t v = 1; v <= mesh->VertexCount(); ++v) {
        if (mesh->VertexBones[v] != 0) {
            continue;
        }
        int16_t best = 0;
        float bestDistance = 1000000.0F;
        for (int16_t b = 1; b <= static_cast<int16_t>(BoneCount()); ++b) {
            if (Bones[b].IsShadow) {
                continue;
            }
            const Vec3& at = Bones[b].Position;
            const double scale = SkinScale;
            const Vec3 p{static_cast<float>((static_cast<double>(at.X) + SkinOffset.X) * scale),
                         static_cast<float>((static_cast<double>(at.Y) + SkinOffset.Y) * scale),
                         static_cast<float>((static_cast<double>(at.Z) + SkinOffset.Z) * scale)};
            const auto d = static_cast<float>(VecDistance(p, mesh->Vertices[v]));
            if (d < bestDistance) {
                bestDistance = d;
                best = b;
            }
        }
        mesh->VertexBones[v] = best;
    }
}

TEST_F(Tools, AutoAssignEqualsThePlainLoop)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const int kind = static_cast<int>(seed % shapes::Kinds);
        const float step = shapes::Pick(&random, {0.01F, 1.0F, 1e-44F, 250000.0F});
        SkinScale = shapes::Pick(&random, {1, 1, 0.37F, std::numeric_limits<float>::infinity()});
        SkinOffset = random() % 2 == 0 ? Vec3{} : shapes::Place(&random, 0, step);
        const auto bones = 1 + shapes::Count(&random);
        for (unsigned b = 0; b < bones; ++b) {
            MvmBone& bone = Bones.Add();
            bone.Position = shapes::Place(&random, kind, step);
            bone.IsShadow = random() % 5 == 0;
        }
        MvmMesh& mesh = Meshes.Add();
        mesh.IsSkin = true;
        for (unsigned v = 0; v < 150; ++v) {
            mesh.Vertices.Add(shapes::Place(&random, random() % 4 == 0 ? 0 : kind, step));
            mesh.VertexBones.Add(static_cast<int16_t>(random() % 8 == 0 ? static_cast<int>(random() % 3) - 1 : 0));
        }
        MvmMesh expected = mesh;
        AssignPlainly(&expected);
        AutoAssign(1);
        ASSERT_EQ(mesh.VertexBones.Items, expected.VertexBones.Items) << "seed " << seed;
        ASSERT_EQ(scripted::Redraws, 1);
    }
}

TEST_F(Tools, AutoAssignTiesAreThoseOf32Bits)
{
    // 64-bit distances differ, 32-bit ones do not: the lower index stays.
    Bones.Add().Position = {1, 1e-4F, 0};
    Bones.Add().Position = {1, 0, 0};
    Bones.Add().Position = {0, 1000000, 0};
    MvmMesh& mesh = Meshes.Add();
    mesh.IsSkin = true;
    mesh.Vertices.Items = {{0, 0, 0}, {0, 0, 2000000}, {0, 2000000, 0}, {0, 1999999, 0}};
    mesh.VertexBones.Items = {0, 0, 0, 0};
    AutoAssign(1);
    EXPECT_EQ(mesh.VertexBones.Items, (std::vector<int16_t>{1, 0, 0, 3}));
}

TEST_F(Tools, AutoAssignRefusesInOrder)
{
    AutoAssign(1);
    EXPECT_TRUE(scripted::Messages.empty());
    Meshes.Add().Vertices.Add();
    AutoAssign(1);
    Bones.Add();
    AutoAssign(1);
    EXPECT_THAT(scripted::Messages, testing::ElementsAre(IsBox(BoxIcon::Warning, "No boned found to assign."),
                                                         IsBox(BoxIcon::Warning, "Mesh is not a skin.")));
    EXPECT_FALSE(Meshes[1].IsSkin);
    EXPECT_EQ(scripted::Redraws, 0);
}

/// The plain nested loops, vertices outside.
void NormalsPlainly(MvmMesh* mesh)
{
    std::vector<Vec3> normals;
    for (int32_t i = 1; i <= mesh->VertexCount(); ++i) {
        Vec3 sum;
        for (const MvmFace& face : mesh->Faces) {
            if (!FaceCornersValid(*mesh, face)) {
                continue;
            }
            const Vec3& p1 = mesh->Vertices[face.Vertex[0]];
            const Vec3& p2 = mesh->Vertices[face.Vertex[1]];
            const Vec3& p3 = mesh->Vertices[face.Vertex[2]];
            int corner = 0;
            for (int k = 1; k <= 3; ++k) {
                corner = face.Vertex[static_cast<size_t>(k) - 1] == i ? k : corner;
            }
            if (corner == 0) {
                continue;
            }
            const Vec3 first = corner == 1 ? VecSub(p1, p2) : corner == 2 ? VecSub(p2, p1) : VecSub(p3, p1);
            const Vec3 second = corner == 1 ? VecSub(p1, p3) : corner == 2 ? VecSub(p2, p3) : VecSub(p3, p2);
            const double angle = VecAngle(first, second);
            const Vec3 normal = FaceNormal(p3, p2, p1);
            const auto area = static_cast<float>(TriangleArea(p3, p2, p1));
            sum.X = static_cast<float>(sum.X + static_cast<double>(normal.X) * area * angle);
            sum.Y = static_cast<float>(sum.Y + static_cast<double>(normal.Y) * area * angle);
            sum.Z = static_cast<float>(sum.Z + static_cast<double>(normal.Z) * area * angle);
        }
        normals.push_back(VecNormalize(sum));
    }
    mesh->Normals.Items = normals;
    for (MvmFace& face : mesh->Faces) {
        face.Normal = face.Vertex;
    }
}

/// Bits, so that signs of zeros count; values that are not numbers are all alike.
std::array<uint32_t, 3> BitsOf(const Vec3& vector)
{
    const auto bits = [](float value) { return std::isnan(value) ? 0x7FC00000U : std::bit_cast<uint32_t>(value); };
    return {bits(vector.X), bits(vector.Y), bits(vector.Z)};
}

TEST_F(Tools, NormalsEqualThePlainLoops)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const int kind = static_cast<int>(seed % shapes::Kinds);
        MvmMesh& mesh = Meshes.Add();
        const auto vertices = 1 + random() % 60;
        for (unsigned v = 0; v < vertices; ++v) {
            mesh.Vertices.Add(shapes::Place(&random, kind, 0.25F));
        }
        mesh.Normals.Items.resize(random() % 5);
        for (unsigned f = 0; f < 150; ++f) {
            MvmFace& face = mesh.Faces.Add();
            for (size_t corner = 0; corner < 3; ++corner) {
                face.Vertex[corner] = static_cast<int16_t>(1 + random() % vertices);
                face.Normal[corner] = static_cast<int16_t>(random() % 9);
            }
            if (f % 20 == 0) {
                face.Vertex[random() % 3] = static_cast<int16_t>(random() % 2 == 0 ? 0 : vertices + 1);
            }
        }
        MvmMesh expected = mesh;
        NormalsPlainly(&expected);
        RegenerateNormals(1);
        ASSERT_EQ(mesh.NormalCount(), mesh.VertexCount());
        for (int32_t i = 1; i <= mesh.NormalCount(); ++i) {
            ASSERT_EQ(BitsOf(mesh.Normals[i]), BitsOf(expected.Normals[i])) << "seed " << seed << " normal " << i;
        }
        for (int32_t f = 1; f <= mesh.FaceCount(); ++f) {
            ASSERT_EQ(mesh.Faces[f].Normal, expected.Faces[f].Normal);
        }
    }
}

TEST_F(Tools, NormalsOfATriangleAndALooseVertex)
{
    MvmMesh& mesh = Meshes.Add();
    mesh.Vertices.Items = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {5, 5, 5}};
    mesh.Faces.Add().Vertex = {1, 2, 3};
    RegenerateNormals(2);
    EXPECT_EQ(mesh.NormalCount(), 0);
    RegenerateNormals(1);
    for (int32_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(mesh.Normals[i].Z, 1);
    }
    EXPECT_EQ(mesh.Normals[4].Z, 0);
    EXPECT_FALSE(mesh.IsSkin);
}

} // namespace
