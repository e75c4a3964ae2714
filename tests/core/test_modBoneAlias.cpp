#include <random>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"

using testing::ElementsAre;

namespace {

class Aliases : public FreshFolder {
protected:
    void SetUp() override { scripted::Folder = Folder / "Program"; }
    void Write(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::create_directories(scripted::Folder + "/alias");
        PutFile(scripted::Folder + "/alias/" + name, bytes);
    }
};

TEST_F(Aliases, MissingFolderIsAWarning)
{
    LoadAlias();
    const std::string folder = LowerCase(scripted::Folder) + "\\alias";
    EXPECT_THAT(
        scripted::Messages,
        ElementsAre(IsBox(BoxIcon::Warning, "Folder \"" + folder + "\" does not exist.\nCannot find alias files.")));
}

TEST_F(Aliases, ReadsLinesOfFiveFields)
{
    Write("Hide\xC3\xA9.ALIAS", "a; Label ;b;c;2.5x\r\n\r\n;;;;\rfour;;;\nsix;;;;;\r\n1;2;3;4;5");
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
}

TEST_F(Aliases, HostileFilesStayHarmless)
{
    std::string many;
    for (int i = 0; i < 40000; ++i) {
        many += ";;;;\n";
    }
    Write("many.alias", many);
    LoadAlias();
    EXPECT_EQ(AliasFiles[1].EntryCount(), 32767);
    EXPECT_EQ(scripted::Log.size(), 1U);
    FreeAliases();
    EXPECT_EQ(AliasFileCount(), 0);
    Write("many.alias", "a;b;c;d;1E39\n");
    LoadAlias();
    const auto failure = IsBox(BoxIcon::Stop, testing::StartsWith("Runtime error in LoadAlias\n"));
    EXPECT_THAT(scripted::Messages, ElementsAre(failure));
}

/// The plain loops over entries and bones.
void ApplyPlainly(const BoneAliasFile& file, Array1<MvmBone>* bones)
{
    for (const BoneAliasEntry& entry : file.Entries) {
        for (MvmBone& bone : *bones) {
            if (bone.Name != entry.Bone) {
                continue;
            }
            bone.Alias = entry.Alias;
            for (int16_t k = 1; k <= static_cast<int16_t>(bones->Count()); ++k) {
                bone.LinkBone = !entry.Link.empty() && entry.Link == (*bones)[k].Name ? k : bone.LinkBone;
                bone.MirrorBone = !entry.Mirror.empty() && entry.Mirror == (*bones)[k].Name ? k : bone.MirrorBone;
            }
        }
    }
}

TEST_F(Aliases, ApplyingEqualsThePlainLoops)
{
    const std::vector<std::string> names = {"", "a", "b", "c", "d", "e", "A"};
    for (unsigned seed = 0; seed < 100; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const auto name = [&] { return names[random() % names.size()]; };
        for (unsigned b = 0; b < random() % 12; ++b) {
            MvmBone& bone = Bones.Add();
            bone.Name = name();
            bone.LinkBone = static_cast<int16_t>(random() % 3);
        }
        BoneAliasFile& file = AliasFiles.Add({"", "Hide", {}});
        for (unsigned e = 0; e < random() % 12; ++e) {
            file.Entries.Add({name(), name(), name(), name()});
        }
        Array1<MvmBone> expected = Bones;
        ApplyPlainly(file, &expected);
        ApplyAlias(1);
        for (int32_t b = 1; b <= BoneCount(); ++b) {
            ASSERT_EQ(Bones[b].Alias, expected[b].Alias) << "seed " << seed;
            ASSERT_EQ(Bones[b].LinkBone, expected[b].LinkBone) << "seed " << seed;
            ASSERT_EQ(Bones[b].MirrorBone, expected[b].MirrorBone) << "seed " << seed;
        }
    }
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
    EXPECT_EQ(Bones[1].Alias, "");
    SkinMesh = 1;
    ShadowMesh = 2;
    ActiveBone = 1;
    AliasesOn = false;
    ApplyAliases();
    EXPECT_EQ(Bones[1].Alias, "Label");
    EXPECT_EQ(Bones[2].LinkBone, 1);
    EXPECT_EQ(Bones[2].MirrorBone, 2);
    ClearBoneAliases();
    EXPECT_TRUE(Bones[2].Alias.empty() && Bones[2].LinkBone == 0 && Bones[2].MirrorBone == 0);
}

} // namespace
