#include "render/modBitmap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/bmp.h"
#include "support/scripted.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ABitmap : public testing::Test {
protected:
    void SetUp() override { scripted::Reset(); }

    BitmapResult ReadColor(const std::string& bytes)
    {
        error.clear();
        return ReadColorMap(bytes, "c.bmp", &bitmap, &error);
    }
    BitmapResult MergeOpacity(const std::string& bytes)
    {
        error.clear();
        return MergeOpacityMap(bytes, "o.bmp", "c.bmp", &bitmap, &error);
    }
    /// 0xRRGGBBAA
    uint32_t Pixel(size_t i) const
    {
        uint32_t value = 0;
        for (size_t channel = 0; channel < 4; ++channel) {
            value = value << 8 | bitmap.Pixels.at(4 * i + channel);
        }
        return value;
    }

    Bitmap bitmap;
    std::string error;
};

std::string Chars(std::initializer_list<int> values)
{
    std::string text;
    for (const int value : values) {
        text += static_cast<char>(value);
    }
    return text;
}

const std::string plainColors = bmp::TrueColors(2, 2, std::string(12, '\x50'));

} // namespace

TEST_F(ABitmap, TurnsBlueGreenRedIntoRedGreenBlueInTheOrderOfTheFile)
{
    ASSERT_EQ(
        ReadColor(bmp::TrueColors(4, 2, Chars({1, 2, 3, 255, 0, 0}) + std::string(15, '\x10') + Chars({7, 8, 9}))),
        BitmapResult::Done);
    EXPECT_EQ(bitmap.Width, 4);
    EXPECT_EQ(bitmap.Height, 2);
    ASSERT_EQ(bitmap.Pixels.size(), 32U);
    EXPECT_EQ(Pixel(0), 0x030201FFU);
    EXPECT_EQ(Pixel(1), 0x0000FFFFU) << "pure blue stays blue in 24 bits";
    EXPECT_EQ(Pixel(7), 0x090807FFU);
    EXPECT_THAT(scripted::Log, IsEmpty());
}

TEST_F(ABitmap, LooksUpPaletteColors)
{
    const auto color = [](int i) { return i == 0 ? 0x0000FEU : 0x102030U + static_cast<uint32_t>(i); };
    ASSERT_EQ(ReadColor(bmp::EightBits(2, 2, 3, color, Chars({0, 1, 2, 1}))), BitmapResult::Done);
    EXPECT_EQ(Pixel(0), 0x0000FEFFU) << "only pure blue turns grey";
    EXPECT_EQ(Pixel(1), 0x102031FFU);
    EXPECT_EQ(Pixel(2), 0x102032FFU);
}

TEST_F(ABitmap, ShowsPureBlueAtTheStartOfAPaletteAsDarkGray)
{
    const auto allBlue = [](int) { return 0x0000FFU; };
    ASSERT_EQ(ReadColor(bmp::EightBits(2, 2, 2, allBlue, Chars({0, 1, 0, 0}))), BitmapResult::Done);
    EXPECT_EQ(Pixel(0), 0x3F3F3FFFU);
    EXPECT_EQ(Pixel(1), 0x0000FFFFU);
}

TEST_F(ABitmap, IgnoresTheSpareByteOfAPaletteEntry)
{
    const auto blueWithSpare = [](int) { return 0x770000FFU; };
    ASSERT_EQ(ReadColor(bmp::EightBits(2, 2, 1, blueWithSpare, Chars({0, 0, 0, 0}))), BitmapResult::Done);
    EXPECT_EQ(Pixel(0), 0x3F3F3FFFU);
}

TEST_F(ABitmap, GivesBlackForIndicesBehindThePalette)
{
    const auto white = [](int) { return 0xFFFFFFU; };
    ASSERT_EQ(ReadColor(bmp::EightBits(2, 2, 2, white, Chars({1, 2, 255, 0}))), BitmapResult::Done);
    EXPECT_EQ(Pixel(0), 0xFFFFFFFFU);
    EXPECT_EQ(Pixel(1), 0x000000FFU);
    EXPECT_EQ(Pixel(2), 0x000000FFU);
}

TEST_F(ABitmap, FindsThePixelsBehindAPaletteOfMoreThan256Entries)
{
    ASSERT_EQ(ReadColor(bmp::EightBits(2, 2, 300, bmp::Gray, Chars({5, 255, 0, 1}))), BitmapResult::Done);
    EXPECT_EQ(Pixel(0), 0x050505FFU);
    EXPECT_EQ(Pixel(1), 0xFFFFFFFFU);
}

TEST_F(ABitmap, WarnsOfAnEmptyPaletteAndReads256Entries)
{
    std::string bytes = bmp::EightBits(2, 2, 256, bmp::Gray, Chars({5, 6, 7, 8}));
    bmp::Put(&bytes, 46, 0, 4);
    ASSERT_EQ(ReadColor(bytes), BitmapResult::Done);
    EXPECT_EQ(Pixel(3), 0x080808FFU);
    EXPECT_THAT(scripted::Log, ElementsAre("Texture \"c.bmp\" is corrupted, see readme FAQ for details."));
}

TEST_F(ABitmap, RefusesColorMapsWithALogLine)
{
    const std::string notPower = "Bitmap \"c.bmp\" does not have power of two dimensions.";
    const std::string notBits = "Texture \"c.bmp\" is not 8-bit or 24-bit.";
    const struct {
        std::string Header;
        std::string Line;
    } cases[] = {
        {bmp::Header(1, 1, 24, 0), notPower},
        {bmp::Header(0, 4, 24, 0), notPower},
        {bmp::Header(4, -4, 24, 0), notPower},
        {bmp::Header(4, 12, 24, 0), notPower},
        {bmp::Header(INT32_MIN, INT32_MIN, 24, 0), notPower},
        {bmp::Header(4, 4, 32, 0), notBits},
        {bmp::Header(4, 4, 1, 2), notBits},
        {bmp::Header(4, 4, 0x8008, 0), notBits},
    };
    for (const auto& entry : cases) {
        scripted::Log.clear();
        EXPECT_EQ(ReadColor(entry.Header + std::string(64, 'x')), BitmapResult::Refused) << entry.Line;
        EXPECT_THAT(scripted::Log, ElementsAre(entry.Line));
    }
}

