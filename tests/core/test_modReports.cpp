#include "app/modMvmDef.h"
#include "dialogs/modReports.h"
#include "support/fresh.h"

using testing::ElementsAre;

using Reports = Fresh;

TEST_F(Reports, AnEmptySceneGivesTheHeadOnly)
{
    const std::pair<void (*)(), const char*> cases[] = {{ReportMeshes, "Meshes (0):"},
                                                        {ReportMeshNames, "Meshes (0):"},
                                                        {ReportMaterials, "Materials (0):"},
                                                        {ReportMaterialNames, "Materials (0):"},
                                                        {ReportInstances, "Instances (0):"},
                                                        {ReportInstanceNames, "Instances (0):"},
                                                        {ReportBones, "Bones (0):"},
                                                        {ReportBoneNames, "Bones (0):"},
                                                        {ReportTextureFilenames, "Texture Filenames:"}};
    for (const auto& [report, head] : cases) {
        EXPECT_THAT(LogOf(report), ElementsAre("", head));
    }
}

TEST_F(Reports, MeshesWithTheirCounts)
{
    MvmMesh& body = Meshes.Add();
    body.Name = "body";
    body.Vertices.Items.resize(120);
    body.TexCoords.Items.resize(98);
    body.Normals.Items.resize(121);
    body.Faces.Items.resize(200);
    body.MeshMaterials.Items.resize(2);
    Meshes.Add().Name = "R\xFC";
    EXPECT_THAT(LogOf(ReportMeshes),
                ElementsAre("", "Meshes (2):", "body:", " Vertices:            120", " Texture coordinates: 98",
                            " Vertex normals:      121", " Faces/polygons:      200", " Materials:           2", "",
                            "Rü:", " Vertices:            0", " Texture coordinates: 0", " Vertex normals:      0",
                            " Faces/polygons:      0", " Materials:           0", ""));
    EXPECT_THAT(LogOf(ReportMeshNames), ElementsAre("", "Meshes (2):", "body", "Rü"));
}

TEST_F(Reports, MaterialsWithTheFilesThatTheyHave)
{
    Materials.Add({"fur", "maps\\fur.bmp", "hole.bmp", "maps\\fur.bmp", 0});
    Materials.Add({"bare", "", "", "", 0});
    EXPECT_THAT(LogOf(ReportMaterials),
                ElementsAre("", "Materials (2):", "fur:", "  Color map: maps\\fur.bmp", "  Alpha map: hole.bmp",
                            "  bumpmap:  maps\\fur.bmp", "", "bare:", ""));
    EXPECT_THAT(LogOf(ReportMaterialNames), ElementsAre("", "Materials (2):", "fur", "bare"));
    EXPECT_THAT(LogOf(ReportTextureFilenames),
                ElementsAre("", "Texture Filenames:", "maps\\fur.bmp", "hole.bmp", "maps\\fur.bmp"));
}

TEST_F(Reports, InstancesAndBonesWithTheirPlaces)
{
    scripted::DecimalMark = ",";
    Instances.Add({"inst", "body", {1, 3, -2}, {0.5F, 0, -0.25F}, 1.1F});
    EXPECT_THAT(LogOf(ReportInstances), ElementsAre("", "Instances (1):", "inst:", " Position: 1,3,-2",
                                                    " Rotation: 0,5,0,-0,25", " Scale:    1,1", ""));
    EXPECT_THAT(LogOf(ReportInstanceNames), ElementsAre("", "Instances (1):", "inst"));

    Bones.Add({"Spine01", {1.0F / 3, 1e-7F, 7}, {}, 0, "", "Back"});
    EXPECT_THAT(LogOf(ReportBones), ElementsAre("", "Bones (1):", "Spine01:", " Position: 0,3333333,1E-07,7",
                                                " Rotation: 0,0,0", " Ratio:    0", ""));
    EXPECT_THAT(LogOf(ReportBoneNames), ElementsAre("", "Bones (1):", "Spine01"));
}
