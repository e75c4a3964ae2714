#include "app/modMvmDef.h"
#include "dialogs/modReports.h"
#include "support/fresh.h"

using Reports = Fresh;

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

TEST_F(Reports, SayWhatTheSceneHolds)
{
    EXPECT_EQ(Report(),
              "|Meshes (0):||Meshes (0):||Materials (0):||Materials (0):||Texture Filenames:||Instances (0):||"
              "Instances (0):||Bones (0):||Bones (0):|");
    scripted::DecimalMark = ",";
    Meshes.Items.resize(2, {.Name = "body"});
    Meshes[1].Vertices.Items.resize(3);
    Meshes[1].TexCoords.Items.resize(4);
    Meshes[1].Normals.Items.resize(5);
    Meshes[1].Faces.Items.resize(6);
    Meshes[1].MeshMaterials.Items.resize(2);
    Meshes[2].Name = "R\xFC";
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
