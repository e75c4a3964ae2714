#include <map>
#include <sstream>

#include "support/fresh.h"
#include "weights/modAliasMaker.h"
#include "weights/modBoneAlias.h"

using AliasMaker = ModelFile;

namespace {

using Fields = std::vector<std::string>;

/// The lines of an alias file by their first field, each of which must be there once.
std::map<std::string, Fields> Lines(const std::string& text)
{
    std::map<std::string, Fields> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        EXPECT_TRUE(line.ends_with('\r')) << line;
        line.pop_back();
        Fields fields;
        std::istringstream rest(line);
        for (std::string field; std::getline(rest, field, ';');) {
            fields.push_back(field);
        }
        EXPECT_EQ(fields.size(), 5U) << line;
        EXPECT_TRUE(lines.emplace(fields.front(), fields).second) << line;
    }
    return lines;
}

/// Makes a mesh and bones on a row along Y and gives their labels.
Fields Labels(const std::vector<std::string>& names)
{
    scripted::Reset();
    for (const std::string& name : names) {
        Bones.Add({.Name = name, .Position = {0, static_cast<float>(BoneCount()), 0}});
    }
    Meshes.Add();
    auto lines = Lines(MakeAliasText(1));
    Fields labels;
    for (const std::string& name : names) {
        labels.push_back(lines.contains(name) ? lines[name][1] : "-");
    }
    return labels;
}

} // namespace

TEST_F(AliasMaker, TheSampleGetsTheLinksAndPartnersOfItsFiles)
{
    const std::string root = SOURCE_FOLDER;
    ASSERT_TRUE(LoadMVM(root + "/samples/vorrel/vorrel.mvm"));
    // Their maker named these otherwise.
    const std::map<std::string, std::string> others = {{"Spine02", "Spine 1"},         {"Spine03", "Spine 2"},
                                                       {"Neck05", "Neck 1"},           {"Neck06", "Neck 2"},
                                                       {"ScapulaL20", "Left Scapula"}, {"ScapulaR25", "Right Scapula"}};
    for (const int16_t mesh : {SkinMesh, ShadowMesh}) {
        auto expected = Lines(Content(root + "/assets/alias/" + Meshes[mesh].Name + ".alias"));
        for (const auto& [name, label] : others) {
            if (expected.contains(name)) {
                expected[name][1] = label;
            }
        }
        EXPECT_EQ(Lines(MakeAliasText(mesh)), expected);
    }
}

TEST_F(AliasMaker, LabelsAreReadable)
{
    const std::vector<std::pair<std::vector<std::string>, Fields>> cases = {
        {{"UpperArmL21", "L_Thigh_03", "leftarm04", "PawHR05", "LHipJoint06"},
         {"Left Upper Arm", "Left Thigh", "Left Arm", "Right Hind Paw", "Left Hip Joint"}},
        {{"Bip01", "Bip01 Spine02", "Bip01 R Foot07", "Bip01 L Finger1208"},
         {"Bip", "Spine", "Right Foot", "Left Finger 12"}},
        {{"rig_spine_a01", "rig_WING02", "rig_IK03"}, {"Spine A", "Wing", "IK"}},
        {{"Tail05", "Tail03", "Tail 204", "Tail09"}, {"Tail 1", "Tail 3", "Tail 2", "Tail 4"}},
        {{"01", "L02", "x;y03", "a\rb04", ""}, {"1", "Left", "-", "-", "-"}},
    };
    for (const auto& [names, labels] : cases) {
        EXPECT_EQ(Labels(names), labels);
    }
}

TEST_F(AliasMaker, WhatTheBonesHaveStays)
{
    Labels({"Eye01", "Eye02", "Hand103"});
    Bones[1].Position = {-1, 0, 0};
    Bones[2].Position = {1, 0, 0};
    EXPECT_EQ(MakeAliasText(1), "Eye01;Left Eye;Hand103;Eye02;01\r\nEye02;Right Eye;Hand103;Eye01;02\r\n"
                                "Hand103;Hand 1;;Hand103;03\r\n");
    Bones.Add({.Name = "PawL04", .Position = {3, 0, 0}});
    EXPECT_THAT(MakeAliasText(1), testing::StartsWith("Eye01;Right Eye;Hand103;Eye02;01\r\nEye02;Left Eye;"));
    Bones.Items.pop_back();
    Bones[3] = {.Name = "Hand103", .Alias = "Palm", .LinkBone = 2, .MirrorBone = 1};
    EXPECT_EQ(MakeAliasText(1), "Eye01;Left Eye;;;01\r\nEye02;Right Eye;;;02\r\nHand103;Palm;Eye02;Eye01;03\r\n");
    EXPECT_EQ(MakeAliasText(0), "");
}
