#include "model/modNumbers.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"

struct Aliases : FreshFolder {
    /// Loads from a folder with this one file.
    void LoadOne(const std::string& name, const std::string& bytes) const
    {
        FreeAliases();
        scripted::Folder = Folder.Path;
        std::filesystem::remove_all(Folder / "alias");
        std::filesystem::create_directory(Folder / "alias");
        PutFile(Folder / "alias/" + name, bytes);
        LoadAlias();
    }
    /// The labels and links of all bones.
    static std::string LabelsAndLinks()
    {
        std::string all;
        for (const MvmBone& bone : Bones) {
            all += bone.Alias + ":" + std::to_string(bone.LinkBone) + ":" + std::to_string(bone.MirrorBone) + " ";
        }
        return all;
    }
};

TEST_F(Aliases, AreLinesOfFiveFields)
{
    LoadOne("other.txt", "no alias file");
    EXPECT_EQ(AliasFileCount(), 0);
    LoadOne("Hide\u00E9.ALIAS", "a; Label ;b;c;2.5x\r\n\r\n;;;;\rfour;;;\nsix;;;;;\r\n1;2;3;4;5");
    ASSERT_EQ(AliasFileCount(), 1);
    EXPECT_EQ(AliasFiles[1].Name, "Hide\xE9");
    std::string entries;
    for (const BoneAliasEntry& entry : AliasFiles[1].Entries) {
        entries += entry.Bone + "," + entry.Alias + "," + entry.Link + "," + entry.Mirror + "," +
                   FloatToText(entry.Number) + "\n";
    }
    EXPECT_EQ(entries, "a, Label ,b,c,2.5\n,,,,0\n1,2,3,4,5\n");
    const std::string start = "Invalid line in alias \"" + AliasFiles[1].Path + "\" on line ";
    EXPECT_TRUE(scripted::LogShown == 1 && Told() == "Log: " + start + "4.\nLog: " + start + "5.\n");
    std::string many;
    for (int i = 0; i < 32769; ++i) {
        many += ";;;;\n";
    }
    LoadOne("b.alias", many);
    EXPECT_EQ(AliasFiles[1].EntryCount(), 32767);
    const std::string path = "\"" + AliasFiles[1].Path + "\"";
    EXPECT_EQ(Told(), "Log: Too many lines in alias " + path + " on line 32768, the rest is left out.\n");
    LoadOne("b.alias", "a;b;c;d;1E39\n");
    scripted::Folder = "U\u0178\u0160\u0416";
    LoadAlias();
    EXPECT_EQ(Told(), "Stop: Runtime error in LoadAlias\nA number is too large in " + path + " on line 1.\n" +
                          "Warning: Folder \"u\u00FF\u0161\u0416\\alias\" does not exist.\nCannot find alias files.\n");
}

TEST_F(Aliases, ApplyToAllBonesOfANameAndLinkToTheLastOne)
{
    AddBones({"a", "b", "a", "c", ""});
    Bones[4].LinkBone = 2;
    BoneAliasFile& file = AliasFiles.Add();
    file.Entries.Items = {{"a", "One", "b", "a"}, {"b", "B", "a", "c"}, {"A", "X", "a", "a"}, {"c", "C", "", "x"}};
    file.Entries.Add({"a", "Two", "x", ""});
    ApplyAlias(1);
    EXPECT_EQ(LabelsAndLinks(), "Two:2:3 B:3:4 Two:2:3 C:2:0 :0:0 ");
    ClearBoneAliases();
    EXPECT_EQ(LabelsAndLinks(), ":0:0 :0:0 :0:0 :0:0 :0:0 ");
}

TEST_F(Aliases, FilesServeMeshesOfExactlyTheirName)
{
    AddBones({"Hide", "Shade"});
    for (const char* name : {"Hide", "Shade", "hide"}) {
        Meshes.Add().Name = name;
        AliasFiles.Add({"", name, {}}).Entries.Add({name[0] == 'h' ? "Hide" : name, name, "Hide", "Shade"});
    }
    AliasesOn = false;
    ApplyAliases();
    EXPECT_EQ(LabelsAndLinks(), ":0:0 :0:0 ");
    SkinMesh = 1;
    ApplyAliases();
    EXPECT_EQ(LabelsAndLinks(), "Hide:1:2 :0:0 ");
    ShadowMesh = 2;
    ApplyAliases();
    EXPECT_EQ(LabelsAndLinks(), "Hide:1:2 Shade:1:2 ");
}
