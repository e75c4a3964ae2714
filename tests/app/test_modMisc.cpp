#include "app/modMisc.h"

#include <gtest/gtest.h>

#include "support/scripted.h"
#include "support/temp_folder.h"

TEST(Misc, AFileExistsWhenItIsPlainAndNotHidden)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", "");
    PutFile(folder / ".hidden.mvm", "");
    std::filesystem::create_directory(folder / "sub.mvm");
    std::filesystem::create_directory(folder / ".sub");
    PutFile(folder / ".sub/b.mvm", "");
    std::filesystem::create_symlink("a.mvm", folder / "link.mvm");
    std::filesystem::create_symlink("none", folder / "broken.mvm");
    struct Case {
        std::string Path;
        bool Exists;
    };
    const Case cases[] = {
        {folder / "a.mvm", true},
        {folder / "link.mvm", true},
        {folder / ".sub/b.mvm", true},
        {folder / "none.mvm", false},
        {folder / "broken.mvm", false},
        {folder / ".hidden.mvm", false},
        {folder / "sub.mvm", false},
        {folder.Path, false},
        {folder / "a.mvm/", false},
        {"/dev/null", false},
        {"", false},
        {folder / "a.mvm" + std::string(1, '\0'), false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FileExists(c.Path), c.Exists) << c.Path;
    }
}

TEST(Misc, NumbersAreShownWithTheMarkOfTheLocale)
{
    scripted::Reset();
    EXPECT_EQ(FloatToLocaleText(-1.25F), "-1.25");
    scripted::DecimalMark = ",";
    EXPECT_EQ(FloatToLocaleText(-1.25F), "-1,25");
    EXPECT_EQ(FloatToLocaleText(1234567.9F), "1234568");
    EXPECT_EQ(FloatToLocaleText(1.5e-7F), "1,5E-07");
    scripted::DecimalMark = "\u066B";
    EXPECT_EQ(FloatToLocaleText(0.5F), "0\u066B5");
}
