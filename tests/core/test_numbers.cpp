#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "model/modNumbers.h"
#include "model/modStrings.h"

namespace {

double Leading(std::string_view text)
{
    double number = std::nan("");
    EXPECT_TRUE(LeadingNumber(text, &number)) << text.substr(0, 80);
    return number;
}

/// The text of a size by the library's own rules.
std::string PlainFloatText(float value)
{
    std::array<char, 32> text{};
    std::string result(text.data(),
                       std::to_chars(text.data(), text.data() + 32, value, std::chars_format::general, 7).ptr);
    for (char& c : result) {
        c = c == 'e' ? 'E' : c;
    }
    return result;
}

} // namespace

TEST(LeadingNumber, ReadsWhatStandsAtTheStart)
{
    const std::pair<double, std::vector<std::string_view>> cases[] = {
        {0, {"", ".", "-", "+", "-.", "+-3", "--3", "e9", "x1", ".e5", "inf", "nan", "0x10", "\"1\"", "(1"}},
        {0, {"0E999999999", "1E-400", "1E-99999999999999999999"}},
        {1, {"1,5", "1E", "1E+", "1E+x", "1\r2", "1)", "1\xA0", std::string_view("1\0002", 3)}},
        {12, {"12abc", "1 2"}},
        {12.5, {" \t\n1\n2 . 5"}},
        {100, {"1d2", "1D+2"}},
        {0.1, {"1 E - 1", "0.1"}},
        {123456789012345678901234567890.0, {"123456789012345678901234567890"}},
        {9007199254740992.0, {"9007199254740993"}},
        {9007199254740994.0, {"9007199254740993.0000000000000000000000000001"}}};
    for (const auto& [number, texts] : cases) {
        for (const std::string_view text : texts) {
            EXPECT_EQ(Leading(text), number) << '"' << text << '"';
        }
    }
    const std::pair<double, const char*> singles[] = {
        {7, "07"}, {-5, "-5"},  {1000, "1E3"},  {2.5, "25e-1"}, {4.9e-324, "4.9E-324"},
        {3, "+3"}, {-1, "- 1"}, {10, "1e1.5"},  {1e5, "1e5e5"}, {1.7976931348623157e308, "1.7976931348623157E308"},
        {5, "5."}, {0.5, ".5"}, {1.5, "1.5.7"}, {-0.25, "-.25"}};
    for (const auto& [number, text] : singles) {
        EXPECT_EQ(Leading(text), number) << text;
    }
    EXPECT_TRUE(std::signbit(Leading("-0")));
    EXPECT_FALSE(std::signbit(Leading("-")));
}

TEST(LeadingNumber, FailsOnlyWhenTooLargeForADouble)
{
    for (const std::string_view text :
         {"1E309", "-1E309", "1.7976931348623159E308", "1E99999999999999999999999", "1 e 4 0 0", "1d309"}) {
        double number = 42;
        EXPECT_FALSE(LeadingNumber(text, &number)) << text;
        EXPECT_EQ(number, 42) << text;
    }
}

TEST(LeadingNumber, TakesDigitsWithoutEnd)
{
    constexpr size_t many = 1'000'000;
    const std::string zeros(many, '0');
    double number = 0;
    EXPECT_FALSE(LeadingNumber("1" + zeros, &number));
    EXPECT_EQ(Leading(zeros + "12"), 12);
    EXPECT_EQ(Leading("0." + zeros + "1"), 0);
    EXPECT_EQ(Leading("0." + zeros + "1E1000001"), 1);
    EXPECT_EQ(Leading("1" + zeros + "E-1000000"), 1);
    EXPECT_EQ(Leading("1" + std::string(many, ' ') + "2"), 12);
    // Exactly between two doubles, then the same with one digit far behind.
    EXPECT_EQ(Leading("1.00000000000000011102230246251565404236316680908203125" + zeros), 1);
    EXPECT_EQ(Leading("1.00000000000000011102230246251565404236316680908203125" + zeros + "1"), 1.0000000000000002);
}

