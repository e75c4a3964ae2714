#include "app/modMisc.h"
#include "model/modNumbers.h"
#include "support/fresh.h"

using Misc = FreshFolder;

TEST_F(Misc, AFileExistsWhenItIsPlainAndNotHidden)
{
    PutFile(Folder / "a.mvm", "");
    PutFile(Folder / ".hidden.mvm", "");
    std::filesystem::create_directory(Folder / "sub.mvm");
    std::filesystem::create_directory(Folder / ".sub");
    PutFile(Folder / ".sub/b.mvm", "");
    std::filesystem::create_symlink("a.mvm", Folder / "link.mvm");
    std::filesystem::create_symlink("none", Folder / "broken.mvm");
    for (const std::string& path : {Folder / "a.mvm", Folder / "link.mvm", Folder / ".sub/b.mvm"}) {
        EXPECT_TRUE(FileExists(path)) << path;
    }
    for (const std::string& path :
         {Folder / "none.mvm", Folder / "broken.mvm", Folder / ".hidden.mvm", Folder / "sub.mvm", Folder.Path,
          Folder / "a.mvm/", std::string("/dev/null"), std::string(), Folder / "a.mvm" + std::string(1, '\0')}) {
        EXPECT_FALSE(FileExists(path)) << path;
    }
}

TEST_F(Misc, NumbersAreShownWithTheMarkOfTheLocale)
{
    EXPECT_EQ(FloatToLocaleText(-1.25F), "-1.25");
    scripted::DecimalMark = ",";
    EXPECT_EQ(FloatToLocaleText(-1.25F), "-1,25");
    EXPECT_EQ(FloatToLocaleText(1234567.9F), "1234568");
    EXPECT_EQ(FloatToLocaleText(1.5e-7F), "1,5E-07");
    scripted::DecimalMark = "\u066B";
    EXPECT_EQ(FloatToLocaleText(0.5F), "0\u066B5");
}
