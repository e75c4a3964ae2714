#include "model/modBitmap.h"

#include <algorithm>
#include <array>
#include <functional>
#include <new>
#include <stdexcept>
#include <string_view>

#include "app/modBytes.h"
#include "app/modFrontEnd.h"
#include "app/modMath.h"
#include "modFiles.h"

namespace {

using Color = std::array<uint8_t, 3>; // red, green, blue

// Places in a file with a file header of 14 bytes and an info header of 40 bytes.
constexpr size_t widthOffset = 18;
constexpr size_t heightOffset = 22;
constexpr size_t bitsOffset = 28;
constexpr size_t paletteCountOffset = 46;
constexpr size_t dataOffset = 54;
constexpr int32_t fullPalette = 256;
constexpr size_t paletteEntrySize = 4;
constexpr size_t opacityPixelsOffset = dataOffset + paletteEntrySize * fullPalette;
constexpr size_t pieceSize = size_t{3} << 17; ///< a whole number of pixels of one and of three bytes

/// A map that is read from its start on, with its header as far as the file has one.
struct MapFile {
    OpenedFile File{};
    std::string Header{};
};

struct MapSize {
    int32_t Width = 0, Height = 0;
};

BitmapResult Fail(const char* description, std::string* error)
{
    *error = description;
    return BitmapResult::Failed;
}

BitmapResult FailCutShort(std::string* error)
{
    return Fail("The file ends before its data is complete.", error);
}

void LogAbout(const std::string& lead, const std::string& file, const std::string& tail)
{
    LogLine(lead + " \"" + file + "\" " + tail);
}

BitmapResult Refuse(const std::string& lead, const std::string& file, const std::string& tail)
{
    LogAbout(lead, file, tail);
    return BitmapResult::Refused;
}

bool OpenMap(const std::string& path, MapFile* map, std::string* error)
{
    if (!OpenForReading(path, &map->File, error)) {
        return false;
    }
    map->Header.resize(dataOffset);
    size_t count = 0;
    if (!ReadOn(&map->File, map->Header.data(), dataOffset, &count, error)) {
        return false;
    }
    map->Header.resize(count);
    return true;
}

/// Reads a little-endian number of 2 or 4 bytes of the header; false when the file ends before it.
template <typename T>
bool ReadNumber(const MapFile& map, size_t offset, T* value)
{
    if (map.Header.size() < offset + sizeof(T)) {
        return false;
    }
    *value = LittleEndian<T>(map.Header, offset);
    return true;
}

bool ReadSize(const MapFile& map, MapSize* size)
{
    return ReadNumber(map, widthOffset, &size->Width) && ReadNumber(map, heightOffset, &size->Height);
}

/// True when `count` entries of `size` bytes fit between the offset and the end of the file.
bool Holds(const MapFile& map, uint64_t offset, uint64_t count, uint64_t size)
{
    const uint64_t length = map.File.Expected;
    return offset <= length && count <= (length - offset) / size;
}

uint64_t PixelCount(const MapSize& size)
{
    return static_cast<uint64_t>(size.Width) * static_cast<uint64_t>(size.Height);
}

/// Reads the next `size` bytes and hands them to `take` in pieces.
BitmapResult ReadPieces(MapFile* map, uint64_t size, const std::function<void(std::string_view)>& take,
                        std::string* error)
{
    std::string piece(static_cast<size_t>(std::min<uint64_t>(size, pieceSize)), '\0');
    while (size > 0) {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(size, pieceSize));
        size_t count = 0;
        if (!ReadOn(&map->File, piece.data(), wanted, &count, error)) {
            return BitmapResult::Failed;
        }
        if (count < wanted) {
            return FailCutShort(error);
        }
        take(std::string_view(piece).substr(0, wanted));
        size -= wanted;
        if (!ProgressServe()) {
            return BitmapResult::Stopped;
        }
    }
    return BitmapResult::Done;
}

int HalvingsOf(int32_t side)
{
    const int32_t largest = std::max(LargestTextureSide(), 1);
    int halvings = 0;
    while ((side >> halvings) > largest) {
        ++halvings;
    }
    return halvings;
}

/// Puts the pixels of a map, in their order, into some channels of a picture.
struct PixelSink {
    Bitmap* To = nullptr;
    MapSize Size{}; ///< of the map: powers of two
    size_t First = 0, Channels = 0;
    int HalvingsX = 0, HalvingsY = 0;
    uint64_t At = 0;              ///< pixels taken
    std::vector<uint64_t> Sums{}; ///< of the row of the picture under way, where it is smaller than the map
};