TEST(LeadingNumber, IsCorrectlyRoundedForRandomText)
{
    std::mt19937_64 random(20261122);
    for (int round = 0; round < 50'000; ++round) {
        std::string text = round % 2 == 0 ? "-" : "";
        const auto digits = random() % 24 + 1;
        const auto point = random() % 26;
        for (uint64_t digit = 0; digit < digits; ++digit) {
            text += digit == point ? "." : "";
            text += static_cast<char>('0' + random() % 10);
        }
        if (round % 3 == 0) {
            text += "E" + std::to_string(static_cast<int>(random() % 640) - 340);
        }
        double expected = 0;
        const auto read = std::from_chars(text.data(), text.data() + text.size(), expected);
        double number = 0;
        if (read.ec == std::errc()) {
            ASSERT_TRUE(LeadingNumber(text, &number)) << text;
            ASSERT_EQ(number, expected) << text;
        } else if (LeadingNumber(text, &number)) {
            ASSERT_EQ(number, 0) << text;
        }
    }
}

TEST(Rounding, TakesTiesToEvenAndRefusesTheRest)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const struct {
        double Number;
        std::optional<int> Small, Large;
    } cases[] = {{2.5, 2, 2},    {1e-300, 0, 0},       {2147483647.5, {}, {}},  {32767.49, 32767, 32767},
                 {3.5, 4, 4},    {1e300, {}, {}},      {std::nan(""), {}, {}},  {-32768.5, -32768, -32768},
                 {0.5, 0, 0},    {-infinite, {}, {}},  {-32768.51, {}, -32769}, {-2147483648.5, {}, INT32_MIN},
                 {-2.5, -2, -2}, {32767.5, {}, 32768}, {-2147483649.0, {}, {}}, {2147483647.49, {}, 2147483647}};
    for (const auto& row : cases) {
        int16_t rounded = 99;
        EXPECT_EQ(RoundToInt16(row.Number, &rounded), row.Small.has_value()) << row.Number;
        EXPECT_EQ(rounded, row.Small.value_or(99)) << row.Number;
        int32_t wide = 99;
        EXPECT_EQ(RoundToInt32(row.Number, &wide), row.Large.has_value()) << row.Number;
        EXPECT_EQ(wide, row.Large.value_or(99)) << row.Number;
    }
}

TEST(ToFloat, RefusesWhatWouldBecomeInfinite)
{
    constexpr float largest = std::numeric_limits<float>::max();
    const double halfway = 0x1.ffffffp127; // to the next power, a tie to even
    const std::pair<double, std::optional<float>> cases[] = {{1e39, {}},  {halfway, {}},
                                                             {1e-60, 0},  {std::nextafter(halfway, 0), largest},
                                                             {-1e39, {}}, {-static_cast<double>(largest), -largest}};
    for (const auto& [number, expected] : cases) {
        float value = 42;
        EXPECT_EQ(ToFloat(number, &value), expected.has_value()) << number;
        EXPECT_EQ(value, expected.value_or(42)) << number;
    }
}

TEST(FloatToText, WritesSevenDigits)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const std::pair<float, const char*> cases[] = {
        {0, "0"},        {-1.25F, "-1.25"},    {9999999, "9999999"},    {1e-45F, "1.401298E-45"},
        {-0.0F, "0"},    {0.0001F, "0.0001"},  {std::nanf(""), "0"},    {12345678, "1.234568E+07"},
        {0.5F, "0.5"},   {0.00001F, "1E-05"},  {-1.5e-7F, "-1.5E-07"},  {infinite, "3.402823E+38"},
        {1200, "1200"},  {100.25F, "100.25"},  {1234567.9F, "1234568"}, {-infinite, "-3.402823E+38"},
        {1e7F, "1E+07"}, {1.5e-7F, "1.5E-07"}, {1.0F / 3, "0.3333333"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(FloatToText(value), text);
    }
}

TEST(FloatToText, IsTheRoundedDecimalOfAnyFloat)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 400'000; ++round) {
        // All bit patterns, then short decimals and halves of the last digit, where a wrong rounding would show.
        float value = std::bit_cast<float>(static_cast<uint32_t>(random()));
        if (round % 2 == 0) {
            const auto whole = static_cast<double>(random() % 100'000'000);
            value = static_cast<float>(whole / std::pow(10.0, static_cast<double>(random() % 12)));
        }
        if (std::isfinite(value) && value != 0) {
            ASSERT_EQ(FloatToText(value), PlainFloatText(value)) << std::bit_cast<uint32_t>(value);
        }
    }
    for (int exponent = -8; exponent < 9; ++exponent) {
        const auto power = static_cast<float>(std::pow(10.0, exponent));
        for (const float value : {std::nextafter(power, 0.0F), power, std::nextafter(power, 1e30F)}) {
            EXPECT_EQ(FloatToText(value), PlainFloatText(value));
        }
    }
}
