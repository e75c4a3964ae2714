#include <array>

#include "app/modMisc.h"
#include "model/modStrings.h"
#include "support/fresh.h"

using Texts = FreshFolder;

TEST_F(Texts, AreSplitComparedAndStripped)
{
    const std::array<std::string_view, 4> paths[] = {{"a.bmp", "", "a.bmp", "bmp"},
                                                     {"C:\\x\\a.b.mvm", "C:\\x\\", "a.b.mvm", "mvm"},
                                                     {"/x\\y/a", "/x\\y/", "a", "/x\\y/a"},
                                                     {"x/y\\end.", "x/y\\", "end.", ""}};
    for (const auto& [path, folder, name, extension] : paths) {
        EXPECT_EQ(DirectoryOf(path), folder);
        EXPECT_EQ(FileNameOf(path), name);
        EXPECT_EQ(ExtensionOf(path), extension);
    }
    EXPECT_EQ(TextBeforeNull({"ab\0cd", 5}), "ab");
    EXPECT_EQ(LowerCase("AZaz[@\xC4"), "azaz[@\xC4");
    EXPECT_TRUE(EqualsAnyCase("MeSh", "mesh") && !EqualsAnyCase("mesh2", "mesh") && !EqualsAnyCase("mes", "mesh"));
    EXPECT_EQ(StripWhitespace(" a\tb \n\"b \tc\" d \"e f"), "ab\n\"b \tc\"d\"e f");
}

TEST_F(Texts, NameFilesThatArePlainAndNotHidden)
{
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(Folder.Path);
    std::filesystem::create_directories("sub.mvm/.sub");
    for (const char* name : {"a.mvm", ".hidden.mvm", "sub.mvm/.sub/b.mvm"}) {
        PutFile(name, "");
        EXPECT_EQ(FileExists(name), name[0] != '.');
        EXPECT_EQ(FileExists(Folder / name), name[0] != '.');
    }
    for (const std::string& path : {std::string("none"), std::string("sub.mvm"), Folder.Path, std::string("/dev/null"),
                                    std::string(), std::string("a.mvm\0", 6)}) {
        EXPECT_FALSE(FileExists(path)) << path;
    }
    std::filesystem::current_path(previous);
}
