#include "modCodePage.h"
#include "modPictures.h"
#include "modStb.h"
#include "support/bmp.h"
#include "support/fresh.h"

using namespace std::string_literals;

namespace {

/// A picture whose bytes all differ from their neighbours'; its alpha too, unless it is opaque.
std::string PngBytes(int32_t width, int32_t height, int channels)
{
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) *
                                static_cast<size_t>(channels));
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<uint8_t>(37 * i + 11);
    }
    std::string bytes;
    EXPECT_TRUE(EncodePng(pixels, width, height, channels, &bytes));
    return bytes;
}

const ExchangeMaterial seeThrough{.Name = "Leaf", .Image = 0, .HasOpacity = true, .Color = {1, 1, 1}};

class APicture : public FreshFolder {
protected:
    bool Make(const ExchangeImage& image, const ExchangeMaterial& material = seeThrough)
    {
        Error.clear();
        return MakeMaps(image, material, Folder.Path, &Material, &Files, &Notes, &Error);
    }
    /// Makes the maps and gives their names, "error" for a failure.
    std::string NamesOf(const ExchangeImage& image, const ExchangeMaterial& material = seeThrough)
    {
        return Make(image, material) ? Material.ColorMap + " " + Material.OpacityMap : "error";
    }
    void Write()
    {
        for (const MapFile& file : Files) {
            PutFile(file.Path, file.Bytes);
        }
        Files.clear();
    }
    MvmMaterial Material;
    std::vector<MapFile> Files;
    std::vector<std::string> Notes;
    FolderNames Names;
    ExchangeImage Image;
};

} // namespace

TEST_F(APicture, ComesBackFromMapsAsItWas)
{
    const std::vector<std::pair<int32_t, int32_t>> sizes = {{4, 2}, {8, 8}, {4, 16}, {64, 2}};
    for (const auto& [width, height] : sizes) {
        for (const int channels : {3, 4}) {
            const std::string name = "p" + std::to_string(width) + std::to_string(height) + std::to_string(channels);
            const std::string png = PngBytes(width, height, channels);
            ASSERT_TRUE(Make({name, png})) << Error;
            EXPECT_EQ(Files.size(), static_cast<size_t>(channels - 2));
            EXPECT_THAT(NamesIn(Folder.Path), testing::Not(testing::Contains(name + ".bmp")));
            Write();
            bool hasOpacity = false;
            ASSERT_TRUE(PngOfMaterial(Material, Folder.Path, &Names, &Image, &hasOpacity));
            EXPECT_EQ(hasOpacity, channels == 4);
            EXPECT_EQ(Image.Name, name);
            EXPECT_EQ(Image.Bytes, png) << name;
        }
    }
    EXPECT_THAT(Notes, testing::IsEmpty());
    EXPECT_EQ(Told(), "");
}

TEST_F(APicture, HasItsTopRowFirstAndBottomRowFirstInMaps)
{
    const std::string row[] = {"\xFF\0\0"s, "\0\0\xFF"s}; // blue comes first in the file
    std::string bottomUp;
    for (int i = 0; i < 8; ++i) {
        bottomUp += row[i / 4];
    }
    PutFile(Folder / "B\xC3\xA4rk.BMP", bmp::TrueColors(4, 2, bottomUp));
    MvmMaterial material;
    material.ColorMap = "TEX\\b\xE4rk.bmp";
    ASSERT_TRUE(PngOfMaterial(material, Folder.Path, &Names, &Image));
    EXPECT_EQ(LowerText(Image.Name), "b\xC3\xA4rk"); // some systems give a name as it was asked for
    Picture picture;
    ASSERT_TRUE(DecodePicture(Image.Bytes, &picture));
    EXPECT_THAT((std::vector<int>(picture.Pixels.begin(), picture.Pixels.begin() + 4)),
                testing::ElementsAre(255, 0, 0, 255));
    EXPECT_THAT((std::vector<int>(picture.Pixels.end() - 4, picture.Pixels.end())),
                testing::ElementsAre(0, 0, 255, 255));
    ASSERT_TRUE(Make(Image));
    EXPECT_EQ(Files.at(0).Bytes.substr(54), bottomUp);
    EXPECT_EQ(Files.at(0).Bytes.substr(0, 2), "BM");
}

TEST_F(APicture, IsScaledToSidesThatModelsCanHave)
{
    struct Case {
        int32_t Width, Height, MapWidth, MapHeight;
    };
    for (const Case& size : {Case{1, 1, 4, 2}, {2, 2, 4, 2}, {5, 7, 4, 4}, {100, 64, 64, 64}, {4, 8200, 4, 4096}}) {
        Notes.clear();
        ASSERT_TRUE(Make({"p" + std::to_string(size.Width), PngBytes(size.Width, size.Height, 3)})) << Error;
        const std::string& bytes = Files.back().Bytes;
        EXPECT_EQ(bytes.size(), 54U + 3U * static_cast<size_t>(size.MapWidth * size.MapHeight));
        EXPECT_EQ(bytes.substr(18, 8), bmp::Header(size.MapWidth, size.MapHeight, 24, 0).substr(18, 8));
        EXPECT_THAT(Notes, testing::ElementsAre("The picture \"p" + std::to_string(size.Width) + "\" was scaled from " +
                                                std::to_string(size.Width) + " x " + std::to_string(size.Height) +
                                                " to " + std::to_string(size.MapWidth) + " x " +
                                                std::to_string(size.MapHeight) + " pixels."));
    }
    // A picture of one colour keeps it.
    std::string bytes;
    ASSERT_TRUE(EncodePng(std::vector<uint8_t>(432, 99), 12, 12, 3, &bytes));
    ASSERT_TRUE(Make({"plain", bytes}));
    EXPECT_EQ(Files.back().Bytes.substr(54), std::string(192, 'c'));
}