PixelSink MakeSink(const MapSize& size, size_t first, size_t channels, Bitmap* bitmap)
{
    PixelSink sink{.To = bitmap,
                   .Size = size,
                   .First = first,
                   .Channels = channels,
                   .HalvingsX = HalvingsOf(size.Width),
                   .HalvingsY = HalvingsOf(size.Height)};
    bitmap->Width = size.Width >> sink.HalvingsX;
    bitmap->Height = size.Height >> sink.HalvingsY;
    bitmap->Pixels.resize(4 * static_cast<size_t>(bitmap->Width) * static_cast<size_t>(bitmap->Height), 255);
    if (sink.HalvingsX + sink.HalvingsY > 0) {
        sink.Sums.resize(static_cast<size_t>(bitmap->Width) * channels);
    }
    return sink;
}

/// Puts the means of a row that is complete into the picture.
void PutRow(uint64_t row, PixelSink* sink)
{
    const int halvings = sink->HalvingsX + sink->HalvingsY;
    uint8_t* pixel = &sink->To->Pixels[4 * row * static_cast<uint64_t>(sink->To->Width)];
    for (size_t i = 0; i < sink->Sums.size(); i += sink->Channels, pixel += 4) {
        for (size_t channel = 0; channel < sink->Channels; ++channel) {
            const uint64_t sum = sink->Sums[i + channel] + (uint64_t{1} << (halvings - 1));
            pixel[sink->First + channel] = static_cast<uint8_t>(sum >> halvings);
        }
    }
    std::fill(sink->Sums.begin(), sink->Sums.end(), 0);
}

/// Takes the next `count` pixels; `valuesAt(i)` gives an array with one value for each channel.
template <typename ValuesAt>
void PutPixels(uint64_t count, const ValuesAt& valuesAt, PixelSink* sink)
{
    const auto width = static_cast<uint64_t>(sink->Size.Width);
    for (uint64_t done = 0; done < count;) {
        const uint64_t x = sink->At % width;
        const uint64_t end = std::min(done + width - x, count);
        if (sink->Sums.empty()) {
            uint8_t* pixel = &sink->To->Pixels[4 * sink->At + sink->First];
            for (uint64_t i = done; i < end; ++i, pixel += 4) {
                const auto values = valuesAt(i);
                std::copy(values.begin(), values.end(), pixel);
            }
        } else {
            for (uint64_t i = done; i < end; ++i) {
                const auto values = valuesAt(i);
                uint64_t* sums = &sink->Sums[((x + i - done) >> sink->HalvingsX) * values.size()];
                for (size_t channel = 0; channel < values.size(); ++channel) {
                    sums[channel] += values[channel];
                }
            }
        }
        const uint64_t row = sink->At / width + 1;
        sink->At += end - done;
        if (!sink->Sums.empty() && sink->At % width == 0 && row % (uint64_t{1} << sink->HalvingsY) == 0) {
            PutRow((row - 1) >> sink->HalvingsY, sink);
        }
        done = end;
    }
}

Color ColorAt(std::string_view bytes, size_t blueOffset)
{
    const auto byte = [&](size_t offset) { return static_cast<uint8_t>(bytes[blueOffset + offset]); };
    return {byte(2), byte(1), byte(0)};
}

BitmapResult ReadTrueColors(MapFile* map, const MapSize& size, Bitmap* bitmap, std::string* error)
{
    const uint64_t count = PixelCount(size);
    if (!Holds(*map, dataOffset, count, 3)) {
        return FailCutShort(error);
    }
    PixelSink sink = MakeSink(size, 0, 3, bitmap);
    const auto put = [&sink](std::string_view piece) {
        PutPixels(
            piece.size() / 3, [&](uint64_t i) { return ColorAt(piece, 3 * i); }, &sink);
    };
    return ReadPieces(map, 3 * count, put, error);
}

/// Reads the palette. An index has one byte, so no more than 256 colours can be asked for; those that the palette lacks
/// are black.
BitmapResult ReadPalette(MapFile* map, uint64_t count, std::array<Color, fullPalette>* colors, std::string* error)
{
    size_t entry = 0;
    const auto put = [&](std::string_view piece) {
        for (size_t at = 0; at < piece.size() && entry < colors->size(); at += paletteEntrySize) {
            (*colors)[entry++] = ColorAt(piece, at);
        }
    };
    const BitmapResult result = ReadPieces(map, paletteEntrySize * count, put, error);
    constexpr Color blue = {0, 0, 255};
    constexpr Color darkGray = {63, 63, 63};
    if (colors->front() == blue) {
        colors->front() = darkGray;
    }
    return result;
}

