#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

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
    const struct {
        std::string_view Text;
        double Number;
    } cases[] = {
        {"07", 7},
        {"e9", 0},
        {"-5", -5},
        {"12abc", 12},
        {"1E3", 1000},
        {"1,5", 1},
        {"", 0},
        {".", 0},
        {"-", 0},
        {"+", 0},
        {"-.", 0},
        {".5", 0.5},
        {"5.", 5},
        {"-.25", -0.25},
        {"+3", 3},
        {"+-3", 0},
        {"--3", 0},
        {"1.5.7", 1.5},
        {"1d2", 100},
        {"1D+2", 100},
        {"25e-1", 2.5},
        {"1E", 1},
        {"1E+", 1},
        {"1E+x", 1},
        {".e5", 0},
        {"x1", 0},
        {"inf", 0},
        {"nan", 0},
        {"0x10", 0},
        {"1e5e5", 1e5},
        {"1 2", 12},
        {" \t\n1\n2 . 5", 12.5},
        {"- 1", -1},
        {"1 E - 1", 0.1},
        {"1\r2", 1},
        {"1e1.5", 10},
        {"\"1\"", 0},
        {"(1", 0},
        {"1)", 1},
        {"0.1", 0.1},
        {"1\xA0", 1},
        {"0E999999999", 0},
        {"1E-400", 0},
        {"4.9E-324", 4.9e-324},
        {"1E-99999999999999999999", 0},
        {"1.7976931348623157E308", 1.7976931348623157e308},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"9007199254740993", 9007199254740992.0},
        {"9007199254740993.0000000000000000000000000001", 9007199254740994.0},
        {std::string_view("1\0002", 3), 1},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(Leading(row.Text), row.Number) << '"' << row.Text << '"';
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

TEST(DigitsValue, AndThePlacesOfDigitsHoldForAnyBytes)
{
    std::mt19937 random(7);
    for (int round = 0; round < 10'000; ++round) {
        std::string text(80, '0');
        for (char& c : text) {
            c = static_cast<char>(random() % 2 == 0 ? random() % 256 : '0' + random() % 10);
        }
        for (unsigned place = 0; place < 64; ++place) {
            const bool isDigit = text[place] >= '0' && text[place] <= '9';
            ASSERT_EQ(OthersOf64(text.data()) >> place & 1, isDigit ? 0U : 1U) << place;
            ASSERT_EQ(OthersOfEight(text.data() + place) & 1, isDigit ? 0U : 1U) << place;
        }
        const std::string digits = std::to_string(random() % 100'000'000);
        ASSERT_EQ(DigitsValue((digits + text).data(), static_cast<unsigned>(digits.size())), std::stoul(digits));
    }
}

TEST(PlainNumber, LeavesEveryOtherShapeToTheGeneralRule)
{
    for (const std::string_view text : {"", "-", ".", "1E5", "1 2", "+1", "1x", "1\n", "1..2", "1234567890123456789"}) {
        const char* at = text.data();
        double number = 42;
        EXPECT_FALSE(PlainNumber(&at, text.data() + text.size(), &number)) << text;
        EXPECT_EQ(at, text.data());
        EXPECT_EQ(number, 42);
    }
}

TEST(RoundToInt16, TakesTiesToEvenAndRefusesTheRest)
{
    const struct {
        double Number;
        int Rounded;
    } good[] = {{2.5, 2},          {3.5, 4},           {-2.5, -2},          {-3.5, -4}, {0.5, 0},
                {32767.49, 32767}, {-32768.5, -32768}, {-32768.49, -32768}, {1e-300, 0}};
    for (const auto& row : good) {
        int16_t rounded = 99;
        EXPECT_TRUE(RoundToInt16(row.Number, &rounded)) << row.Number;
        EXPECT_EQ(rounded, row.Rounded) << row.Number;
    }
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double number :
         {32767.5, 32768.0, -32768.51, -32769.0, 1e300, -1e300, infinite, -infinite, std::nan("")}) {
        int16_t rounded = 99;
        EXPECT_FALSE(RoundToInt16(number, &rounded)) << number;
        EXPECT_EQ(rounded, 99);
    }
}

TEST(RoundToInt32, HoldsItsRange)
{
    int32_t rounded = 99;
    EXPECT_FALSE(RoundToInt32(2147483647.5, &rounded));
    EXPECT_FALSE(RoundToInt32(-2147483649.0, &rounded));
    EXPECT_FALSE(RoundToInt32(1e300, &rounded));
    EXPECT_FALSE(RoundToInt32(std::nan(""), &rounded));
    EXPECT_EQ(rounded, 99);
    EXPECT_TRUE(RoundToInt32(2147483647.49, &rounded));
    EXPECT_EQ(rounded, 2147483647);
    EXPECT_TRUE(RoundToInt32(-2147483648.5, &rounded));
    EXPECT_EQ(rounded, std::numeric_limits<int32_t>::min());
}

TEST(ToFloat, RefusesWhatWouldBecomeInfinite)
{
    constexpr float largest = std::numeric_limits<float>::max();
    float value = 42;
    EXPECT_FALSE(ToFloat(1e39, &value));
    EXPECT_FALSE(ToFloat(-1e39, &value));
    EXPECT_FALSE(ToFloat(0x1.ffffffp127, &value)); // halfway to the next power, a tie to even
    EXPECT_EQ(value, 42);
    EXPECT_TRUE(ToFloat(std::nextafter(0x1.ffffffp127, 0), &value));
    EXPECT_EQ(value, largest);
    EXPECT_TRUE(ToFloat(-static_cast<double>(largest), &value));
    EXPECT_EQ(value, -largest);
    EXPECT_TRUE(ToFloat(1e-60, &value));
    EXPECT_EQ(value, 0);
}

TEST(FloatToText, WritesSevenDigits)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const struct {
        float Value;
        const char* Text;
    } cases[] = {{0.5F, "0.5"},
                 {3, "3"},
                 {-1.25F, "-1.25"},
                 {1234567.9F, "1234568"},
                 {1.5e-7F, "1.5E-07"},
                 {-1.5e-7F, "-1.5E-07"},
                 {0, "0"},
                 {-0.0F, "0"},
                 {0.0001F, "0.0001"},
                 {0.00001F, "1E-05"},
                 {9999999, "9999999"},
                 {1e7F, "1E+07"},
                 {12345678, "1.234568E+07"},
                 {1200, "1200"},
                 {100.25F, "100.25"},
                 {1.0F / 3, "0.3333333"},
                 {1e-45F, "1.401298E-45"},
                 {3.4028235e38F, "3.402823E+38"},
                 {infinite, "3.402823E+38"},
                 {-infinite, "-3.402823E+38"},
                 {std::nanf(""), "0"}};
    for (const auto& row : cases) {
        EXPECT_EQ(FloatToText(row.Value), row.Text);
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
            value = static_cast<float>(whole / powersOfTen[random() % 12]);
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

TEST(Int16ToChars, WritesEveryNumber)
{
    for (int number = -32768; number <= 32767; ++number) {
        std::array<char, 8> text{};
        char* const end = Int16ToChars(static_cast<int16_t>(number), text.data());
        ASSERT_EQ(std::string(text.data(), end), std::to_string(number));
    }
}