TEST_F(APicture, HasTheColorOfItsMaterialOverIt)
{
    ExchangeMaterial material{.Name = "Bark", .Image = 0, .HasOpacity = false, .Color = {1, 0.5F, 0}};
    std::string bytes;
    ASSERT_TRUE(EncodePng(std::vector<uint8_t>(32, 200), 4, 2, 4, &bytes));
    ASSERT_TRUE(Make({"a", bytes}, material));
    EXPECT_EQ(Files.at(0).Bytes.substr(54, 6), "\0\x64\xC8\0\x64\xC8"s);
    EXPECT_EQ(Material.OpacityMap, ""); // the alpha of a picture means nothing to an opaque material
    material.Color = {2, -1, 0.25F};
    ASSERT_TRUE(MakeColorMap(material, Folder.Path, &Material, &Files, &Error));
    EXPECT_EQ(Material.ColorMap, "Bark.bmp");
    EXPECT_EQ(Files.back().Bytes.substr(54, 6), "\x40\0\xFF\x40\0\xFF"s);
    Write();
    ASSERT_TRUE(PngOfMaterial(Material, Folder.Path, &Names, &Image));
}

TEST_F(APicture, IsNamedSoThatTheModelCanHoldIt)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"Bark", "Bark.bmp "},
        {"old bark.PNG", "old_bark.bmp "},
        {"tex\\../b.c.jpeg", "b.c.bmp "},
        {"B\xC3\xA4r\xE6\x9F\xB3\xFF", "B\xE4r__.bmp "},
        {".a\"b:c*d?\n\xC2\xA0", "_a_b_c_d___.bmp "},
        {"", "Leaf.bmp "},
        {"tex/", "Map.bmp "},
        {std::string(80, 'x'), std::string(60, 'x') + ".bmp "},
    };
    const std::string png = PngBytes(4, 4, 3);
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(NamesOf({name, png}), expected);
    }
}

TEST_F(APicture, NeverTakesTheNameOfAnotherFile)
{
    const std::string first = PngBytes(4, 4, 4);
    const std::string other = PngBytes(8, 4, 4);
    const std::string third = PngBytes(16, 4, 4);
    EXPECT_EQ(NamesOf({"Bark", first}), "Bark.bmp Bark_alpha.bmp");
    EXPECT_EQ(NamesOf({"bark", first}), "Bark.bmp Bark_alpha.bmp");
    EXPECT_EQ(NamesOf({"bark", other}), "bark-2.bmp bark-2_alpha.bmp");
    EXPECT_EQ(NamesOf({"Bark_alpha", third}, {}), "Bark_alpha-2.bmp ");
    EXPECT_EQ(Files.size(), 5U);
    Write();
    std::filesystem::create_directory(PathOf(Folder / "bark-3.bmp"));
    for (const char* name : {"Bark", "BARK"}) {
        EXPECT_EQ(LowerText(NamesOf({name, first})), "bark.bmp bark_alpha.bmp");
        EXPECT_EQ(LowerText(NamesOf({name, other})), "bark-2.bmp bark-2_alpha.bmp");
    }
    EXPECT_THAT(Files, testing::IsEmpty());
    EXPECT_EQ(NamesOf({"bark", third}), "bark-4.bmp bark-3_alpha.bmp");
    EXPECT_EQ(Files.size(), 2U);
}

TEST_F(APicture, ThatIsDamagedOrTooLargeIsRefused)
{
    const std::string png = PngBytes(64, 64, 4);
    for (size_t length = 0; length < png.size(); length += 1 + png.size() / 40) {
        EXPECT_FALSE(Make({"cut", png.substr(0, length)})) << length;
        EXPECT_THAT(Error, testing::HasSubstr("damaged"));
    }
    EXPECT_EQ(NamesOf({"bmp", bmp::TrueColors(4, 4, std::string(48, 'a'))}), "error");
    const auto claiming = [](std::string bytes, uint32_t width, uint32_t height) {
        for (size_t i = 0; i < 4; ++i) {
            bytes[16 + i] = static_cast<char>(width >> (24 - 8 * i));
            bytes[20 + i] = static_cast<char>(height >> (24 - 8 * i));
        }
        return bytes;
    };
    for (const auto& [width, height] : {std::pair{16384U, 4097U}, {4097U, 16384U}, {16385U, 1U}, {1U, 1U << 30}}) {
        EXPECT_EQ(NamesOf({"huge", claiming(png, width, height)}), "error");
    }
    // A small file with much more in it than the picture that it claims to hold.
    std::string swelling;
    ASSERT_TRUE(EncodePng(std::vector<uint8_t>(4 << 20), 1024, 1024, 4, &swelling));
    EXPECT_EQ(NamesOf({"swelling", claiming(swelling, 1, 1)}), "error");
    EXPECT_THAT(Files, testing::IsEmpty());
}

TEST_F(APicture, ThatCannotBeReadIsTold)
{
    MvmMaterial material;
    EXPECT_FALSE(PngOfMaterial(material, Folder.Path, &Names, &Image));
    EXPECT_EQ(Told(), "");
    material.ColorMap = "a.bmp";
    EXPECT_FALSE(PngOfMaterial(material, Folder.Path, &Names, &Image));
    EXPECT_EQ(Told(), "Log: Texture \"a.bmp\" not found.\n");
    PutFile(Folder / "a.bmp", bmp::TrueColors(4, 4, "short"));
    EXPECT_FALSE(PngOfMaterial(material, Folder.Path, &Names, &Image));
    EXPECT_EQ(Told(),
              "Log: Texture \"" + Folder / "a.bmp\" cannot be used: The file ends before its data is complete.\n");
}
