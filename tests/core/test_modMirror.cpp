#include "app/modFrontEnd.h"
#include "core/shapes.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

namespace {

bool IsTarget(float x, bool leftToRight)
{
    return leftToRight ? x > 0 : x < 0;
}

bool Pairs(const Vec3& a, const Vec3& b, float threshold)
{
    const double t = threshold;
    return a.Y - t < b.Y && a.Y + t > b.Y && a.Z - t < b.Z && a.Z + t > b.Z && a.X - t < -b.X && a.X + t > -b.X;
}

/// The plain double loops.
void MirrorPlainly(MvmMesh* mesh, const MirrorOptions& options, bool links, std::vector<std::string>* log)
{
    std::vector<int16_t> partners(static_cast<size_t>(BoneCount()) + 1);
    for (int32_t i = 1; !links && i <= BoneCount(); ++i) {
        if (!IsTarget(Bones[i].Position.X, options.LeftToRight)) {
            continue;
        }
        for (int32_t j = 1; j <= BoneCount(); ++j) {
            if (!IsTarget(Bones[j].Position.X, options.LeftToRight) &&
                Pairs(Bones[i].Position, Bones[j].Position, MirrorBoneThreshold)) {
                partners[static_cast<size_t>(i)] = static_cast<int16_t>(j);
                partners[static_cast<size_t>(j)] = static_cast<int16_t>(i);
                log->push_back(std::to_string(i) + " : " + std::to_string(j));
                break;
            }
        }
    }
    for (int32_t i = 1; i <= mesh->VertexCount(); ++i) {
        if (!IsTarget(mesh->Vertices[i].X, options.LeftToRight)) {
            continue;
        }
        for (int32_t j = 1; j <= mesh->VertexCount(); ++j) {
            if (IsTarget(mesh->Vertices[j].X, options.LeftToRight) ||
                !Pairs(mesh->Vertices[i], mesh->Vertices[j], MirrorVertexThreshold)) {
                continue;
            }
            const int16_t bone = mesh->VertexBones[j];
            int16_t partner = 0;
            if (IsValidBone(bone)) {
                partner = links ? Bones[bone].MirrorBone : partners[static_cast<size_t>(bone)];
            }
            int16_t& entry = mesh->VertexBones[i];
            if (partner > 0 && (entry < 1 || options.Reassign)) {
                entry = partner;
            } else if (partner <= 0 && options.Unassign) {
                entry = 0;
            }
        }
    }
}

using Mirror = Fresh;

TEST_F(Mirror, EqualsThePlainLoops)
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    int changed = 0;
    for (unsigned seed = 0; seed < 640; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const int kind = static_cast<int>(seed % shapes::Kinds);
        const float step = shapes::Pick(&random, {0.01F, 0.25F, 1.0F});
        const auto threshold = [&] {
            return shapes::Pick(&random, {step, step, step * 2, step * 1.5F, 0, -step, 100, inf, std::nanf("")});
        };
        MirrorVertexThreshold = threshold();
        MirrorBoneThreshold = threshold();
        const auto bones = random() % 40;
        for (unsigned b = 0; b < bones; ++b) {
            MvmBone& bone = Bones.Add();
            bone.Position = shapes::Place(&random, kind, step);
            bone.MirrorBone = static_cast<int16_t>(random() % (bones + 1));
        }
        MvmMesh mesh;
        mesh.Name = "Hide";
        mesh.IsSkin = true;
        const auto vertices = 2 * shapes::Count(&random); // about half of them on the target side
        for (unsigned v = 0; v < vertices; ++v) {
            mesh.Vertices.Add(shapes::Place(&random, kind, step));
            mesh.VertexBones.Add(static_cast<int16_t>(static_cast<int>(random() % (bones + 4)) - 2));
        }
        const bool links = random() % 3 == 0;
        if (links) {
            AliasFiles.Add({"", "Hide", {}});
        }
        const MirrorOptions options{random() % 2 == 0, (seed / 8) % 2 == 0, (seed / 16) % 2 == 0};
        MvmMesh expected = mesh;
        std::vector<std::string> log;
        MirrorPlainly(&expected, options, links, &log);
        changed += static_cast<int>(expected.VertexBones.Items != mesh.VertexBones.Items);
        Meshes.Add(mesh);
        SkinMesh = 1;
        MirrorWeights(options);
        ASSERT_EQ(Meshes[1].VertexBones.Items, expected.VertexBones.Items) << "seed " << seed;
        ASSERT_EQ(scripted::Log, log) << "seed " << seed;
        ASSERT_EQ(LogDirty, !log.empty());
    }
    EXPECT_GT(changed, 200) << "most cases must have something to mirror";
    EXPECT_EQ(scripted::LogShown, 0);
}

TEST_F(Mirror, AliasFileDecidesOnlyWhileAliasesAreOn)
{
    for (const int16_t none : {int16_t{0}, int16_t{3}}) {
        SkinMesh = none;
        MirrorWeights({});
    }
    Bones.Add().Position = {1, 0, 0};
    Bones.Add().Position = {-1, 0, 0};
    AliasFiles.Add({"", "Shade", {}});
    MvmMesh& mesh = Meshes.Add();
    mesh.Name = "Shade";
    mesh.IsSkin = true;
    mesh.Vertices.Items = {{2, 0, 0}, {-2, 0, 0}};
    mesh.VertexBones.Items = {0, 2};
    ShadowMesh = 1;
    EditTarget = 1;
    MirrorWeights({});
    EXPECT_EQ(mesh.VertexBones[1], 0) << "the file is there, but the bones have no links";
    EXPECT_TRUE(scripted::Log.empty());
    AliasesOn = false;
    MirrorWeights({});
    EXPECT_EQ(mesh.VertexBones[1], 1);
    EXPECT_EQ(scripted::Log, std::vector<std::string>{"1 : 2"});
}

TEST_F(Mirror, LargeMeshInOnePlaceEndsSoon)
{
    // Every vertex of one side is in tolerance of every vertex of the other: 2.7e8 pairs.
    Bones.Add().Position = {1, 0, 0};
    Bones.Add().Position = {-1, 0, 0};
    MvmMesh& mesh = Meshes.Add();
    mesh.IsSkin = true;
    for (int v = 0; v < 32767; ++v) {
        mesh.Vertices.Add({v % 2 == 0 ? 0.001F : -0.001F, 0, 0});
        mesh.VertexBones.Add();
    }
    SkinMesh = 1;
    for (const bool reassign : {true, false}) {
        for (const bool unassign : {true, false}) {
            for (int32_t v = 1; v <= 32767; ++v) {
                mesh.VertexBones[v] = v % 4 == 2 ? int16_t{2} : int16_t{0};
            }
            MirrorWeights({true, reassign, unassign});
            EXPECT_EQ(mesh.VertexBones[1], 1);
            EXPECT_EQ(mesh.VertexBones[32767], 1);
        }
    }
}

} // namespace
