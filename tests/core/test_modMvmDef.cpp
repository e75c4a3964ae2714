#include "app/modMvmDef.h"
#include "support/fresh.h"

using Scene = Fresh;

TEST_F(Scene, IndicesAreValidFromOneToTheCount)
{
    Meshes.Add();
    Bones.Items.resize(2);
    for (const int32_t index : {-32768, -1, 0, 1, 2, 3, 32767, 65537}) {
        EXPECT_EQ(IsValidMesh(index), index == 1) << index;
        EXPECT_EQ(IsValidBone(index), index == 1 || index == 2) << index;
    }
}

TEST_F(Scene, ClearForgetsTheContentAndLeavesTheDocument)
{
    FormatVersion = "1.0.2";
    Meshes.Add();
    Bones.Add();
    Materials.Add();
    Instances.Add();
    SkinMesh = ShadowMesh = HeadMesh = BodyMesh = TailMesh = ActiveBone = 1;
    SkinScale = 2;
    SkinOffset.Y = 3;
    ModelOpen = true;
    CurrentFile = "a.mvm";
    ClearModel();
    EXPECT_EQ(MeshCount() + BoneCount() + MaterialCount() + InstanceCount(), 0);
    EXPECT_TRUE(FormatVersion.empty());
    for (const int16_t role : {SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh, ActiveBone}) {
        EXPECT_EQ(role, 1);
    }
    EXPECT_TRUE(SkinScale == 2 && SkinOffset.Y == 3 && ModelOpen && CurrentFile == "a.mvm");
}

TEST_F(Scene, MakeSkinTouchesOnlyMeshesThatAreNoSkin)
{
    Meshes.Add().Vertices.Items.resize(3);
    Meshes.Add();
    MakeSkin(0);
    MakeSkin(3);
    MakeSkin(-1);
    EXPECT_FALSE(Meshes[1].IsSkin);

    MakeSkin(1);
    EXPECT_TRUE(Meshes[1].IsSkin);
    EXPECT_EQ(Meshes[1].VertexBones.Items, (std::vector<int16_t>{0, 0, 0}));
    EXPECT_EQ(Meshes[1].VertexJoints.Count(), 0);

    Meshes[1].VertexBones[2] = 5;
    MakeSkin(1);
    EXPECT_EQ(Meshes[1].VertexBones.Items, (std::vector<int16_t>{0, 5, 0}));

    MakeSkin(2);
    EXPECT_TRUE(Meshes[2].IsSkin);
    EXPECT_EQ(Meshes[2].VertexBones.Count(), 0);
}
