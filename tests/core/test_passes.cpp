#include <cmath>
#include <random>

#include "core/model_file.h"
#include "model/modMvmBind.h"
#include "model/modStrings.h"

namespace {

using testing::ElementsAre;

class VerifyModel : public ModelFile {};

std::string BoneBlocks(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += "bone \"" + name + "\" {\r\n}\r\n";
    }
    return text;
}

/// Binding as a plain walk over all bones for each vertex.
std::vector<int16_t> PlainBinding(const MvmMesh& mesh, bool toOrdinary, bool toShadow)
{
    std::vector<int16_t> bones(mesh.Vertices.Items.size());
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        for (int32_t bone = 1; bone <= BoneCount(); ++bone) {
            if ((Bones[bone].IsShadow ? toShadow : toOrdinary) &&
                JointNumber(Bones[bone].Name) == mesh.VertexJoints[vertex]) {
                bones[static_cast<size_t>(vertex) - 1] = static_cast<int16_t>(bone);
            }
        }
    }
    return bones;
}

} // namespace

TEST_F(VerifyModel, BindsToTheLastBoneOfItsKindWithTheNumber)
{
    const struct {
        std::vector<std::string> BoneNames;
        const char* Joint;
        int Bone;
    } cases[] = {
        {{}, ",0", 0},          {{"A00"}, ",-32768", 0},         {{"x7."}, ",7", 1},    {{"Toe9", "A01"}, "", 1},
        {{"A99"}, ",99", 1},    {{"Toe9", "A01"}, ",9", 0},      {{"x.5"}, ",0.5", 0},  {{"Toe9", "A01"}, ",0", 1},
        {{"A07"}, ",7.5", 0},   {{"A01", "x-1"}, ",-1", 2},      {{"A08"}, ",7.5", 1},  {{"A07", "$j$07"}, ",7", 1},
        {{"A07"}, ",7,8", 0},   {{"A01", "Root"}, ",-1", 0},     {{"A107"}, ",107", 0}, {{"A00", "Root", "B01"}, "", 2},
        {{"A00"}, ",32767", 0}, {{"A07", "B07", "C17"}, ",7", 2}};
    for (const auto& row : cases) {
        ASSERT_TRUE(LoadAnew(BoneBlocks(row.BoneNames) + "skin \"S\" {\r\n v = (1,2,3)" + row.Joint + "\r\n}\r\n"));
        EXPECT_EQ(Meshes[1].VertexBones[1], row.Bone) << row.Joint << testing::PrintToString(row.BoneNames);
    }
}

TEST_F(VerifyModel, BindsLikeThePlainWalk)
{
    std::mt19937 random(11);
    const std::string_view endings = "0123456789.-+eEdDx$ ";
    for (int round = 0; round < 40; ++round) {
        scripted::Reset();
        for (int bone = 0; bone < 60; ++bone) {
            MvmBone& added = Bones.Add();
            added.Name = {'b', endings[random() % endings.size()], endings[random() % endings.size()]};
            added.IsShadow = random() % 2 == 0;
        }
        MvmMesh& mesh = Meshes.Add();
        mesh.IsSkin = true;
        mesh.Name = round % 2 == 0 ? "S" : "S$";
        SkinMesh = round % 4 == 3 ? int16_t{1} : int16_t{0}; // then it holds both roles
        for (int vertex = 0; vertex < 150; ++vertex) {
            mesh.Vertices.Add();
            mesh.VertexBones.Add();
            mesh.VertexJoints.Add(static_cast<int16_t>(static_cast<int>(random() % 120) - 15));
        }
        VerifyMeshes();
        EXPECT_EQ(mesh.VertexBones.Items, PlainBinding(mesh, SkinMesh == 1, ShadowMesh == 1));
    }
}

TEST_F(VerifyModel, WorksOutRolesFromNames)
{
    ASSERT_TRUE(
        Load(BoneBlocks({"A01", "$J$B01"}) +
             Lines("mesh \"head\"|skin \"S1\" {|v = (0,0,0),1|}|skin \"S$h\" {|v = (0,0,0),1|}|"
                   "mesh \"my$HEADbody\"|mesh \"$Tail\"|mesh \"$tail2\"|skin \"S2\" {|v=(0,0,0),1|}|mesh \"$\"|")));
    EXPECT_THAT((std::array{SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}), ElementsAre(7, 3, 4, 4, 6));
    EXPECT_TRUE(!Bones[1].IsShadow && Bones[2].IsShadow);
    EXPECT_EQ(Meshes[2].VertexBones[1], 1); // bound while it held the role
    EXPECT_EQ(Meshes[3].VertexBones[1], 2);
    EXPECT_EQ(Meshes[7].VertexBones[1], 1);
}

TEST_F(VerifyModel, MakesASingleMeshTheSkin)
{
    ASSERT_TRUE(Load(BoneBlocks({"A00"}) + Lines("mesh \"M\" {|v = (0,0,0),0|}|")));
    EXPECT_EQ(SkinMesh, 1);
    EXPECT_EQ(ShadowMesh, 0);
    EXPECT_TRUE(Meshes[1].IsSkin);
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(0));
    EXPECT_EQ(Meshes[1].VertexJoints.Count(), 0);

    ASSERT_TRUE(LoadAnew(Lines("skin \"S$\"|")));
    EXPECT_EQ(SkinMesh, 1);
    EXPECT_EQ(ShadowMesh, 1);

    ASSERT_TRUE(LoadAnew(Lines("mesh \"M\"|mesh \"N\"|")));
    EXPECT_EQ(SkinMesh, 0);
}

TEST_F(VerifyModel, LeavesMeshesWithoutJointNumbersUnbound)
{
    ASSERT_TRUE(Load(Lines("mesh \"M\" {|v = (0,0,0)|v = (1,0,0)|}|")));
    ASSERT_TRUE(Meshes[1].IsSkin); // so the second load meets a skin without joint numbers
    ASSERT_TRUE(Load(BoneBlocks({"Root"}) + Lines("{|v = (2,0,0)|}|")));
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(0, 0));
    EXPECT_EQ(SkinMesh, 1);

    Meshes[1].VertexJoints.Add(0); // one too few
    VerifyMeshes();
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(1, 0));
}

TEST_F(VerifyModel, FindsTheLastMaterialOfAName)
{
    ASSERT_TRUE(Load(Lines("mesh \"M\" {|m = A|m = \"B\"|m = a|m = C|}|material \"A\"|material B|material \"A\"|")));
    const auto& list = Meshes[1].MeshMaterials;
    EXPECT_THAT((std::array{list[1].Index, list[2].Index, list[3].Index}), ElementsAre(3, 2, 0));
    Meshes[1].MeshMaterials[4].Index = 2;
    VerifyMeshes();
    EXPECT_EQ(list[4].Index, 2); // without a match it stays
}

TEST_F(VerifyModel, GivesNoRoleToMeshesThatNoIndexReaches)
{
    for (int mesh = 0; mesh < 32767; ++mesh) {
        Meshes.Add();
    }
    Meshes.Add().IsSkin = true;
    Meshes[32767].IsSkin = true;
    VerifyMeshes();
    EXPECT_EQ(SkinMesh, 32767);
}
