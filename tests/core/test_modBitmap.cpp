#include "model/modBitmap.h"
#include "model/modTexture.h"
#include "support/bmp.h"
#include "support/fresh.h"
#include "support/system_words.h"

using namespace std::string_literals;

namespace {

const std::string plainColors = bmp::TrueColors(2, 2, std::string(12, '\x50'));
const std::string alpha = bmp::EightBits(2, 2, 256, bmp::Gray, "\0\xFF\x80\7"s);

class ABitmap : public FreshFolder {
protected:
    /// Reads and merges. Gives the log and the pixels or the error.
    std::string Read(const std::string& color, const std::string& opacity = "")
    {
        scripted::Log = {""};
        PutFile(Folder / "c.bmp", color);
        PutFile(Folder / "o.bmp", opacity);
        Bitmap bitmap;
        std::string text;
        const BitmapResult result =
            LoadBitmap(Folder / "c.bmp", opacity.empty() ? "" : Folder / "o.bmp", &bitmap, &text);
        EXPECT_TRUE(result == BitmapResult::Done || !opacity.empty() || bitmap.Pixels.capacity() == 0);
        EXPECT_TRUE(result != BitmapResult::Done || bitmap.Pixels.size() == 4U * static_cast<size_t>(bitmap.Width) *
                                                                                static_cast<size_t>(bitmap.Height));
        for (size_t i = 0; result == BitmapResult::Done && i < bitmap.Pixels.size(); ++i) {
            text += std::to_string(bitmap.Pixels[i]) + (i % 4 < 3 ? "." : " ");
        }
        EXPECT_EQ(result == BitmapResult::Refused, text.empty());
        text = scripted::Log.back() + text;
        for (size_t at = 0; (at = text.find(Folder / "", at)) != std::string::npos;) {
            text.erase(at, (Folder / "").size());
        }
        return text;
    }
};

} // namespace

TEST_F(ABitmap, ReadsColorsAndAlpha)
{
    const auto color = [](int i) { return i == 2 ? 0x102032U : 0x0000FEU + static_cast<uint32_t>(i); };
    const auto blueWithSpare = [](int) { return 0x770000FFU; };
    const std::string indices = "\0\1\2\xFF"s;
    std::string noCount = bmp::EightBits(2, 2, 256, bmp::Gray, indices);
    bmp::Put(&noCount, 46, 0, 4);
    const std::string grays = "0.0.0.255 1.1.1.255 2.2.2.255 255.255.255.255 ";
    // Rows of the file, blue first; two bytes tell the bits.
    EXPECT_EQ(Read(bmp::TrueColors(4, 2, "\1\2\3\xFF\0\0"s + std::string(15, '\0') + "\7\x8\x9")),
              "3.2.1.255 0.0.255.255 0.0.0.255 0.0.0.255 0.0.0.255 0.0.0.255 0.0.0.255 9.8.7.255 ");
    EXPECT_EQ(Read(bmp::Header(2, 2, 0x77780018, 0) + std::string(12, '\1')),
              "1.1.1.255 1.1.1.255 1.1.1.255 1.1.1.255 ");
    // Of a palette only pure blue at the start turns grey; the spare byte counts for nothing; black is behind it.
    EXPECT_EQ(Read(bmp::EightBits(2, 2, 3, color, indices)), "0.0.254.255 0.0.255.255 16.32.50.255 0.0.0.255 ");
    EXPECT_EQ(Read(bmp::EightBits(2, 2, 1, blueWithSpare, indices)), "63.63.63.255 0.0.0.255 0.0.0.255 0.0.0.255 ");
    EXPECT_EQ(Read(bmp::EightBits(2, 2, 300, bmp::Gray, indices)), grays);
    EXPECT_EQ(Read(noCount), "Texture \"c.bmp\" is corrupted, see readme FAQ for details." + grays);
    EXPECT_EQ(Read(plainColors, alpha), "80.80.80.0 80.80.80.255 80.80.80.128 80.80.80.7 ");
}

TEST_F(ABitmap, HalvesSidesThatOpenGLDoesNotTake)
{
    scripted::LargestTextureSide = 2;
    const std::string indices = "\0\1\2\3\4\5\6\7\x8\x9\xA\xB\xC\xD\xE\xF"s;
    const std::string squared = bmp::EightBits(4, 4, 256, bmp::Gray, indices);
    EXPECT_EQ(Read(squared, squared), "3.3.3.3 5.5.5.5 11.11.11.11 13.13.13.13 "); // (0 + 1 + 4 + 5) / 4, rounded
    EXPECT_EQ(Read(bmp::EightBits(8, 2, 256, bmp::Gray, indices)), "2.2.2.255 6.6.6.255 10.10.10.255 14.14.14.255 ");
    EXPECT_EQ(Read(bmp::EightBits(2, 8, 256, bmp::Gray, indices)), "3.3.3.255 4.4.4.255 11.11.11.255 12.12.12.255 ");
}

TEST_F(ABitmap, StopsBetweenPieces)
{
    StopRequested = true;
    PutFile(Folder / "c.bmp", plainColors);
    Bitmap bitmap;
    EXPECT_EQ(LoadBitmap(Folder / "c.bmp", "", &bitmap, &Error), BitmapResult::Stopped);
    EXPECT_EQ(LoadTexture(Folder / "c.bmp", ""), 0);
    EXPECT_THAT(scripted::Messages, testing::IsEmpty());
}

