#include <cmath>
#include <random>

#include "app/modMath.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"
#include "weights/modMvmXTools.h"

using testing::ElementsAre;
using Tools = Fresh;

namespace {

float Pick(std::mt19937* random, const std::vector<float>& from)
{
    return from[(*random)() % from.size()];
}

/// A place on a grid on which thresholds are met exactly, at the ends of the range, or anywhere.
Vec3 Place(std::mt19937* random, unsigned kind, float step)
{
    const std::vector<float> values[] = {{-2 * step, -step, 0, step, 2 * step},
                                         {0, -0.0F, INFINITY, -INFINITY, NAN, 3e38F, 1e-45F, -1e-45F, step, -step}};
    std::uniform_real_distribution<float> anywhere(-1, 1);
    const auto one = [&] { return kind % 3 == 2 ? anywhere(*random) : Pick(random, values[kind % 3]); };
    return {one(), one(), one()};
}

/// Whether `b` on the source side is the mirror image of `a` on the target side.
bool Pairs(const Vec3& a, const Vec3& b, double t, const MirrorOptions& options)
{
    const auto near = [t](double target, double source) { return target - t < source && target + t > source; };
    const auto isTarget = [&](const Vec3& place) { return options.LeftToRight ? place.X > 0 : place.X < 0; };
    return isTarget(a) && !isTarget(b) && near(a.X, -b.X) && near(a.Y, b.Y) && near(a.Z, b.Z);
}

/// The plain double loops.
void MirrorPlainly(MvmMesh* mesh, const MirrorOptions& options, bool links, std::string* log)
{
    std::vector<int16_t> partners(static_cast<size_t>(BoneCount()) + 1);
    for (int16_t i = 1; i <= static_cast<int16_t>(BoneCount()); ++i) {
        int16_t j = 1;
        while (j <= BoneCount() && !Pairs(Bones[i].Position, Bones[j].Position, MirrorBoneThreshold, options)) {
            ++j;
        }
        if (links) {
            partners[static_cast<size_t>(i)] = Bones[i].MirrorBone;
        } else if (j <= BoneCount()) {
            partners[static_cast<size_t>(i)] = j;
            partners[static_cast<size_t>(j)] = i;
            *log += "Log: " + std::to_string(i) + " : " + std::to_string(j) + "\n";
        }
    }
    for (int32_t i = 1; i <= mesh->VertexCount(); ++i) {
        for (int32_t j = 1; j <= mesh->VertexCount(); ++j) {
            if (Pairs(mesh->Vertices[i], mesh->Vertices[j], MirrorVertexThreshold, options)) {
                const int16_t bone = mesh->VertexBones[j];
                const int16_t partner = IsValidBone(bone) ? partners[static_cast<size_t>(bone)] : int16_t{0};
                int16_t& entry = mesh->VertexBones[i];
                const bool writes = partner > 0 ? entry < 1 || options.Reassign : options.Unassign;
                entry = writes ? partner : entry;
            }
        }
    }
}

} // namespace

TEST_F(Tools, MirrorEqualsThePlainLoops)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const float step = Pick(&random, {0.01F, 0.25F, 1.0F});
        const auto place = [&] { return Place(&random, seed, step); };
        const std::vector<float> thresholds = {step, step, step * 2, step * 1.5F, 0, 100, NAN};
        MirrorVertexThreshold = Pick(&random, thresholds);
        MirrorBoneThreshold = Pick(&random, thresholds);
        const auto bones = random() % 40;
        for (unsigned b = 0; b < bones; ++b) {
            Bones.Add({.Position = place(), .MirrorBone = static_cast<int16_t>(random() % (bones + 1))});
        }
        MvmMesh& mesh = AddSkin("Hide", {}, {});
        for (auto v = random() % 200; v > 0; --v) {
            mesh.Vertices.Add(place());
            mesh.VertexBones.Add(static_cast<int16_t>(static_cast<int>(random() % (bones + 4)) - 2));
        }
        AliasFiles.Add({"", random() % 3 == 0 ? "Hide" : "Other", {}});
        AliasesOn = random() % 2 == 0;
        EditTarget = static_cast<int16_t>(random() % 2);
        (EditTarget == 0 ? SkinMesh : ShadowMesh) = 1;
        const MirrorOptions options{random() % 2 == 0, (seed / 8) % 2 == 0, (seed / 16) % 2 == 0};
        MvmMesh expected = mesh;
        std::string log;
        MirrorPlainly(&expected, options, AliasesOn && AliasFiles[1].Name == "Hide", &log);
        MirrorWeights(options);
        ASSERT_EQ(mesh.VertexBones.Items, expected.VertexBones.Items) << "seed " << seed;
        ASSERT_EQ(Told(), log) << "seed " << seed;
    }
}

TEST_F(Tools, MathKeepsDoublePrecisionWithoutEpsilon)
{
    EXPECT_TRUE(VecNormalize({0, -1e-45F, 0}).Y == -1 && VecNormalize({0, 1, NAN}).Y == 0);
    EXPECT_EQ(VecDistance({16777216, 0, 0}, {-1, 0, 0}), 16777217.0); // not rounded to 32 bits
    EXPECT_TRUE(VecAngle({0, 2, 0}, {0, 5, 0}) == 0 && VecAngle({0, 2, 0}, {0, -5, 0}) == 3.1415927);
    EXPECT_DOUBLE_EQ(VecAngle({0, 0, 0}, {1, 2, 3}), 3.14159265358979 / 2);
}

TEST_F(Tools, AutoAssignFindsTheNearestBone)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        const float step = Pick(&random, {0.01F, 1.0F, 1e-44F, 250000.0F});
        const auto place = [&] { return Place(&random, seed, step); };
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
    Meshes.Add();
    AutoAssign(1);
    SkinScale = 0.5F;
    SkinOffset = {2, 0, 0};
    // 64-bit distances to the first two differ, 32-bit ones do not: the lower index stays.
    for (const Vec3& place : {Vec3{0, 2e-4F, 0}, Vec3{0, 0, 0}, Vec3{-2, 2000000, 0}, Vec3{-2, 0, 0}}) {
        Bones.Add({.Position = place, .IsShadow = place.X + place.Y == -2});
    }
    AutoAssign(1);
    EXPECT_EQ(Told(), "Warning: No boned found to assign.\nWarning: Mesh is not a skin.\n");
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
        const Vec3 normal = VecNormalize({static_cast<float>(x), 0, static_cast<float>(z)});
        EXPECT_NEAR(VecDistance(mesh.Normals[i], normal), 0, 1e-6) << i;
    }
    EXPECT_EQ(mesh.Faces[3].Normal, mesh.Faces[3].Vertex);
}
