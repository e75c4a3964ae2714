#include "app/modMvmDef.h"
#include "model/modBitmap.h"
#include "model/modTexture.h"
#include "support/bmp.h"
#include "support/fresh.h"

using namespace std::string_literals;

namespace {

using ABitmap = Fresh;
using TheTextures = FreshFolder;

const std::string plainColors = bmp::TrueColors(2, 2, std::string(12, '\x50'));

uint32_t White(int)
{
    return 0xFFFFFFU;
}

/// Reads and merges. Gives the log, then the pixels in hexadecimal digits or the error; an empty picture took no memory.
std::string Read(const std::string& color, const std::string& opacity = "")
{
    scripted::Log.clear();
    Bitmap bitmap;
    std::string error;
    BitmapResult result = ReadColorMap(color, "c.bmp", &bitmap, &error);
    if (result == BitmapResult::Done && !opacity.empty()) {
        result = MergeOpacityMap(opacity, "o.bmp", "c.bmp", &bitmap, &error);
    } else if (result != BitmapResult::Done) {
        EXPECT_EQ(bitmap.Pixels.capacity(), 0U);
    }
    std::string text;
    for (const std::string& line : scripted::Log) {
        text += line + "\n";
    }
    EXPECT_EQ(error.empty(), result != BitmapResult::Failed);
    for (size_t i = 0; result == BitmapResult::Done && i < bitmap.Pixels.size(); ++i) {
        text += (i > 0 && i % 4 == 0 ? " " : "") + ""s + "0123456789ABCDEF"[bitmap.Pixels[i] / 16] +
                "0123456789ABCDEF"[bitmap.Pixels[i] % 16];
    }
    return text + error;
}

} // namespace

TEST_F(ABitmap, ReadsColorsAndAlpha)
{
    const auto color = [](int i) { return i == 2 ? 0x102032U : 0x0000FEU + static_cast<uint32_t>(i); };
    const auto blueWithSpare = [](int) { return 0x770000FFU; };
    const std::string indices = "\0\1\2\xFF"s;
    std::string noCount = bmp::EightBits(2, 2, 256, bmp::Gray, indices);
    bmp::Put(&noCount, 46, 0, 4);
    const struct {
        const char* What;
        std::string Color, Opacity, Result;
    } cases[] = {
        {"rows of the file, blue first", bmp::TrueColors(4, 2, "\1\2\3\xFF\0\0"s + std::string(15, '\0') + "\7\x8\x9"),
         "", "030201FF 0000FFFF 000000FF 000000FF 000000FF 000000FF 000000FF 090807FF"},
        {"two bytes tell the bits", bmp::Header(2, 2, 0x77780018, 0) + std::string(12, 'P'), "",
         "505050FF 505050FF 505050FF 505050FF"},
        {"only pure blue at the start turns grey", bmp::EightBits(2, 2, 3, color, indices), "",
         "0000FEFF 0000FFFF 102032FF 000000FF"},
        {"the spare byte counts for nothing", bmp::EightBits(2, 2, 1, blueWithSpare, indices), "",
         "3F3F3FFF 000000FF 000000FF 000000FF"},
        {"black behind the palette", bmp::EightBits(2, 2, 1, White, indices), "",
         "FFFFFFFF 000000FF 000000FF 000000FF"},
        {"over 256 entries", bmp::EightBits(2, 2, 300, bmp::Gray, indices), "", "000000FF 010101FF 020202FF FFFFFFFF"},
        {"no count", noCount, "",
         "Texture \"c.bmp\" is corrupted, see readme FAQ for details.\n000000FF 010101FF 020202FF FFFFFFFF"},
        {"indices are the alpha", plainColors, bmp::EightBits(2, 2, 256, White, "\0\xFF\x80\7"s),
         "50505000 505050FF 50505080 50505007"}};
    for (const auto& row : cases) {
        EXPECT_EQ(Read(row.Color, row.Opacity), row.Result) << row.What;
    }
}