TEST_F(ABitmap, RefusesMapsInTheOrderOfTheTests)
{
    const std::string power = "Bitmap \"c.bmp\" does not have power of two dimensions.";
    const std::string bits = "Texture \"c.bmp\" is not 8-bit or 24-bit.";
    const std::string cut = "The file ends before its data is complete.";
    const std::string negative = "The number of palette entries is negative.";
    const std::pair<std::string, std::string> colors[] = {
        {bmp::Header(4, 4, 1, 2), bits},        {bmp::Header(4, -4, 24, 0), power},
        {bmp::Header(4, 4, 32, 0), bits},       {bmp::Header(4, 12, 24, 0), power},
        {bmp::Header(1, 1, 1, 0), power},       {bmp::Header(4, 4, 0x8008, 0), bits},
        {bmp::Header(2, 2, 8, -1), negative},   {bmp::Header(2, 2, 8, INT32_MIN), negative},
        {bmp::Header(1 << 30, 4, 8, 256), cut}, {bmp::Header(1 << 30, 1 << 30, 24, 0), cut},
        {bmp::Header(2, 2, 8, INT32_MAX), cut}, {bmp::Header(1 << 16, 1 << 16, 8, 256), cut}};
    for (const auto& [header, words] : colors) {
        EXPECT_EQ(Read(header + std::string(2000, 'x')), words);
    }
    const std::string width = "Texture \"o.bmp\" width does not match \"c.bmp\".";
    const std::string height = "Texture \"o.bmp\" height does not match \"c.bmp\".";
    const std::string entries = "Texture \"o.bmp\" does not have 256 palette entries.";
    const std::string eight = "Texture \"o.bmp\" is not 8-bit.";
    const std::pair<std::string, std::string> opacities[] = {
        {bmp::Header(2, 2, 24, 0), eight},  {bmp::Header(2, 2, 8, 16), entries},
        {bmp::Header(4, 4, 24, 0), width},  {bmp::Header(2, -2, 8, 256), height},
        {bmp::Header(2, 4, 24, 0), height}, {bmp::Header(2, 2, 8, 257), entries},
        {bmp::Header(2, 2, 8, 0), entries}, {bmp::Header(2, 2, 0x10008, 256), eight}};
    for (const auto& [header, words] : opacities) {
        EXPECT_EQ(Read(plainColors, header), words);
    }
    for (const std::string& file : {bmp::EightBits(4, 2, 7, bmp::Gray, std::string(8, '\1')), plainColors, alpha}) {
        for (size_t length = 1; length < file.size(); ++length) {
            ASSERT_EQ(file == alpha ? Read(plainColors, file.substr(0, length)) : Read(file.substr(0, length)), cut);
        }
        EXPECT_NE(Read(file), cut);
    }
}

TEST_F(ABitmap, IsFoundAsGivenThenBesideTheModelInAnyCase)
{
    std::filesystem::create_directory(Folder / "sub");
    for (const char* name : {"Hide.bmp", "sub/deep.bmp", ".hidden.bmp"}) {
        PutFile(Folder / name, plainColors);
    }
    PutFile(Folder / "cut.bmp", plainColors.substr(0, 60));
    PutFile(Folder / "Alpha.BMP", alpha);
    // The maps, what is told, the texture (0 for one that cannot be used, 7 where none is looked for) and its opacity.
    const std::tuple<std::string, std::string, std::string, int, bool> cases[] = {
        {"Hide.bmp", "", "", 1, false},
        {"C:\\maps\\hide.BMP", "x/ALPHA.bmp", "", 1, true},
        {Folder / "sub\\deep.bmp", ".hidden.bmp", "Log: Texture \".hidden.bmp\" not found.\n", 1, false},
        {"deep\xE4.bmp", "", "Log: Texture \"deep\u00E4.bmp\" not found.\n", 7, false},
        {"", "Alpha.BMP", "", 7, false},
        {Folder / "sub", "", "Log: Texture \"" + (Folder / "sub") + "\" not found.\n", 7, false},
        {"ends\\", "", "Log: Texture \"ends\\\" not found.\n", 7, false},
        {"Hide.bmp", "a/cut.bmp", "Log: Texture \"" + (Folder / "cut.bmp") + "\" is not 8-bit.\n", 0, false}};
    for (const auto& [color, opacity, log, texture, hasOpacity] : cases) {
        scripted::Reset();
        Materials.Items = {{}, {"M", color, opacity, "", 7}};
        LoadTextures(Folder / "a.mvm");
        EXPECT_EQ(Told(), log);
        EXPECT_EQ(Materials[2].Texture, texture) << color;
        EXPECT_EQ(TextureCount() == 1 && Textures[1].HasOpacity, hasOpacity) << color;
        EXPECT_THAT(scripted::Progress, testing::ElementsAre(testing::Pair(2, 1), testing::Pair(2, 2)));
        EXPECT_EQ(scripted::Panel("toolhelp"), "Ready...");
    }
    EXPECT_EQ(LoadTexture(Folder / "Hide.bmp", "no") + LoadTexture("no", "") + LoadTexture(Folder / "cut.bmp", ""), 0);
    const std::string failed = "Stop: Runtime error in LoadTexture\n";
    const std::string advice = "\"\r\nMake sure your textures have power-of-two dimensions!\n";
    EXPECT_EQ(Told(), failed + SystemWords(ENOENT) + "\n\"" + (Folder / "Hide.bmp") + advice + failed +
                          SystemWords(ENOENT) + "\n\"no" + advice + failed +
                          "The file ends before its data is complete.\n\"" + (Folder / "cut.bmp") + advice);
    Textures.Items.resize(INT16_MAX);
    EXPECT_EQ(LoadTexture("a", ""), 0);
    EXPECT_EQ(Told(), "Log: Texture \"a\" is one too many: a model can have 32767 textures.\n");
}
