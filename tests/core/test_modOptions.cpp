#include <utility>

#include <gtest/gtest.h>

#include "dialogs/modOptions.h"

TEST(Options, AThresholdIsAPositiveLeadingNumber)
{
    const std::pair<const char*, float> cases[] = {
        {"0.5", 0.5F},  {"1,5", 1.0F},  {"2 units", 2.0F}, {"", 0.01F},      {"abc", 0.01F},
        {"0", 0.01F},   {"-3", 0.01F},  {"1E30", 1e30F},   {"1E300", 0.01F}, {"1E999", 0.01F},
        {".25", 0.25F}, {"inf", 0.01F}, {"nan", 0.01F},    {"0x10", 0.01F},
    };
    for (const auto& [answer, threshold] : cases) {
        EXPECT_EQ(ThresholdFromAnswer(answer), threshold) << answer;
    }
}

TEST(Options, APointSizeIsRoundedAndHeld)
{
    const std::pair<const char*, int32_t> cases[] = {
        {"", 5},    {"abc", 5}, {"0", 5},   {"0.4", 5}, {"-0.5", 5},   {"0.5", 5},    {"0.6", 1},    {"2.5", 2},
        {"3.5", 4}, {"10", 10}, {"99", 10}, {"-7", 1},  {"1E300", 10}, {"-1E300", 1}, {"1E9999", 5},
    };
    for (const auto& [answer, size] : cases) {
        EXPECT_EQ(PointSizeFromAnswer(answer, 5), size) << answer;
    }
}
