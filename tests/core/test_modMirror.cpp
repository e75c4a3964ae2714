#include "app/modFrontEnd.h"
#include "core/shapes.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

namespace {

using Mirror = Fresh;

bool IsTarget(const Vec3& place, const MirrorOptions& options)
{
    return options.LeftToRight ? place.X > 0 : place.X < 0;
}

/// Whether `b` on the source side is the mirror image of `a` on the target side.
bool Pairs(const Vec3& a, const Vec3& b, double t, const MirrorOptions& options)
{
    const auto near = [t](double target, double source) { return target - t < source && target + t > source; };
    return IsTarget(a, options) && !IsTarget(b, options) && near(a.X, -b.X) && near(a.Y, b.Y) && near(a.Z, b.Z);
}

/// The plain double loops.
void MirrorPlainly(MvmMesh* mesh, const MirrorOptions& options, bool links, std::vector<std::string>* log)
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
            log->push_back(std::to_string(i) + " : " + std::to_string(j));
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

TEST_F(Mirror, EqualsThePlainLoops)
{
    int changed = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const float step = shapes::Pick(&random, {0.01F, 0.25F, 1.0F});
        const auto place = [&] { return shapes::Place(&random, static_cast<int>(seed % shapes::Kinds), step); };
        const std::vector<float> thresholds = {step, step, step * 2, step * 1.5F, 0, 100, std::nanf("")};
        MirrorVertexThreshold = shapes::Pick(&random, thresholds);
        MirrorBoneThreshold = shapes::Pick(&random, thresholds);
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
        const MirrorOptions options{random() % 2 == 0, (seed / 8) % 2 == 0, (seed / 16) % 2 == 0};
        MvmMesh expected = mesh;
        std::vector<std::string> log;
        MirrorPlainly(&expected, options, AliasFiles[1].Name == "Hide", &log);
        changed += static_cast<int>(expected.VertexBones.Items != mesh.VertexBones.Items);
        SkinMesh = 1;
        MirrorWeights(options);
        ASSERT_EQ(mesh.VertexBones.Items, expected.VertexBones.Items) << "seed " << seed;
        ASSERT_EQ(scripted::Log, log) << "seed " << seed;
    }
    EXPECT_GT(changed, 150) << "most cases must have something to mirror";
}

TEST_F(Mirror, AliasFileDecidesOnlyWhileAliasesAreOn)
{
    MirrorWeights({});
    Bones.Items = {{.Position = {1, 0, 0}}, {.Position = {-1, 0, 0}}};
    AliasFiles.Add({"", "Shade", {}});
    MvmMesh& mesh = AddSkin("Shade", {{2, 0, 0}, {-2, 0, 0}}, {0, 2});
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