TEST_F(ABitmap, RefusesMapsInTheOrderOfTheTests)
{
    const std::string power = "Bitmap \"c.bmp\" does not have power of two dimensions.\n";
    const std::string bits = "Texture \"c.bmp\" is not 8-bit or 24-bit.\n";
    const std::string cut = "The file ends before its data is complete.";
    const std::string negative = "The number of palette entries is negative.";
    const std::pair<std::string, std::string> colors[] = {
        {bmp::Header(4, 4, 1, 2), bits},        {bmp::Header(4, -4, 24, 0), power},
        {bmp::Header(4, 4, 32, 0), bits},       {bmp::Header(4, 12, 24, 0), power},
        {bmp::Header(1, 1, 24, 0), power},      {bmp::Header(4, 4, 0x8008, 0), bits},
        {bmp::Header(0, 4, 1, 0), power},       {bmp::Header(INT32_MIN, INT32_MIN, 24, 0), power},
        {bmp::Header(2, 2, 8, -1), negative},   {bmp::Header(2, 2, 8, INT32_MIN), negative},
        {bmp::Header(1 << 30, 4, 8, 256), cut}, {bmp::Header(1 << 30, 1 << 30, 24, 0), cut},
        {bmp::Header(2, 2, 8, 500), cut},       {bmp::Header(1 << 16, 1 << 16, 24, 0), cut},
        {bmp::Header(2, 2, 8, INT32_MAX), cut}, {bmp::Header(1 << 16, 1 << 16, 8, 256), cut}};
    for (const auto& [header, words] : colors) {
        EXPECT_EQ(Read(header + std::string(2000, 'x')), words);
    }
    const std::string width = "Texture \"o.bmp\" width does not match \"c.bmp\".\n";
    const std::string height = "Texture \"o.bmp\" height does not match \"c.bmp\".\n";
    const std::string entries = "Texture \"o.bmp\" does not have 256 palette entries.\n";
    const std::string eight = "Texture \"o.bmp\" is not 8-bit.\n";
    const std::pair<std::string, std::string> opacities[] = {
        {bmp::Header(2, 2, 24, 0), eight},  {bmp::Header(2, 2, 8, 16), entries},
        {bmp::Header(4, 4, 24, 0), width},  {bmp::Header(2, -2, 8, 256), height},
        {bmp::Header(2, 4, 24, 0), height}, {bmp::Header(2, 2, 8, 257), entries},
        {bmp::Header(2, 2, 8, 0), entries}, {bmp::Header(2, 2, 0x10008, 256), eight}};
    for (const auto& [header, words] : opacities) {
        EXPECT_EQ(Read(plainColors, header), words);
    }
    const std::string alpha = bmp::EightBits(2, 2, 256, bmp::Gray, "\1\2\3\4");
    for (const std::string& file : {bmp::EightBits(4, 2, 7, bmp::Gray, std::string(8, '\1')), plainColors, alpha}) {
        for (size_t length = 1; length < file.size(); ++length) {
            ASSERT_EQ(file == alpha ? Read(plainColors, file.substr(0, length)) : Read(file.substr(0, length)), cut);
        }
        EXPECT_NE(Read(file), cut);
    }
}

TEST_F(TheTextures, AreFoundAsGivenThenBesideTheModelInAnyCase)
{
    PutFile(Folder / "Hide.bmp", plainColors);
    PutFile(Folder / "cut.bmp", plainColors.substr(0, 60));
    PutFile(Folder / "odd.bmp", bmp::Header(3, 3, 24, 0));
    PutFile(Folder / "Alpha.BMP", bmp::EightBits(2, 2, 256, bmp::Gray, "\1\2\3\4"));
    std::filesystem::create_directory(Folder / "sub");
    PutFile(Folder / "sub/deep.bmp", plainColors);
    const struct {
        std::string Color, Opacity, Log;
        bool Found, HasOpacity;
    } cases[] = {{"Hide.bmp", "", "", true, false},
                 {"C:\\maps\\hide.BMP", "x/ALPHA.bmp", "", true, true},
                 {Folder / "sub/deep.bmp", "", "", true, false},
                 {Folder / "sub\\deep.bmp", "", "", true, false},
                 {"deep\xE4.bmp", "", "Texture \"deep\u00E4.bmp\" not found.", false, false},
                 {"Hide.bmp", "sub", "Texture \"sub\" not found.", true, false},
                 {"", "Alpha.BMP", "", false, false},
                 {"odd.bmp", "", "Bitmap \"" + (Folder / "odd.bmp") + "\" does not have power of two dimensions.",
                  false, false}};
    for (const auto& row : cases) {
        scripted::Reset();
        Materials.Add();
        Materials.Add({"M", row.Color, row.Opacity, "", 7});
        LoadTextures(Folder / "a.mvm");
        EXPECT_EQ(scripted::Log, row.Log.empty() ? std::vector<std::string>{} : std::vector<std::string>{row.Log});
        EXPECT_EQ(TextureCount(), row.Found ? 1 : 0) << row.Color;
        EXPECT_EQ(Materials[2].Texture, row.Found ? 1 : row.Log.starts_with("B") ? 0 : 7) << row.Color;
        EXPECT_EQ(row.Found && Textures[1].HasOpacity, row.HasOpacity) << row.Color;
        EXPECT_THAT(scripted::Progress, testing::ElementsAre(testing::Pair(2, 1), testing::Pair(2, 2)));
        EXPECT_EQ(scripted::Panel("toolhelp"), "Ready...");
    }
    const std::string cut = Folder / "cut.bmp";
    EXPECT_EQ(LoadTexture(cut, ""), 0);
    EXPECT_EQ(LoadTexture(Folder / "Hide.bmp", Folder / "none"), 0);
    EXPECT_EQ(LoadTexture(Folder / "none", ""), 0);
    ASSERT_EQ(scripted::Messages.size(), 3U);
    EXPECT_THAT(scripted::Messages[0],
                IsBox(BoxIcon::Stop, "Runtime error in LoadTexture\nThe file ends before its data is complete.\n\"" +
                                         cut + "\"\r\nMake sure your textures have power-of-two dimensions!"));
    EXPECT_THAT(scripted::Messages[2].Text, testing::HasSubstr("\nNo such file or directory\n"));
    Textures.Items.resize(INT16_MAX);
    EXPECT_EQ(LoadTexture(Folder / "Hide.bmp", ""), 0);
    EXPECT_THAT(scripted::Log.back(), testing::EndsWith("is one too many: a model can have 32767 textures."));
}
