#include "app/modFrontEnd.h"
#include "model/modNumbers.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"

using testing::ElementsAre;

namespace {

class Aliases : public FreshFolder {
protected:
    void SetUp() override { scripted::Folder = Folder / "Program\u00C4"; }
    void Write(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::create_directories(scripted::Folder + "/alias");
        PutFile(scripted::Folder + "/alias/" + name, bytes);
    }
};

/// The labels and links of all bones.
std::vector<std::string> LabelsAndLinks()
{
    std::vector<std::string> all;
    for (const MvmBone& bone : Bones) {
        all.push_back(bone.Alias + ":" + std::to_string(bone.LinkBone) + ":" + std::to_string(bone.MirrorBone));
    }
    return all;
}

} // namespace

TEST_F(Aliases, MissingFolderIsAWarning)
{
    LoadAlias();
    scripted::Folder = "Up\u00C4";
    LoadAlias();
    ASSERT_EQ(scripted::Messages.size(), 2U);
    EXPECT_THAT(scripted::Messages[1],
                IsBox(BoxIcon::Warning, "Folder \"up\u00E4\\alias\" does not exist.\nCannot find alias files."));
}

TEST_F(Aliases, ReadsLinesOfFiveFields)
{
    Write("Hide\u00E9.ALIAS", "a; Label ;b;c;2.5x\r\n\r\n;;;;\rfour;;;\nsix;;;;;\r\n1;2;3;4;5");
    Write("other.txt", "no alias file");
    LoadAlias();
    ASSERT_EQ(AliasFileCount(), 1);
    const BoneAliasFile& file = AliasFiles[1];
    EXPECT_EQ(file.Name, "Hide\xE9");
    std::string entries;
    for (const BoneAliasEntry& entry : file.Entries) {
        entries += entry.Bone + "|" + entry.Alias + "|" + entry.Link + "|" + entry.Mirror + "|" +
                   FloatToText(entry.Number) + "\n";
    }
    EXPECT_EQ(entries, "a| Label |b|c|2.5\n||||0\n1|2|3|4|5\n");
    const std::string start = "Invalid line in alias \"" + file.Path + "\" on line ";
    EXPECT_THAT(scripted::Log, ElementsAre(start + "4.", start + "5."));
    EXPECT_EQ(scripted::LogShown, 1);
    EXPECT_TRUE(scripted::Messages.empty());

    std::filesystem::remove(file.Path);
    std::string many;
    for (int i = 0; i < 32769; ++i) {
        many += ";;;;\n";
    }
    Write("b.alias", many);
    FreeAliases();
    scripted::Log.clear();
    LoadAlias();
    ASSERT_EQ(AliasFileCount(), 1);
    EXPECT_EQ(AliasFiles[1].EntryCount(), 32767);
    const std::string path = "\"" + AliasFiles[1].Path + "\"";
    EXPECT_THAT(scripted::Log,
                ElementsAre("Too many lines in alias " + path + " on line 32768, the rest is left out."));
    FreeAliases();
    Write("b.alias", "a;b;c;d;1E39\n");
    LoadAlias();
    const std::string failure = "Runtime error in LoadAlias\nA number is too large in " + path + " on line 1.";
    EXPECT_THAT(scripted::Messages, ElementsAre(IsBox(BoxIcon::Stop, failure)));
}

TEST_F(Aliases, ApplyToAllBonesOfANameAndLinkToTheLastOne)
{
    AddBones({"a", "b", "a", "c", ""});
    Bones[4].LinkBone = 2;
    AliasFiles.Add().Entries.Items = {{"a", "One", "b", "a"},
                                      {"b", "B", "a", "c"},
                                      {"A", "wrong", "a", "a"},
                                      {"c", "C", "", "none"},
                                      {"a", "Two", "none", ""}};
    ApplyAlias(1);
    EXPECT_THAT(LabelsAndLinks(), ElementsAre("Two:2:3", "B:3:4", "Two:2:3", "C:2:0", ":0:0"));
    ClearBoneAliases();
    EXPECT_THAT(LabelsAndLinks(), testing::Each(":0:0"));
}

TEST_F(Aliases, FilesServeMeshesOfExactlyTheirName)
{
    for (const char* name : {"Hide", "Shade"}) {
        Bones.Add().Name = name;
        Meshes.Add().Name = name;
        AliasFiles.Add({"", name, {}}).Entries.Add({name, "Label", "Hide", "Shade"});
    }
    AliasFiles.Add({"", "hide", {}}).Entries.Add({"Hide", "Wrong", "", ""});
    ApplyAliases();
    EXPECT_THAT(LabelsAndLinks(), ElementsAre(":0:0", ":0:0"));
    SkinMesh = 1;
    AliasesOn = false;
    ApplyAliases();
    EXPECT_THAT(LabelsAndLinks(), ElementsAre("Label:1:2", ":0:0"));
    ShadowMesh = 2;
    ApplyAliases();
    EXPECT_THAT(LabelsAndLinks(), ElementsAre("Label:1:2", "Label:1:2"));
}
