#include <algorithm>
#include <set>

#include "model/modStrings.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"
#include "weights/modMirror.h"

// The sample creature and its company keep what the manual and the other tests rely on.

static const std::string root = SOURCE_FOLDER "/";
static const std::string whole = "samples/vorrel/vorrel.mvm";

struct Samples : Fresh {
    static void Load(const std::string& path)
    {
        scripted::Reset();
        scripted::Folder = root + "assets";
        ASSERT_TRUE(LoadMVM(root + path)) << path;
        LoadAlias();
        ApplyAliases();
        EXPECT_EQ(Told(), "") << path;
        // Not EXPECT_EQ: a difference would print megabytes.
        EXPECT_TRUE(ModelText() == Content(root + path)) << path;
    }
};

TEST_F(Samples, TheVorrelHasAllThatAModelCanHave)
{
    for (const char* path : {"assets/presets/Vorrel.preset", "samples/tutorial/vorrel-skin.mvm"}) {
        Load(path);
        EXPECT_EQ(BoneCount() == 0, IsValidMesh(SkinMesh)) << path;
    }
    Load(whole);
    EXPECT_EQ((std::set<int16_t>{SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}).size(), 5U);
    EXPECT_TRUE(SkinScale == 0.5F && SkinOffset.X == 0 && SkinOffset.Y != 0);
    const auto byHeight = [](const Vec3& a, const Vec3& b) { return a.Y < b.Y; };
    for (const int16_t mesh : {SkinMesh, ShadowMesh}) {
        const std::vector<Vec3>& places = Meshes[mesh].Vertices.Items;
        EXPECT_NEAR(std::min_element(places.begin(), places.end(), byHeight)->Y, 0, 0.01) << "stands on the floor";
    }
    std::set<std::string> labels;
    for (int16_t i = 1; i <= static_cast<int16_t>(BoneCount()); ++i) {
        const MvmBone& bone = Bones[i];
        SCOPED_TRACE(bone.Name);
        EXPECT_GT(CountBoneVerts(bone.IsShadow ? ShadowMesh : SkinMesh, i), 0);
        EXPECT_TRUE(!bone.Alias.empty() && labels.insert(bone.Alias).second);
        EXPECT_EQ(bone.Alias.find("Right") != std::string::npos, bone.Position.X > 0);
        EXPECT_TRUE(bone.LinkBone == 0 || Bones[bone.LinkBone].IsShadow == bone.IsShadow);
        ASSERT_TRUE(IsValidBone(bone.MirrorBone));
        const Vec3& twin = Bones[bone.MirrorBone].Position;
        EXPECT_TRUE(twin.X == -bone.Position.X && twin.Y == bone.Position.Y && twin.Z == bone.Position.Z);
    }
    EXPECT_EQ(CountBoneVerts(SkinMesh, 0) + CountBoneVerts(ShadowMesh, 0), 0);
    std::set<std::string> kinds;
    for (const MvmMaterial& material : Materials) {
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
    Load("samples/tutorial/vorrel-half.mvm");
    const std::string manual = Content(SOURCE_FOLDER "/assets/readme/readme.html");
    const std::vector<int16_t>& bones = Meshes[SkinMesh].VertexBones.Items;
    for (const auto& [bone, before, after] :
         {std::tuple{0, "no bone yet: ", ".</p>"}, {6, "\n", " vertices belong to bone 6."}}) {
        const std::string told = before + std::to_string(std::count(bones.begin(), bones.end(), bone)) + after;
        EXPECT_THAT(manual, testing::HasSubstr(told)) << "what the tutorial says to expect";
    }
    for (const int16_t target : {int16_t{0}, int16_t{1}}) {
        EditTarget = target;
        const MvmMesh& mesh = Meshes[TargetMesh()];
        const std::vector<int16_t>& expected = full[TargetMesh()].VertexBones.Items;
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            ASSERT_EQ(mesh.VertexBones[i], mesh.Vertices[i].X > 0 ? 0 : expected.at(static_cast<size_t>(i) - 1));
        }
        MirrorWeights({});
        EXPECT_TRUE(mesh.VertexBones.Items == expected) << mesh.Name;
    }
}
