#include "dialogs/modReports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "support/scripted.h"

using testing::ElementsAre;

namespace {

class Reports : public testing::Test {
protected:
    void SetUp() override { scripted::Reset(); }

    static std::vector<std::string> Lines(void (*report)())
    {
        scripted::Log.clear();
        scripted::LogShown = 0;
        report();
        EXPECT_EQ(scripted::LogShown, 1);
        EXPECT_FALSE(LogDirty);
        return scripted::Log;
    }
};

} // namespace

TEST_F(Reports, AnEmptySceneGivesTheHeadOnly)
{
    const std::pair<void (*)(), const char*> cases[] = {
        {ReportMeshes, "Meshes (0):"},
        {ReportMeshNames, "Meshes (0):"},
        {ReportMaterials, "Materials (0):"},
        {ReportMaterialNames, "Materials (0):"},
        {ReportInstances, "Instances (0):"},
        {ReportInstanceNames, "Instances (0):"},
        {ReportBones, "Bones (0):"},
        {ReportBoneNames, "Bones (0):"},
        {ReportTextureFilenames, "Texture Filenames:"},
    };
    for (const auto& [report, head] : cases) {
        EXPECT_THAT(Lines(report), ElementsAre("", head));
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
    Meshes.Add().Name = "R\xFC"
                        "ssel";
    EXPECT_THAT(Lines(ReportMeshes),
                ElementsAre("", "Meshes (2):", "body:", " Vertices:            120", " Texture coordinates: 98",
                            " Vertex normals:      121", " Faces/polygons:      200", " Materials:           2", "",
                            "Rüssel:", " Vertices:            0", " Texture coordinates: 0", " Vertex normals:      0",
                            " Faces/polygons:      0", " Materials:           0", ""));
    EXPECT_THAT(Lines(ReportMeshNames), ElementsAre("", "Meshes (2):", "body", "Rüssel"));
}

TEST_F(Reports, MaterialsWithTheFilesThatTheyHave)
{
    Materials.Add({"fur", "maps\\fur.bmp", "hole.bmp", "bump.bmp", 0});
    Materials.Add({"bare", "", "", "", 0});
    Materials.Add({"eye", "maps\\fur.bmp", "", "", 0});
    EXPECT_THAT(Lines(ReportMaterials),
                ElementsAre("", "Materials (3):", "fur:", "  Color map: maps\\fur.bmp", "  Alpha map: hole.bmp",
                            "  bumpmap:  bump.bmp", "", "bare:", "", "eye:", "  Color map: maps\\fur.bmp", ""));
    EXPECT_THAT(Lines(ReportMaterialNames), ElementsAre("", "Materials (3):", "fur", "bare", "eye"));
    EXPECT_THAT(Lines(ReportTextureFilenames),
                ElementsAre("", "Texture Filenames:", "maps\\fur.bmp", "hole.bmp", "bump.bmp", "maps\\fur.bmp"));
}

TEST_F(Reports, InstancesAndBonesWithTheirPlaces)
{
    scripted::DecimalMark = ",";
    Instances.Add({"inst", "body", {1, 3, -2}, {0.5F, 0, -0.25F}, 1.1F});
    EXPECT_THAT(Lines(ReportInstances), ElementsAre("", "Instances (1):", "inst:", " Position: 1,3,-2",
                                                    " Rotation: 0,5,0,-0,25", " Scale:    1,1", ""));
    EXPECT_THAT(Lines(ReportInstanceNames), ElementsAre("", "Instances (1):", "inst"));

    MvmBone& bone = Bones.Add();
    bone.Name = "Spine01";
    bone.Alias = "Back";
    bone.Position = {1.0F / 3, 1e-7F, 7};
    EXPECT_THAT(Lines(ReportBones), ElementsAre("", "Bones (1):", "Spine01:", " Position: 0,3333333,1E-07,7",
                                                " Rotation: 0,0,0", " Ratio:    0", ""));
    EXPECT_THAT(Lines(ReportBoneNames), ElementsAre("", "Bones (1):", "Spine01"));
}
