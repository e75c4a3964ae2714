#include "model/modRescue.h"

#include <filesystem>

#include "app/modUndo.h"
#include "support/fresh.h"
#include "weights/modEdit.h"

using Rescue = FreshFolder;

TEST_F(Rescue, KeepsWhatWouldBeLostAndNothingElse)
{
    AddSkin("skin", {{1, 2, 3}}, {0});
    ModelOpen = true;
    CurrentFile = Folder / "a.mvm";
    MarkSceneSaved();
    std::string path = "x";
    const auto rescue = [&] {
        EXPECT_TRUE(RescueModel(&path, &Error)) << Error;
        return path;
    };
    EXPECT_EQ(rescue(), "") << "nothing was changed";
    RunStep("Assign", [] { ReplaceBone(1, 0, 1); });
    EXPECT_EQ(rescue(), Folder / "a.mvm.rescued");
    EXPECT_EQ(Content(path), ModelText());
    const std::string whole = ModelText();
    BeginStep();
    UnassignAll(1); // a command in its middle
    rescue();
    EXPECT_EQ(Content(path), whole);
    EXPECT_THAT(Folder.Names(), testing::ElementsAre("a.mvm.rescued"));

    CurrentFile = Folder / "gone/b.mvm";
    EXPECT_EQ(rescue(), (std::filesystem::temp_directory_path() / "b.mvm.rescued").string());
    EXPECT_EQ(Content(path), whole);
    std::filesystem::remove(path);
    CurrentFile.clear();
    EXPECT_EQ(rescue(), (std::filesystem::temp_directory_path() / "unnamed.mvm.rescued").string());
    std::filesystem::remove(path);
    ModelOpen = false;
    EXPECT_EQ(rescue(), "");
}
