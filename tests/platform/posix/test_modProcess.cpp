#include <gmock/gmock.h>

#include "modProcess.h"
#include "support/temp_folder.h"

namespace {

ProgramEnd EndOf(const std::string& script, const ProgramLimits& limits)
{
    ProgramEnd end;
    std::string error;
    EXPECT_TRUE(RunLimited("/bin/sh", {"-c", script}, limits, &end, &error)) << error;
    return end;
}

} // namespace

TEST(RunLimited, GivesWhatAProgramTells)
{
    const ProgramLimits limits{.Memory = size_t{1} << 30, .Seconds = 7, .Output = 20, .Errors = 5};
    ProgramEnd end = EndOf("cat; printf 'a\\0b'; ulimit -v; ulimit -t; echo 12345678 >&2; exit 3", limits);
    EXPECT_EQ(end.Output, std::string("a\0b", 3) + "1048576\n7\n");
    EXPECT_EQ(end.Errors, "12345");
    EXPECT_EQ(end.Code, 3);
    EXPECT_FALSE(end.Stopped);
    EXPECT_EQ(EndOf("kill -SEGV $$", limits).Code, -1);
    end = EndOf("while :; do echo 0123456789; done", limits);
    EXPECT_TRUE(end.Stopped);
    EXPECT_EQ(end.Code, -1);
    std::string error;
    ASSERT_TRUE(RunLimited("/bin/there is none", {}, limits, &end, &error));
    EXPECT_EQ(end.Code, 127);
}

TEST(RunLimited, LetsAProgramWriteNoFile)
{
    const TempFolder folder;
    const std::string path = folder / "file";
    const ProgramEnd end = EndOf("echo text >'" + path + "' || echo refused", {.Output = 100, .Errors = 100});
    EXPECT_EQ(end.Output, "refused\n");
    EXPECT_THAT(Content(path), testing::AnyOf("", "(none)"));
}
