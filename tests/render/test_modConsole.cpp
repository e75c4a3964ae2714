#include "modCamera.h"
#include "modConsole.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"

using testing::ElementsAre;

using Console = Fresh;

TEST_F(Console, AnswersEachLineInTheLog)
{
    const auto lines = [](const std::string& input) { return LogOf([&] { RunCommand(input); }); };
    CurrentCamera = 3;
    Cameras[3].Rotation = {-90, 22.5F, 0};
    Cameras[3].Position = {1.5F, -0.25F, 1234567.9F};
    for (const char* input : {"cam", "CAM", "Cam  further words"}) {
        EXPECT_THAT(lines(input), ElementsAre(input, "   -90", "   22.5", "   0", "   1.5", "   -0.25", "   1234568"));
    }
    scripted::DecimalMark = ",";
    EXPECT_EQ(lines("cam")[2], "   22,5");

    EXPECT_THAT(lines("alias"), ElementsAre("alias_num 0"));
    AliasFiles.Add({"/p/bär.alias", "b\xE4r", {}}).Entries.Add().Bone = "R\xFC";
    AliasFiles.Add({"/p/c.alias", "c", {}});
    const std::string dashes(32, '-');
    EXPECT_THAT(lines("alias"),
                ElementsAre("alias_num 2", dashes, "/p/bär.alias", "bär", " Rü", dashes, "/p/c.alias", "c"));

    EXPECT_THAT(lines("nosleep"), ElementsAre("Dedicated mode."));
    EXPECT_TRUE(NoSleep);
    for (const char* input : {"help", " cam", " ", "cam\t", "camera", "nosleep;", "aliа"}) {
        EXPECT_THAT(lines(input), ElementsAre("Bad or unknown command...")) << input;
    }
    EXPECT_THAT(lines("NoSleep now"), ElementsAre("Efficiency mode."));
    EXPECT_FALSE(NoSleep);
}
