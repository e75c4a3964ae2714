#include <limits>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "model/modMvmBind.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"

namespace {

class Edit : public Fresh {
protected:
    void SetUp() override
    {
        for (const char* name : {"Hide", "Lone\xE9", "Shade"}) {
            MvmMesh& mesh = Meshes.Add();
            mesh.Name = name;
            mesh.Vertices.Items.resize(6);
        }
        Instances.Add({"First", "Hide", {1, -2, 3}, {}, 4});
        Instances.Add({"Second", "Hide", {9, 9, 9}, {}, 9});
        Instances.Add({"Third", "Shade", {5, 5, 5}, {}, 0});
    }
};

TEST_F(Edit, SkinTakesOffsetAndScaleFromTheFirstInstance)
{
    SelectSkinMesh(1);
    EXPECT_TRUE(Meshes[1].IsSkin);
    EXPECT_EQ(Meshes[1].VertexBones.Count(), 6);
    EXPECT_EQ(SkinScale, 0.25F);
    EXPECT_TRUE(SkinOffset.X == -1 && SkinOffset.Y == 2 && SkinOffset.Z == -3);
    Meshes[1].VertexBones[2] = 7;
    SelectShadowMesh(3);
    EXPECT_EQ(SkinScale, 0.25F) << "the shadow has no scale of its own";
    SelectSkinMesh(1);
    EXPECT_EQ(Meshes[1].VertexBones[2], 7);
    EXPECT_TRUE(scripted::Messages.empty());

    const std::string lone = "No instance with the name \"Lone\xC3\xA9\" found.\nPlease rename the skin to match the "
                             "instance name.";
    SelectSkinMesh(2);
    SelectShadowMesh(2);
    EXPECT_THAT(scripted::Messages, testing::ElementsAre(IsBox(BoxIcon::Warning, lone), IsBox(BoxIcon::Warning, lone)));
    EXPECT_EQ(SkinMesh, 2);
    EXPECT_EQ(SkinScale, 0.25F);

    SelectSkinMesh(3);
    EXPECT_EQ(SkinScale, std::numeric_limits<float>::infinity());
    SelectSkinMesh(0);
    EXPECT_EQ(SkinScale, 1);
    EXPECT_EQ(SkinOffset.X, 0);
    SelectShadowMesh(99);
    EXPECT_EQ(scripted::Messages.size(), 2U);
    EXPECT_EQ(scripted::Redraws, 8);
}

TEST_F(Edit, RenameFollowsTheInstances)
{
    SkinMesh = 2;
    RenameMesh(1, "New\xC3\xA9\r\nmore");
    EXPECT_EQ(Meshes[1].Name, "New\xE9");
    EXPECT_EQ(Instances[1].Name, "New\xE9");
    EXPECT_EQ(Instances[2].Mesh, "New\xE9");
    EXPECT_EQ(Instances[3].Name, "Third");
    EXPECT_TRUE(scripted::Log.empty());
    for (const char* nothing : {"", "\nName", "\rName"}) {
        RenameMesh(1, nothing);
    }
    RenameMesh(0, "None");
    EXPECT_EQ(Meshes[1].Name, "New\xE9");
    EXPECT_EQ(SkinMesh, 2);
    EXPECT_EQ(scripted::Redraws, 0);
    for (const char* lost : {"a b", "a=b", "a\"b", "{a", "a}"}) {
        scripted::Log.clear();
        RenameMesh(1, lost);
        EXPECT_EQ(Meshes[1].Name, lost);
        EXPECT_EQ(Instances[2].Name, lost);
        EXPECT_THAT(scripted::Log, testing::ElementsAre(testing::HasSubstr(lost)));
    }
}

TEST_F(Edit, ListsShowLabelsOfTheirKind)
{
    Bones.Add({"Hip01", {}, {}, 0, "", "Hip"});
    Bones.Add({"$j$Hip02", {}, {}, 0, "", "", true});
    Bones.Add().Name = "Knee\xE9";
    ActiveBone = 3;
    FillBoneLists();
    EXPECT_EQ(ActiveBone, 0);
    const auto text = [](size_t list) {
        std::string all;
        for (const BoneRow& row : scripted::BoneRows[list]) {
            all += row.Text + ":" + std::to_string(row.Number) + " ";
        }
        return all;
    };
    EXPECT_EQ(text(0), "NONE:0 Hip:1 Knee\xC3\xA9:3 ");
    EXPECT_EQ(text(1), "NONE:0 $j$Hip02:2 ");
    EXPECT_EQ(scripted::SelectedRow[0], 0);
    EXPECT_EQ(scripted::SelectedRow[1], -1);
    AliasesOn = false;
    EXPECT_EQ(BoneLabel(1), "Hip01");

    SelectSkinMesh(1);
    Meshes[1].VertexBones.Items = {2, 2, 0, 1, 0, 0};
    const char* const status[] = {"3 verts assigned to bone 0", "1 verts assigned to bone 1",
                                  "2 verts assigned to bone 2"};
    for (const int16_t bone : {int16_t{1}, int16_t{2}, int16_t{0}}) {
        SetActiveBone(bone);
        EXPECT_EQ(scripted::SelectedRow[0], bone == 0 ? 0 : 1) << "a bone without a row leaves the selection alone";
        EXPECT_EQ(scripted::Panel("progress"), status[bone]);
    }
    EditTarget = 1;
    UpdateBoneStatus();
    EXPECT_EQ(scripted::Panel("progress"), "0 verts assigned to bone 0");
}

TEST_F(Edit, CommandsRewriteAssignments)
{
    SelectSkinMesh(1);
    Array1<int16_t>& bones = Meshes[1].VertexBones;
    bones.Items = {1, 2, 0, 1, 2, -3};
    SwapBones(1, 1, 2);
    EXPECT_EQ(bones.Items, (std::vector<int16_t>{2, 1, 0, 2, 1, -3}));
    SwapBones(1, 1, 1);
    ReplaceBone(1, 2, 5);
    EXPECT_EQ(bones.Items, (std::vector<int16_t>{5, 1, 0, 5, 1, -3}));
    ReplaceBone(1, 0, 4);
    for (const int16_t none : {int16_t{0}, int16_t{9}, int16_t{-1}}) {
        SwapBones(none, 1, 2);
        ReplaceBone(none, 1, 2);
        UnassignAll(none);
    }
    EXPECT_EQ(bones.Items, (std::vector<int16_t>{5, 1, 4, 5, 1, -3}));
    UnassignAll(1);
    EXPECT_EQ(CountBoneVerts(1, 0), 6);
}

} // namespace
