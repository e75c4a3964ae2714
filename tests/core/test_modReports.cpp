#include "app/modMvmDef.h"
#include "dialogs/modReports.h"
#include "support/fresh.h"

using Reports = Fresh;

TEST_F(Reports, SayWhatTheSceneHolds)
{
    const struct {
        void (*Report)();
        const char *Empty, *Lines; // each line ends in a '|'; the first one is empty
    } cases[] = {
        {ReportMeshes, "|Meshes (0):|",
         "|Meshes (2):|body:| Vertices:            3| Texture coordinates: 4| Vertex normals:      5|"
         " Faces/polygons:      6| Materials:           2||R\u00FC:| Vertices:            0| Texture coordinates: 0|"
         " Vertex normals:      0| Faces/polygons:      0| Materials:           0||"},
        {ReportMeshNames, "|Meshes (0):|", "|Meshes (2):|body|R\u00FC|"},
        {ReportMaterials, "|Materials (0):|",
         "|Materials (2):|fur:|  Color map: maps\\fur.bmp|  Alpha map: hole.bmp|  bumpmap:  \u00FC.bmp||bare:||"},
        {ReportMaterialNames, "|Materials (0):|", "|Materials (2):|fur|bare|"},
        {ReportTextureFilenames, "|Texture Filenames:|", "|Texture Filenames:|maps\\fur.bmp|hole.bmp|\u00FC.bmp|"},
        {ReportInstances, "|Instances (0):|",
         "|Instances (1):|inst:| Position: 1,3,-2| Rotation: 0,5,0,-0,25| Scale:    1,1||"},
        {ReportInstanceNames, "|Instances (0):|", "|Instances (1):|inst|"},
        {ReportBones, "|Bones (0):|",
         "|Bones (1):|Spine01:| Position: 0,3333333,1E-07,7| Rotation: 0,0,1| Ratio:    2,5||"},
        {ReportBoneNames, "|Bones (0):|", "|Bones (1):|Spine01|"}};
    const auto joined = [](void (*report)()) {
        std::string text;
        for (const std::string& line : LogOf(report)) {
            text += line + "|";
        }
        return text;
    };
    for (const auto& row : cases) {
        EXPECT_EQ(joined(row.Report), row.Empty);
    }
    scripted::DecimalMark = ",";
    MvmMesh& body = Meshes.Add({.Name = "body"});
    body.Vertices.Items.resize(3);
    body.TexCoords.Items.resize(4);
    body.Normals.Items.resize(5);
    body.Faces.Items.resize(6);
    body.MeshMaterials.Items.resize(2);
    Meshes.Add().Name = "R\xFC";
    Materials.Add({"fur", "maps\\fur.bmp", "hole.bmp", "\xFC.bmp", 0});
    Materials.Add({"bare", "", "", "", 0});
    Instances.Add({"inst", "body", {1, 3, -2}, {0.5F, 0, -0.25F}, 1.1F});
    Bones.Add({"Spine01", {1.0F / 3, 1e-7F, 7}, {0, 0, 1}, 2.5F, "", "Back"});
    for (const auto& row : cases) {
        EXPECT_EQ(joined(row.Report), row.Lines);
    }
}
