#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include "app/modMisc.h"
#include "dialogs/modOptions.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "support/fresh.h"

using Texts = FreshFolder;
constexpr float infinite = std::numeric_limits<float>::infinity();

/// Infinite for a text that is refused.
static double Leading(std::string_view text)
{
    double number = 42;
    return LeadingNumber(text, &number) ? number : number + infinite;
}

TEST_F(Texts, OfNumbersAreReadAtTheStartOfATextWithoutItsBlanks)
{
    const std::pair<double, std::vector<std::string_view>> cases[] = {
        {0, {"", ".", "-", "-.", "+-3", "--3", "e9", "x1", "inf", "0x10", "\"1\"", "0E999999999", "1E-400"}},
        {1, {"1,5", "1E", "1E+x", "1\r2", "1\xA0", {"1\0002", 3}, "+1", "01", "1.", "1.0.7", "10 E - 1", "1e0.5"}},
        {-12.5, {"-12.5x", " \t\n-1\n2 . 5", "-125e-1", "-.125d2", "-1.25D+1", "-12.5e0e5", "-0.00125e4"}},
        {1.7976931348623157e308, {"1.7976931348623157E308"}},
        {infinite, {"1E309", "-1E309", "1E99999999999999999999", "1 e 4 0 0"}}};
    for (const auto& [number, texts] : cases) {
        for (const std::string_view text : texts) {
            EXPECT_EQ(Leading(text), number) << '"' << text << '"';
        }
    }
    EXPECT_TRUE(std::signbit(Leading("-0")) && !std::signbit(Leading("-")));
    const std::string zeros(100'000, '0');
    EXPECT_EQ(Leading("1" + zeros), infinite);
    EXPECT_EQ(Leading("0." + zeros + "1E100001"), 1);
    EXPECT_EQ(Leading("1" + zeros + "E-100000"), 1);
    // Exactly between two doubles, then the same with one digit far behind.
    EXPECT_EQ(Leading("1.00000000000000011102230246251565404236316680908203125" + zeros), 1);
    EXPECT_EQ(Leading("1.00000000000000011102230246251565404236316680908203125" + zeros + "1"), 1.0000000000000002);
}

TEST_F(Texts, OfNumbersAreHeldToTheirRange)
{
    int32_t whole = 0;
    EXPECT_TRUE(RoundToInt32(-2147483648.5, &whole) && whole == INT32_MIN && !RoundToInt32(2147483647.5, &whole));
    const double halfway = 0x1.ffffffp127; // to the next power of two, a tie to even
    float value = 42;
    EXPECT_TRUE(!ToFloat(-halfway, &value) && value == 42);
    EXPECT_TRUE(ToFloat(std::nextafter(-halfway, 0), &value) && value == -std::numeric_limits<float>::max());
    for (const char* answer : {"", "abc", "0", "-3", "1E300", "1E999"}) {
        EXPECT_EQ(ThresholdFromAnswer(answer), 0.01F) << answer;
    }
    EXPECT_EQ(ThresholdFromAnswer(".5 units"), 0.5F);
    const std::pair<const char*, int> sizes[] = {{"", 5},   {"0.5", 5},   {"1E999", 5}, {"0.6", 1},
                                                 {"-7", 1}, {"-1E30", 1}, {"10", 10},   {"1E30", 10}};
    for (const auto& [answer, size] : sizes) {
        EXPECT_EQ(PointSizeFromAnswer(answer, 5), size) << answer;
    }
}

TEST_F(Texts, OfNumbersAreWrittenWithSevenDigits)
{
    const std::pair<float, const char*> cases[] = {
        {0, "0"},       {-1.25F, "-1.25"},   {9999999, "9999999"},    {1e-45F, "1.401298E-45"},
        {-0.0F, "0"},   {0.0001F, "0.0001"}, {std::nanf(""), "0"},    {12345678, "1.234568E+07"},
        {0.5F, "0.5"},  {0.00001F, "1E-05"}, {-1.5e-7F, "-1.5E-07"},  {infinite, "3.402823E+38"},
        {1200, "1200"}, {100.25F, "100.25"}, {1234567.9F, "1234568"}, {-infinite, "-3.402823E+38"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(FloatToText(value), text);
    }
    // The short way for usual sizes against the library's rules, most of all at halves of the last digit.
    std::mt19937 random(7);
    for (int round = 0; round < 100'000; ++round) {
        const auto halves = static_cast<double>(random() % 200'000'000);
        const auto value = static_cast<float>(halves / 2 / std::pow(10, random() % 13));
        std::array<char, 32> text{};
        *std::to_chars(text.data(), text.data() + 31, value, std::chars_format::general, 7).ptr = '\0';
        std::replace(text.begin(), text.end(), 'e', 'E');
        ASSERT_EQ(FloatToText(value), text.data());
    }
}

TEST_F(Texts, AreSplitComparedAndStripped)
{
    const std::array<std::string_view, 4> paths[] = {{"C:\\x\\a.b.mvm", "C:\\x\\", "a.b.mvm", "mvm"},
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
