#include "model/modBitmap.h"
#include "support/bmp.h"
#include "support/fresh.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ABitmap : public Fresh {
protected:
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
    /// The pixels as 0xRRGGBBAA.
    [[nodiscard]] std::vector<uint32_t> Pixels() const
    {
        std::vector<uint32_t> values(bitmap.Pixels.size() / 4);
        for (size_t i = 0; i < bitmap.Pixels.size(); ++i) {
            values[i / 4] = values[i / 4] << 8 | bitmap.Pixels[i];
        }
        return values;
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
    ASSERT_EQ(ReadColor(bmp::TrueColors(4, 2, Chars({1, 2, 3, 255, 0, 0}) + std::string(15, '\0') + Chars({7, 8, 9}))),
              BitmapResult::Done);
    EXPECT_EQ(bitmap.Width, 4);
    EXPECT_EQ(bitmap.Height, 2);
    // Pure blue stays blue in 24 bits.
    EXPECT_THAT(Pixels(), ElementsAre(0x030201FF, 0x0000FFFF, 255, 255, 255, 255, 255, 0x090807FF));
    EXPECT_THAT(scripted::Log, IsEmpty());
}

TEST_F(ABitmap, LooksUpPaletteColors)
{
    const auto color = [](int i) { return i == 2 ? 0x102032U : 0x0000FEU + static_cast<uint32_t>(i); };
    const auto blueWithSpare = [](int) { return 0x770000FFU; };
    const auto white = [](int) { return 0xFFFFFFU; };
    const struct {
        const char* What;
        int32_t Entries;
        std::function<uint32_t(int)> Color;
        std::vector<uint32_t> Pixels; ///< of the indices 0, 1, 2, 255
    } cases[] = {
        {"only pure blue at the start turns grey", 3, color, {0x0000FEFF, 0x0000FFFF, 0x102032FF, 0x000000FF}},
        {"the spare byte counts for nothing", 1, blueWithSpare, {0x3F3F3FFF, 0x000000FF, 0x000000FF, 0x000000FF}},
        {"black behind the palette", 1, white, {0xFFFFFFFF, 0x000000FF, 0x000000FF, 0x000000FF}},
        {"more than 256 entries", 300, bmp::Gray, {0x000000FF, 0x010101FF, 0x020202FF, 0xFFFFFFFF}},
    };
    for (const auto& row : cases) {
        const std::string bytes = bmp::EightBits(2, 2, row.Entries, row.Color, Chars({0, 1, 2, 255}));
        ASSERT_EQ(ReadColor(bytes), BitmapResult::Done) << row.What;
        EXPECT_EQ(Pixels(), row.Pixels) << row.What;
    }
}

TEST_F(ABitmap, WarnsOfAnEmptyPaletteAndReads256Entries)
{
    std::string bytes = bmp::EightBits(2, 2, 256, bmp::Gray, Chars({5, 6, 7, 8}));
    bmp::Put(&bytes, 46, 0, 4);
    ASSERT_EQ(ReadColor(bytes), BitmapResult::Done);
    EXPECT_THAT(Pixels(), ElementsAre(0x050505FF, 0x060606FF, 0x070707FF, 0x080808FF));
    EXPECT_THAT(scripted::Log, ElementsAre("Texture \"c.bmp\" is corrupted, see readme FAQ for details."));
}

TEST_F(ABitmap, RefusesColorMapsWithALogLine)
{
    const std::string notPower = "Bitmap \"c.bmp\" does not have power of two dimensions.";
    const std::string notBits = "Texture \"c.bmp\" is not 8-bit or 24-bit.";
    const std::pair<std::string, std::string> cases[] = {
        {bmp::Header(4, 4, 1, 2), notBits},   {bmp::Header(4, -4, 24, 0), notPower},
        {bmp::Header(4, 4, 32, 0), notBits},  {bmp::Header(4, 12, 24, 0), notPower},
        {bmp::Header(1, 1, 24, 0), notPower}, {bmp::Header(4, 4, 0x8008, 0), notBits},
        {bmp::Header(0, 4, 24, 0), notPower}, {bmp::Header(INT32_MIN, INT32_MIN, 24, 0), notPower}};
    for (const auto& [header, line] : cases) {
        scripted::Log.clear();
        EXPECT_EQ(ReadColor(header + std::string(64, 'x')), BitmapResult::Refused) << line;
        EXPECT_THAT(scripted::Log, ElementsAre(line));
    }
    // Two bytes tell the bits; what stands behind them is not looked at.
    EXPECT_EQ(ReadColor(bmp::Header(2, 2, 0x7778'0018, 0) + std::string(12, 'x')), BitmapResult::Done);
}

TEST_F(ABitmap, FailsForEveryFileThatEndsTooEarly)
{
    const std::pair<std::string, bool> files[] = {
        {bmp::EightBits(4, 2, 7, bmp::Gray, std::string(8, '\1')), false},
        {plainColors, false},
        {bmp::EightBits(2, 2, 256, bmp::Gray, Chars({1, 2, 3, 4})), true}, // an opacity map for the colours above
    };
    for (const auto& [file, isOpacity] : files) {
        for (size_t length = 0; length <= file.size() + 1; ++length) {
            const std::string part = (file + "m").substr(0, length);
            const BitmapResult result = isOpacity ? MergeOpacity(part) : ReadColor(part);
            ASSERT_EQ(result, length < file.size() ? BitmapResult::Failed : BitmapResult::Done) << length;
            ASSERT_EQ(error.empty(), length >= file.size());
        }
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
    EXPECT_THAT(Pixels(), ElementsAre(0x50505000, 0x505050FF, 0x50505080, 0x50505007));
}

TEST_F(ABitmap, RefusesOpacityMapsInTheOrderOfTheTests)
{
    const std::string width = "Texture \"o.bmp\" width does not match \"c.bmp\".";
    const std::string height = "Texture \"o.bmp\" height does not match \"c.bmp\".";
    const std::string bits = "Texture \"o.bmp\" is not 8-bit.";
    const std::string entries = "Texture \"o.bmp\" does not have 256 palette entries.";
    const std::pair<std::string, std::string> cases[] = {
        {bmp::Header(2, 2, 24, 0), bits},   {bmp::Header(2, 2, 8, 16), entries},
        {bmp::Header(4, 4, 24, 0), width},  {bmp::Header(2, -2, 8, 256), height},
        {bmp::Header(2, 4, 24, 0), height}, {bmp::Header(2, 2, 8, 257), entries},
        {bmp::Header(2, 2, 8, 0), entries}, {bmp::Header(2, 2, 0x10008, 256), bits}};
    ASSERT_EQ(ReadColor(plainColors), BitmapResult::Done);
    for (const auto& [header, line] : cases) {
        scripted::Log.clear();
        EXPECT_EQ(MergeOpacity(header), BitmapResult::Refused) << line;
        EXPECT_THAT(scripted::Log, ElementsAre(line));
    }
}

TEST_F(ABitmap, TellsTheSystemsWordsForAFileThatCannotBeRead)
{
    for (const std::string& path : {testing::TempDir() + "no such.bmp", testing::TempDir()}) {
        error.clear();
        EXPECT_EQ(LoadBitmap(path, "", &bitmap, &error), BitmapResult::Failed);
        EXPECT_FALSE(error.empty());
    }
}
