#include "modPictures.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "app/modFrontEnd.h"
#include "app/modMisc.h"
#include "modCodePage.h"
#include "model/modBitmap.h"
#include "model/modStrings.h"
#include "model/modTexture.h"
#include "modFiles.h"
#include "modStb.h"

namespace {

constexpr int32_t largestSide = 16384;
constexpr int64_t mostPixels = int64_t{1} << 26;
constexpr int32_t largestMapSide = 4096;
constexpr int32_t smallestMapWidth = 4; ///< a narrower row would be filled up, which readers of the game do not expect
constexpr int32_t smallestMapHeight = 2;

size_t PixelCount(const Picture& picture)
{
    return static_cast<size_t>(picture.Width) * static_cast<size_t>(picture.Height);
}

int32_t MapSide(int32_t side, int32_t smallest)
{
    const auto lower = static_cast<int32_t>(std::bit_floor(static_cast<uint32_t>(std::max(side, 1))));
    return std::clamp(lower, smallest, largestMapSide);
}

std::string SizeText(int32_t width, int32_t height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

bool PictureOf(const ExchangeImage& image, Picture* picture, std::vector<std::string>* notes, std::string* error)
{
    const std::string lead = "The picture \"" + image.Name + "\" ";
    int32_t width = 0;
    int32_t height = 0;
    if (!PictureSize(image.Bytes, &width, &height)) {
        *error = lead + "is neither PNG nor JPEG, or is damaged.";
        return false;
    }
    if (width < 1 || height < 1 || width > largestSide || height > largestSide ||
        int64_t{width} * height > mostPixels) {
        *error = lead + "is too large: " + SizeText(width, height) + " pixels.";
        return false;
    }
    if (!DecodePicture(image.Bytes, picture)) {
        *error = lead + "is damaged.";
        return false;
    }
    const int32_t mapWidth = MapSide(width, smallestMapWidth);
    const int32_t mapHeight = MapSide(height, smallestMapHeight);
    if (mapWidth == width && mapHeight == height) {
        return true;
    }
    const Picture whole = std::move(*picture);
    if (!ScalePicture(whole, mapWidth, mapHeight, picture)) {
        *error = lead + "cannot be scaled.";
        return false;
    }
    notes->push_back(lead + "was scaled from " + SizeText(width, height) + " to " + SizeText(mapWidth, mapHeight) +
                     " pixels.");
    return true;
}

void PutColorOver(const std::array<float, 3>& color, Picture* picture)
{
    if (color == std::array<float, 3>{1, 1, 1}) {
        return;
    }
    for (size_t i = 0; i < picture->Pixels.size(); ++i) {
        if (i % 4 < 3) {
            const float part = std::isfinite(color[i % 4]) ? std::clamp(color[i % 4], 0.0F, 1.0F) : 1.0F;
            picture->Pixels[i] = static_cast<uint8_t>(std::lround(part * static_cast<float>(picture->Pixels[i])));
        }
    }
}

void PutNumber(uint32_t value, size_t size, std::string* bytes)
{
    for (size_t i = 0; i < size; ++i) {
        *bytes += static_cast<char>(value >> (8 * i));
    }
}

/// The file of a picture; `channels` are the places of its bytes in a pixel, and one channel makes a map of greys.
std::string BmpOf(const Picture& picture, const std::vector<size_t>& channels)
{
    constexpr uint32_t headSize = 54;
    constexpr uint32_t greys = 256;
    const uint32_t paletteCount = channels.size() == 1 ? greys : 0;
    const uint32_t start = headSize + 4 * paletteCount;
    const auto size = static_cast<uint32_t>(PixelCount(picture) * channels.size());
    std::string bytes = "BM";
    bytes.reserve(start + size);
    PutNumber(start + size, 4, &bytes);
    PutNumber(0, 4, &bytes);
    PutNumber(start, 4, &bytes);
    PutNumber(40, 4, &bytes);
    PutNumber(static_cast<uint32_t>(picture.Width), 4, &bytes);
    PutNumber(static_cast<uint32_t>(picture.Height), 4, &bytes);
    PutNumber(1, 2, &bytes);
    PutNumber(static_cast<uint32_t>(8 * channels.size()), 2, &bytes);
    PutNumber(0, 4, &bytes);
    PutNumber(size, 4, &bytes);
    PutNumber(0, 4, &bytes);
    PutNumber(0, 4, &bytes);
    PutNumber(paletteCount, 4, &bytes);
    PutNumber(0, 4, &bytes);
    for (uint32_t grey = 0; grey < paletteCount; ++grey) {
        PutNumber(0x010101U * grey, 4, &bytes);
    }
    const auto width = static_cast<size_t>(picture.Width);
    for (auto row = static_cast<size_t>(picture.Height); row-- > 0;) {
        for (size_t at = 4 * row * width; at < 4 * (row + 1) * width; at += 4) {
            for (const size_t channel : channels) {
                bytes += static_cast<char>(picture.Pixels[at + channel]);
            }
        }
    }
    return bytes;
}

/// The beginning of a file's name, in the code page, from what something is called.
std::string StemOf(std::string_view called)
{
    constexpr size_t longest = 60;
    std::string name(FileNameOf(called));
    for (const std::string_view ending : {".png", ".jpg", ".jpeg", ".bmp", ".tga", ".dds"}) {
        if (name.size() > ending.size() &&
            EqualsAnyCase(std::string_view(name).substr(name.size() - ending.size()), ending)) {
            name.resize(name.size() - ending.size());
            break;
        }
    }
    std::string stem = CodePageFromUtf8(name).substr(0, longest);
    for (size_t i = 0; i < stem.size(); ++i) {
        const auto byte = static_cast<unsigned char>(stem[i]);
        const bool control =
            byte < 0x20 || byte == 0x7F || byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D;
        const bool hides = i == 0 && byte == '.';
        if (control || hides || byte == 0xA0 || std::string_view(" \"*/:<>?\\|").find(stem[i]) < std::string::npos) {
            stem[i] = '_';
        }
    }
    return stem.empty() ? "Map" : stem;
}

bool Holds(const std::string& path, const std::string& bytes)
{
    std::string there;
    std::string ignored;
    return ReadWhole(path, &there, &ignored) && there == bytes;
}

/// What stands in the way of a new file: the path, in its own case of letters, of a file that is there or will be;
/// empty for nothing.
bool FindInTheWay(const std::string& folder, const std::string& name, const std::vector<MapFile>& files,
                  FolderNames* names, std::string* path, std::string* error)
{
    path->clear();
    const std::string lower = LowerText(folder + name);
    const auto prepared =
        std::find_if(files.begin(), files.end(), [&](const MapFile& file) { return LowerText(file.Path) == lower; });
    if (prepared != files.end()) {
        *path = prepared->Path;
        return true;
    }
    FileKind kind = FileKind::None;
    if (!KindOfFile(folder + name, &kind, error)) {
        return false;
    }
    if (kind != FileKind::None) {
        *path = folder + name;
    } else if (!FindFileAnyCase(folder, name, names, path)) {
        path->clear();
    }
    return true;
}

/// Finds the name under which a map can stand in the folder, and adds it to the files unless it is there.
bool AddMap(const std::string& stem, const std::string& ending, std::string bytes, const std::string& folder,
            std::string* map, std::vector<MapFile>* files, std::string* error)
{
    FolderNames names;
    for (int number = 1;; ++number) {
        *map = stem + (number > 1 ? "-" + std::to_string(number) : "") + ending;
        const std::string path = folder + Utf8FromCodePage(*map);
        std::string there;
        if (!FindInTheWay(folder, Utf8FromCodePage(*map), *files, &names, &there, error)) {
            return false;
        }
        if (there.empty()) {
            files->push_back({path, std::move(bytes)});
            return true;
        }
        const auto prepared =
            std::find_if(files->begin(), files->end(), [&](const MapFile& file) { return file.Path == there; });
        if (prepared != files->end() ? prepared->Bytes == bytes : Holds(there, bytes)) {
            *map = CodePageFromUtf8(FileNameOf(there));
            return true;
        }
    }
}

/// Where a map that a material names can be written: the path of a bitmap in the folder. Empty when it is there or will
/// be, and when it cannot be made.
std::string MissingMap(const std::string& map, const std::string& folder, const std::vector<MapFile>& files)
{
    const std::string given = Utf8FromCodePage(map);
    const std::string name = given.substr(given.find_last_of("/\\") + 1);
    if (!EqualsAnyCase(ExtensionOf(name), "bmp") || (name != given && FileExists(given)) ||
        StemOf(name) != CodePageFromUtf8(name.substr(0, name.rfind('.')))) {
        return {};
    }
    FolderNames names;
    std::string there;
    std::string error;
    return FindInTheWay(folder, name, files, &names, &there, &error) && there.empty() ? folder + name : std::string();
}

} // namespace

bool PngOfMaterial(const MvmMaterial& material, const std::string& folder, FolderNames* names, ExchangeImage* image,
                   bool* hasOpacity)
{
    const std::string colorFile = FindMap(material.ColorMap, folder, names);
    const std::string opacityFile = FindMap(material.OpacityMap, folder, names);
    if (colorFile.empty()) {
        return false;
    }
    Bitmap bitmap;
    std::string error;
    const BitmapResult result = LoadBitmap(colorFile, opacityFile, &bitmap, &error);
    if (result == BitmapResult::Failed) {
        LogLine("Texture \"" + colorFile + "\" cannot be used: " + error);
    }
    if (result != BitmapResult::Done) {
        return false;
    }
    const size_t channels = opacityFile.empty() ? 3 : 4;
    const auto width = static_cast<size_t>(bitmap.Width);
    std::vector<uint8_t> pixels;
    pixels.reserve(bitmap.Pixels.size() / 4 * channels);
    for (auto row = static_cast<size_t>(bitmap.Height); row-- > 0;) {
        for (size_t at = 4 * row * width; at < 4 * (row + 1) * width; at += 4) {
            const auto pixel = bitmap.Pixels.begin() + static_cast<std::ptrdiff_t>(at);
            pixels.insert(pixels.end(), pixel, pixel + static_cast<std::ptrdiff_t>(channels));
        }
    }
    bitmap = {.Width = bitmap.Width, .Height = bitmap.Height, .Pixels = {}};
    image->Bytes.clear();
    if (!EncodePng(pixels, bitmap.Width, bitmap.Height, static_cast<int>(channels), &image->Bytes)) {
        LogLine("Texture \"" + colorFile + "\" cannot be used: it is too large.");
        return false;
    }
    const std::string_view name = FileNameOf(colorFile);
    image->Name = name.substr(0, name.rfind('.'));
    if (hasOpacity != nullptr) {
        *hasOpacity = !opacityFile.empty();
    }
    return true;
}

bool MakeMaps(const ExchangeImage& image, const ExchangeMaterial& material, const std::string& folder,
              MvmMaterial* result, std::vector<MapFile>* files, std::vector<std::string>* notes, std::string* error)
{
    Picture picture;
    if (!PictureOf(image, &picture, notes, error)) {
        return false;
    }
    PutColorOver(material.Color, &picture);
    const std::string stem = StemOf(image.Name.empty() ? material.Name : image.Name);
    if (!AddMap(stem, ".bmp", BmpOf(picture, {2, 1, 0}), folder, &result->ColorMap, files, error)) {
        return false;
    }
    result->OpacityMap.clear();
    bool transparent = false;
    for (size_t i = 3; material.HasOpacity && i < picture.Pixels.size(); i += 4) {
        transparent = transparent || picture.Pixels[i] < 255;
    }
    return !transparent || AddMap(stem, "_alpha.bmp", BmpOf(picture, {3}), folder, &result->OpacityMap, files, error);
}

void AddNamedMaps(const ExchangeImage& image, const MvmMaterial& material, const std::string& folder,
                  std::vector<MapFile>* files)
{
    const std::string color = MissingMap(material.ColorMap, folder, *files);
    const std::string opacity = MissingMap(material.OpacityMap, folder, *files);
    Picture picture;
    std::vector<std::string> notes;
    std::string error;
    if ((color.empty() && opacity.empty()) || !PictureOf(image, &picture, &notes, &error)) {
        return;
    }
    if (!color.empty()) {
        files->push_back({color, BmpOf(picture, {2, 1, 0})});
    }
    if (!opacity.empty() && LowerText(opacity) != LowerText(color)) {
        files->push_back({opacity, BmpOf(picture, {3})});
    }
}

bool MakeColorMap(const ExchangeMaterial& material, const std::string& folder, MvmMaterial* result,
                  std::vector<MapFile>* files, std::string* error)
{
    constexpr int32_t side = 4;
    Picture picture{side, side, std::vector<uint8_t>(size_t{4} * side * side, 255)};
    PutColorOver(material.Color, &picture);
    result->OpacityMap.clear();
    return AddMap(StemOf(material.Name), ".bmp", BmpOf(picture, {2, 1, 0}), folder, &result->ColorMap, files, error);
}