BitmapResult ReadPaletteColors(MapFile* map, const MapSize& size, const std::string& colorFile, Bitmap* bitmap,
                               std::string* error)
{
    int32_t entries = 0;
    if (!ReadNumber(*map, paletteCountOffset, &entries)) {
        return FailCutShort(error);
    }
    if (entries == 0) {
        LogAbout("Texture", colorFile, "is corrupted, see readme FAQ for details.");
        entries = fullPalette;
    }
    if (entries < 0) {
        return Fail("The number of palette entries is negative.", error);
    }
    const auto paletteCount = static_cast<uint64_t>(entries);
    const uint64_t count = PixelCount(size);
    if (!Holds(*map, dataOffset, paletteCount, paletteEntrySize) ||
        !Holds(*map, dataOffset + paletteEntrySize * paletteCount, count, 1)) {
        return FailCutShort(error);
    }
    std::array<Color, fullPalette> colors{};
    const BitmapResult result = ReadPalette(map, paletteCount, &colors, error);
    if (result != BitmapResult::Done) {
        return result;
    }
    PixelSink sink = MakeSink(size, 0, 3, bitmap);
    const auto put = [&](std::string_view piece) {
        PutPixels(
            piece.size(), [&](uint64_t i) { return colors[static_cast<uint8_t>(piece[i])]; }, &sink);
    };
    return ReadPieces(map, count, put, error);
}

BitmapResult ReadColorMap(const std::string& colorFile, MapSize* size, Bitmap* bitmap, std::string* error)
{
    MapFile map;
    if (!OpenMap(colorFile, &map, error)) {
        return BitmapResult::Failed;
    }
    if (!ReadSize(map, size)) {
        return FailCutShort(error);
    }
    if (!IsPowerOfTwo(size->Width) || !IsPowerOfTwo(size->Height)) {
        return Refuse("Bitmap", colorFile, "does not have power of two dimensions.");
    }
    int16_t bits = 0;
    if (!ReadNumber(map, bitsOffset, &bits)) {
        return FailCutShort(error);
    }
    switch (bits) {
    case 8:
        return ReadPaletteColors(&map, *size, colorFile, bitmap, error);
    case 24:
        return ReadTrueColors(&map, *size, bitmap, error);
    default:
        return Refuse("Texture", colorFile, "is not 8-bit or 24-bit.");
    }
}

BitmapResult MergeOpacityMap(const std::string& opacityFile, const std::string& colorFile, const MapSize& colorSize,
                             Bitmap* bitmap, std::string* error)
{
    MapFile map;
    if (!OpenMap(opacityFile, &map, error)) {
        return BitmapResult::Failed;
    }
    MapSize size;
    int32_t bits = 0; // four bytes, so that a compressed map does not pass for 8
    int32_t entries = 0;
    if (!ReadSize(map, &size) || !ReadNumber(map, bitsOffset, &bits) ||
        !ReadNumber(map, paletteCountOffset, &entries)) {
        return FailCutShort(error);
    }
    if (size.Width != colorSize.Width) {
        return Refuse("Texture", opacityFile, "width does not match \"" + colorFile + "\".");
    }
    if (size.Height != colorSize.Height) {
        return Refuse("Texture", opacityFile, "height does not match \"" + colorFile + "\".");
    }
    if (bits != 8) {
        return Refuse("Texture", opacityFile, "is not 8-bit.");
    }
    if (entries != fullPalette) {
        return Refuse("Texture", opacityFile, "does not have 256 palette entries.");
    }
    const uint64_t count = PixelCount(size);
    if (!Holds(map, opacityPixelsOffset, count, 1)) {
        return FailCutShort(error);
    }
    const BitmapResult result = ReadPieces(
        &map, opacityPixelsOffset - dataOffset, [](std::string_view /*palette*/) {}, error);
    if (result != BitmapResult::Done) {
        return result;
    }
    PixelSink sink = MakeSink(size, 3, 1, bitmap);
    const auto put = [&sink](std::string_view piece) {
        PutPixels(
            piece.size(), [&](uint64_t i) { return std::array{static_cast<uint8_t>(piece[i])}; }, &sink);
    };
    return ReadPieces(&map, count, put, error);
}

} // namespace

BitmapResult LoadBitmap(const std::string& colorFile, const std::string& opacityFile, Bitmap* bitmap,
                        std::string* error)
{
    try {
        MapSize size;
        const BitmapResult result = ReadColorMap(colorFile, &size, bitmap, error);
        if (result != BitmapResult::Done || opacityFile.empty()) {
            return result;
        }
        return MergeOpacityMap(opacityFile, colorFile, size, bitmap, error);
    } catch (const std::bad_alloc&) {
        return Fail("Not enough memory.", error);
    } catch (const std::length_error&) {
        return Fail("Not enough memory.", error);
    }
}
