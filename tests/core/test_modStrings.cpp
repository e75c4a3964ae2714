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
    PutFile(Folder / "a", "");
    PutFile(Folder / ".a", "");
    EXPECT_TRUE(FileExists(Folder / "a") && !FileExists(Folder / ".a") && !FileExists(Folder / "b"));
    EXPECT_FALSE(FileExists("") || FileExists(Folder / ".") || FileExists("/dev/null") ||
                 FileExists((Folder / "a") + '\0'));
}
