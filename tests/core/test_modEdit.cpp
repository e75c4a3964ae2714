#include <cmath>

#include "app/modFrontEnd.h"
#include "dialogs/modReports.h"
#include "model/modMvmBind.h"
#include "support/fresh.h"
#include "weights/modEdit.h"

using testing::ElementsAre;

struct Edit : Fresh {
    Edit()
    {
        for (const char* name : {"Hide", "Lone\xE9", "Shade"}) {
            Meshes.Add({.Name = name, .Vertices = {std::vector<Vec3>(6)}});
        }
        Instances.Items = {
            {"", "Hide", {1, -2, 3}, {}, 4}, {"", "Hide", {9, 9, 9}, {}, 9}, {"Third", "Shade", {}, {}, 0}};
    }
};

TEST_F(Edit, SkinTakesOffsetAndScaleFromTheFirstInstance)
{
    SelectSkinMesh(1);
    EXPECT_TRUE(Meshes[1].IsSkin);
    ASSERT_EQ(CountBoneVerts(1, 0), 6);
    EXPECT_TRUE(SkinOffset.X == -1 && SkinOffset.Y == 2 && SkinOffset.Z == -3);
    Meshes[1].VertexBones[2] = 7;
    SelectShadowMesh(3);
    EXPECT_EQ(SkinScale, 0.25F) << "the shadow has no scale of its own";
    SelectSkinMesh(1);
    EXPECT_EQ(Meshes[1].VertexBones[2], 7);
    EXPECT_EQ(Told(), "");
    SelectSkinMesh(2);
    SelectShadowMesh(2);
    const std::string lone =
        "Warning: No instance with the name \"Lone\u00E9\" found.\nPlease rename the skin to match the "
        "instance name.\n";
    EXPECT_EQ(Told(), lone + lone);
    EXPECT_TRUE(SkinMesh == 2 && SkinScale == 0.25F);
    SelectSkinMesh(3);
    EXPECT_EQ(SkinScale, INFINITY);
    SelectSkinMesh(0);
    EXPECT_TRUE(SkinScale == 1 && SkinOffset.X == 0);
    SelectShadowMesh(99);
    EXPECT_EQ(Told() + std::to_string(scripted::Redraws), "8");
}

TEST_F(Edit, RenameFollowsTheInstances)
{
    RenameMesh(1, "New\u00E9\r\nmore");
    RenameMesh(1, "\nName");
    RenameMesh(0, "None");
    EXPECT_EQ(Meshes[1].Name + Instances[1].Name + Instances[2].Mesh + Instances[3].Name + Told(),
              "New\xE9New\xE9New\xE9Third");
    for (const std::string lost : {"a b", "a=b", "a\"b", "{a", "\u00E4}"}) {
        EXPECT_THAT(LogOf([&] { RenameMesh(1, lost); }),
                    ElementsAre("A model file cannot keep the name \"" + lost +
                                "\": it holds a blank, an equals sign, a double quote or a brace."));
    }
    EXPECT_EQ(Instances[2].Name, "\xE4}");
}

TEST_F(Edit, ListsShowLabelsAndTheStatusCounts)
{
    Bones.Items = {{.Name = "Hip01", .Alias = "Hip"}, {.Name = "$j$Hip02", .IsShadow = true}, {.Name = "Knee\xE9"}};
    ActiveBone = 3;
    FillBoneLists();
    EXPECT_EQ(ActiveBone, 0);
    std::string rows;
    for (const int list : {0, 1}) {
        for (const BoneRow& row : scripted::BoneRows[list]) {
            rows += row.Text + ":" + std::to_string(row.Number) + " ";
        }
    }
    EXPECT_EQ(rows, "NONE:0 Hip:1 Knee\u00E9:3 NONE:0 $j$Hip02:2 ");
    EXPECT_THAT(scripted::SelectedRow, ElementsAre(0, -1));
    AliasesOn = false;
    EXPECT_EQ(BoneLabel(1), "Hip01");
    SelectSkinMesh(1);
    Meshes[1].VertexBones.Items = {2, 2, 0, 1, 0, 0};
    SetActiveBone(1);
    EXPECT_EQ(scripted::Panel("progress"), "1 verts assigned to bone 1");
    SetActiveBone(2);
    EXPECT_EQ(scripted::Panel("progress"), "2 verts assigned to bone 2");
    EXPECT_EQ(scripted::SelectedRow[0], 1) << "a bone without a row leaves it alone";
    EXPECT_EQ(scripted::Redraws, 4);
    EditTarget = 1;
    UpdateBoneStatus();
    EXPECT_EQ(scripted::Panel("progress"), "0 verts assigned to bone 2");
}

