#include <set>

#include "app/modMath.h"
#include "model/modStrings.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

// The sample creature and its company keep what the manual and the other tests rely on.

namespace {

const std::string root = SOURCE_FOLDER "/";
const std::string whole = "samples/vorrel/vorrel.mvm";
const std::string half = "samples/tutorial/vorrel-half.mvm";

struct Samples : Fresh {
    static void Load(const std::string& path)
    {
        scripted::Reset();
        scripted::Folder = root + "assets";
        ASSERT_TRUE(LoadMVM(root + path)) << path;
        LoadAlias();
        ApplyAliases();
        EXPECT_TRUE(scripted::Messages.empty() && scripted::Log.empty()) << path;
        // Not EXPECT_EQ: a difference would print megabytes.
        EXPECT_TRUE(ModelText() == Content(root + path)) << path;
    }
};

} // namespace

TEST_F(Samples, PresetsAreBonesAloneAndTheSkinHasNone)
{
    for (const char* preset : {"assets/presets/Vorrel.preset", "assets/presets/Longneck.preset"}) {
        Load(preset);
        EXPECT_TRUE(BoneCount() > 0 && MeshCount() + MaterialCount() + InstanceCount() == 0);
    }
    Load("samples/tutorial/vorrel-skin.mvm");
    EXPECT_TRUE(BoneCount() == 0 && IsValidMesh(SkinMesh));
}

TEST_F(Samples, TheVorrelHasAllThatAModelCanHave)
{
    Load(whole);
    EXPECT_EQ((std::set<int16_t>{SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}).size(), 5U);
    EXPECT_TRUE(SkinScale == 0.5F && SkinOffset.X == 0 && SkinOffset.Y != 0);
    std::set<int16_t> used;
    for (const int16_t role : {SkinMesh, ShadowMesh}) {
        for (const int16_t bone : Meshes[role].VertexBones) {
            ASSERT_TRUE(IsValidBone(bone) && Bones[bone].IsShadow == (role == ShadowMesh));
            used.insert(bone);
        }
    }
    EXPECT_EQ(static_cast<int32_t>(used.size()), BoneCount()) << "a bone without vertices";
    std::set<std::string> labels;
    for (const MvmBone& bone : Bones) {
        SCOPED_TRACE(bone.Name);
        EXPECT_TRUE(!bone.Alias.empty() && labels.insert(bone.Alias).second);
        EXPECT_EQ(bone.Alias.find("Right") != std::string::npos, bone.Position.X > 0);
        ASSERT_TRUE(IsValidBone(bone.MirrorBone) &&
                    (bone.LinkBone == 0 || Bones[bone.LinkBone].IsShadow == bone.IsShadow));
        const Vec3& twin = Bones[bone.MirrorBone].Position;
        EXPECT_TRUE(twin.X == -bone.Position.X && twin.Y == bone.Position.Y && twin.Z == bone.Position.Z);
    }
    // The front of a face and its normals look to the same side; a flipped face would be culled.
    for (const MvmMesh& mesh : Meshes) {
        for (const MvmFace& face : mesh.Faces) {
            ASSERT_TRUE(FaceCornersValid(mesh, face) && face.Material >= 1);
            const auto at = [&](size_t k) { return mesh.Vertices[face.Vertex[k]]; };
            const auto along = [&](size_t k) {
                return VecDot(FaceNormal(at(2), at(1), at(0)), mesh.Normals[face.Normal[k]]);
            };
            EXPECT_GT(along(0) + along(1) + along(2), 0) << mesh.Name << " vertex " << face.Vertex[0];
        }
    }
    std::set<std::string> kinds;
    for (const MvmMaterial& material : Materials) {
        EXPECT_EQ(material.Texture == 0, material.ColorMap.empty());
        const std::string map = root + std::string(DirectoryOf(whole)) + material.ColorMap;
        kinds.insert(material.Texture == 0 ? "bare" : Content(map).at(28) == 8 ? "8-bit" : "24-bit");
        kinds.insert(material.OpacityMap.empty() ? "solid" : "with holes");
    }
    EXPECT_THAT(kinds, testing::ElementsAre("24-bit", "8-bit", "bare", "solid", "with holes"));
}

TEST_F(Samples, MirroringCompletesTheTutorialsHalf)
{
    Load(whole);
    const Array1<MvmMesh> full = Meshes;
    Load(half);
    for (const int16_t target : {int16_t{0}, int16_t{1}}) {
        EditTarget = target;
        const MvmMesh& mesh = Meshes[TargetMesh()];
        const std::vector<int16_t>& expected = full[TargetMesh()].VertexBones.Items;
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            ASSERT_EQ(mesh.VertexBones[i],
                      mesh.Vertices[i].X > 0 ? int16_t{0} : expected.at(static_cast<size_t>(i) - 1));
        }
        MirrorWeights({});
        EXPECT_TRUE(mesh.VertexBones.Items == expected) << mesh.Name;
    }
}