TEST_F(ABitmap, LooksAtTwoBytesOfTheBitsOfAColorMap)
{
    // The compression of a colour map is not looked at either.
    EXPECT_EQ(ReadColor(bmp::Header(2, 2, 0x7778'0018, 0) + std::string(12, 'x')), BitmapResult::Done);
}

TEST_F(ABitmap, FailsForEveryFileThatEndsTooEarly)
{
    const std::string files[] = {
        plainColors,
        bmp::EightBits(4, 2, 7, bmp::Gray, std::string(8, '\1')),
    };
    for (const std::string& file : files) {
        for (size_t length = 0; length < file.size(); ++length) {
            ASSERT_EQ(ReadColor(file.substr(0, length)), BitmapResult::Failed) << length;
            ASSERT_FALSE(error.empty());
        }
        EXPECT_EQ(ReadColor(file), BitmapResult::Done);
        EXPECT_EQ(ReadColor(file + "more"), BitmapResult::Done);
    }
    EXPECT_THAT(scripted::Log, IsEmpty());
}

TEST_F(ABitmap, FailsForAbsurdNumbersWithoutTakingMemory)
{
    const std::string data(2000, 'x');
    const std::string headers[] = {
        bmp::Header(1 << 30, 1 << 30, 24, 0), bmp::Header(1 << 30, 1 << 30, 8, 2),
        bmp::Header(1 << 16, 1 << 16, 24, 0), bmp::Header(1 << 16, 1 << 16, 8, 256),
        bmp::Header(1 << 30, 4, 8, 256),      bmp::Header(2, 2, 8, -1),
        bmp::Header(2, 2, 8, INT32_MIN),      bmp::Header(2, 2, 8, INT32_MAX),
        bmp::Header(2, 2, 8, 0x40000000 + 1), bmp::Header(2, 2, 8, 500),
    };
    for (const std::string& header : headers) {
        bitmap = {};
        EXPECT_EQ(ReadColor(header + data), BitmapResult::Failed);
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(bitmap.Pixels.capacity(), 0U);
    }
}

TEST_F(ABitmap, TakesThePaletteIndicesOfTheOpacityMapAsAlpha)
{
    ASSERT_EQ(ReadColor(plainColors), BitmapResult::Done);
    const auto white = [](int) { return 0xFFFFFFU; };
    ASSERT_EQ(MergeOpacity(bmp::EightBits(2, 2, 256, white, Chars({0, 255, 128, 7}))), BitmapResult::Done);
    EXPECT_EQ(Pixel(0), 0x50505000U);
    EXPECT_EQ(Pixel(1), 0x505050FFU);
    EXPECT_EQ(Pixel(2), 0x50505080U);
    EXPECT_EQ(Pixel(3), 0x50505007U);
}

TEST_F(ABitmap, RefusesOpacityMapsInTheOrderOfTheTests)
{
    const std::string width = "Texture \"o.bmp\" width does not match \"c.bmp\".";
    const std::string height = "Texture \"o.bmp\" height does not match \"c.bmp\".";
    const std::string bits = "Texture \"o.bmp\" is not 8-bit.";
    const std::string entries = "Texture \"o.bmp\" does not have 256 palette entries.";
    const struct {
        std::string Header;
        std::string Line;
    } cases[] = {
        {bmp::Header(4, 4, 24, 0), width},       {bmp::Header(2, 4, 24, 0), height},
        {bmp::Header(2, -2, 8, 256), height},    {bmp::Header(2, 2, 24, 0), bits},
        {bmp::Header(2, 2, 0x10008, 256), bits}, {bmp::Header(2, 2, 8, 16), entries},
        {bmp::Header(2, 2, 8, 0), entries},      {bmp::Header(2, 2, 8, 257), entries},
    };
    ASSERT_EQ(ReadColor(plainColors), BitmapResult::Done);
    for (const auto& entry : cases) {
        scripted::Log.clear();
        EXPECT_EQ(MergeOpacity(entry.Header), BitmapResult::Refused) << entry.Line;
        EXPECT_THAT(scripted::Log, ElementsAre(entry.Line));
    }
}

TEST_F(ABitmap, FailsForEveryOpacityMapThatEndsTooEarly)
{
    ASSERT_EQ(ReadColor(plainColors), BitmapResult::Done);
    const std::string file = bmp::EightBits(2, 2, 256, bmp::Gray, Chars({1, 2, 3, 4}));
    for (size_t length = 0; length < file.size(); ++length) {
        ASSERT_EQ(MergeOpacity(file.substr(0, length)), BitmapResult::Failed) << length;
    }
    EXPECT_EQ(MergeOpacity(file), BitmapResult::Done);
}

TEST_F(ABitmap, TellsTheSystemsWordsForAFileThatCannotBeRead)
{
    EXPECT_EQ(LoadBitmap(testing::TempDir() + "no such.bmp", "", &bitmap, &error), BitmapResult::Failed);
    EXPECT_FALSE(error.empty());
    error.clear();
    EXPECT_EQ(LoadBitmap(testing::TempDir(), "", &bitmap, &error), BitmapResult::Failed);
    EXPECT_FALSE(error.empty());
}
