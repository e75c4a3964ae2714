#include "interaction/modConsole.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/modStatus.h"
#include "interaction/modCamera.h"
#include "support/scripted.h"
#include "weights/modBoneAlias.h"

using testing::ElementsAre;

namespace {

class Console : public testing::Test {
protected:
    void SetUp() override { scripted::Reset(); }

    /// The lines that one command prints. The log must have been shown once.
    static std::vector<std::string> Lines(const std::string& input)
    {
        scripted::Log.clear();
        scripted::LogShown = 0;
        RunCommand(input);
        EXPECT_EQ(scripted::LogShown, 1) << input;
        EXPECT_FALSE(LogDirty) << input;
        return scripted::Log;
    }
};

} // namespace

TEST_F(Console, PrintsTheCurrentCameraUnderTheInputAsTyped)
{
    CurrentCamera = 3;
    Cameras[3].Rotation = {-90, 22.5F, 0};
    Cameras[3].Position = {1.5F, -0.25F, 1234567.9F};
    for (const char* input : {"cam", "CAM", "Cam  further words"}) {
        EXPECT_THAT(Lines(input), ElementsAre(input, "   -90", "   22.5", "   0", "   1.5", "   -0.25", "   1234568"));
    }
    scripted::DecimalMark = ",";
    EXPECT_EQ(Lines("cam")[2], "   22,5");
    CurrentCamera = 0;
}

TEST_F(Console, TogglesSleep)
{
    EXPECT_THAT(Lines("nosleep"), ElementsAre("Dedicated mode."));
    EXPECT_TRUE(NoSleep);
    EXPECT_THAT(Lines("NoSleep now"), ElementsAre("Efficiency mode."));
    EXPECT_FALSE(NoSleep);
}

TEST_F(Console, ListsTheAliasFiles)
{
    EXPECT_THAT(Lines("alias"), ElementsAre("alias_num 0"));
    AliasFiles.Add({"/p/alias/b\xC3\xA4r.alias", "b\xE4r", {}}).Entries.Add().Bone = "Spine01";
    AliasFiles[1].Entries.Add().Bone = "Sch\xE4"
                                       "del02";
    AliasFiles.Add({"/p/alias/c.alias", "c", {}});
    const std::string dashes = "--------------------------------";
    EXPECT_THAT(Lines("alias"), ElementsAre("alias_num 2", dashes, "/p/alias/bär.alias", "bär", " Spine01",
                                            " Schädel02", dashes, "/p/alias/c.alias", "c"));
}

TEST_F(Console, AnswersEverythingElse)
{
    for (const char* input : {"help", " cam", " ", "cam\t", "camera", "nosleep;", "aliа"}) {
        EXPECT_THAT(Lines(input), ElementsAre("Bad or unknown command...")) << input;
    }
    EXPECT_FALSE(NoSleep);
}