TEST_F(Edit, CommandsRewriteAssignments)
{
    for (const int16_t mesh : {int16_t{0}, int16_t{9}, int16_t{1}}) {
        MakeSkin(mesh);
        Meshes[1].VertexBones.Items.assign({1, 2, 0, 1, 2, -3});
        SwapBones(mesh, 1, 2);
        ReplaceBone(mesh, 2, 5);
        ReplaceBone(mesh, 0, 4);
    }
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(5, 1, 4, 5, 1, -3));
    UnassignAll(0);
    UnassignAll(1);
    EXPECT_EQ(CountBoneVerts(1, 0), 6);
}

TEST_F(Edit, ClearForgetsTheContentAndLeavesTheDocument)
{
    AddBones({"A"});
    Materials.Add();
    Textures.Items = {{.GLTexture = 7}, {}};
    FormatVersion = CurrentFile = "a";
    SkinMesh = ShadowMesh = HeadMesh = BodyMesh = TailMesh = ActiveBone = 1;
    ModelOpen = true;
    ClearModel();
    EXPECT_EQ(MeshCount() + BoneCount() + MaterialCount() + InstanceCount() + TextureCount(), 0);
    EXPECT_THAT(scripted::DeletedTextures, ElementsAre(7));
    EXPECT_EQ(SkinMesh * ShadowMesh * HeadMesh * BodyMesh * TailMesh * ActiveBone, 1);
    EXPECT_TRUE(ModelOpen && FormatVersion + CurrentFile == "a");
    ForgetModel();
    EXPECT_EQ(SkinMesh + ShadowMesh + HeadMesh + BodyMesh + TailMesh + ActiveBone, 0);
    EXPECT_TRUE(!ModelOpen && CurrentFile.empty());
}

/// What all reports say, with a '|' behind each line.
static std::string Report()
{
    std::string text;
    for (void (*report)() :
         {ReportMeshes, ReportMeshNames, ReportMaterials, ReportMaterialNames, ReportTextureFilenames, ReportInstances,
          ReportInstanceNames, ReportBones, ReportBoneNames}) {
        for (const std::string& line : LogOf(report)) {
            text += line + "|";
        }
    }
    return text;
}

TEST_F(Fresh, ReportsSayWhatTheSceneHolds)
{
    EXPECT_EQ(Report(),
              "|Meshes (0):||Meshes (0):||Materials (0):||Materials (0):||Texture Filenames:||Instances (0):||"
              "Instances (0):||Bones (0):||Bones (0):|");
    scripted::DecimalMark = ",";
    MvmMesh& mesh = Meshes.Add({.Name = "body", .MeshMaterials = {{{}, {}}}, .Vertices = {{{}, {}, {}}}});
    mesh.Normals.Items.resize(5);
    mesh.TexCoords.Items.resize(4);
    mesh.Faces.Items.resize(6);
    Meshes.Add().Name = "R\xFC";
    Materials.Items = {{"fur", "maps\\fur.bmp", "hole.bmp", "\xFC.bmp", 0}, {"bare", "", "", "", 0}};
    Instances.Add({"inst", "body", {1, 3, -2}, {0.5F, 0, -0.25F}, 1.1F});
    Bones.Add({"Spine01", {1.0F / 3, 1e-7F, 7}, {0, 0, 1}, 2.5F, "", "Back"});
    EXPECT_EQ(
        Report(),
        "|Meshes (2):|body:| Vertices:            3| Texture coordinates: 4| Vertex normals:      5|"
        " Faces/polygons:      6| Materials:           2||R\u00FC:| Vertices:            0| Texture coordinates: 0|"
        " Vertex normals:      0| Faces/polygons:      0| Materials:           0|||Meshes (2):|body|R\u00FC|"
        "|Materials (2):|fur:|  Color map: maps\\fur.bmp|  Alpha map: hole.bmp|  bumpmap:  \u00FC.bmp||bare:||"
        "|Materials (2):|fur|bare||Texture Filenames:|maps\\fur.bmp|hole.bmp|\u00FC.bmp|"
        "|Instances (1):|inst:| Position: 1,3,-2| Rotation: 0,5,0,-0,25| Scale:    1,1|||Instances (1):|inst|"
        "|Bones (1):|Spine01:| Position: 0,3333333,1E-07,7| Rotation: 0,0,1| Ratio:    2,5|||Bones (1):|Spine01|");
}
