#include "model/modBitmap.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

#include "app/modBytes.h"
#include "app/modFrontEnd.h"
#include "app/modMath.h"
#include "modFiles.h"

namespace {

using Color = std::array<uint8_t, 4>; // red, green, blue, alpha

// Places in a file with a file header of 14 bytes and an info header of 40 bytes.
constexpr size_t widthOffset = 18;
constexpr size_t heightOffset = 22;
constexpr size_t bitsOffset = 28;
constexpr size_t paletteCountOffset = 46;
constexpr size_t dataOffset = 54;
constexpr int32_t fullPalette = 256;
constexpr size_t paletteEntrySize = 4;
constexpr size_t opacityPixelsOffset = dataOffset + paletteEntrySize * fullPalette;

const char* const cutShort = "The file ends before its data is complete.";

uint8_t ByteAt(std::string_view bytes, size_t offset)
{
    return static_cast<uint8_t>(bytes[offset]);
}

/// Reads a little-endian number of 2 or 4 bytes; false when the data ends before it.
template <typename T>
bool ReadNumber(std::string_view bytes, size_t offset, T* value)
{
    if (bytes.size() < offset + sizeof(T)) {
        return false;
    }
    *value = LittleEndian<T>(bytes, offset);
    return true;
}

bool ReadSize(std::string_view bytes, Bitmap* bitmap)
{
    return ReadNumber(bytes, widthOffset, &bitmap->Width) && ReadNumber(bytes, heightOffset, &bitmap->Height);
}

/// True when `count` entries of `size` bytes fit between the offset and the end of the data.
bool Holds(std::string_view bytes, uint64_t offset, uint64_t count, uint64_t size)
{
    return offset <= bytes.size() && count <= (bytes.size() - offset) / size;
}

uint64_t PixelCount(const Bitmap& bitmap)
{
    return static_cast<uint64_t>(bitmap.Width) * static_cast<uint64_t>(bitmap.Height);
}

BitmapResult Fail(const char* description, std::string* error)
{
    *error = description;
    return BitmapResult::Failed;
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

void PutPixel(uint8_t* pixel, std::string_view bytes, size_t blueOffset)
{
    pixel[0] = ByteAt(bytes, blueOffset + 2);
    pixel[1] = ByteAt(bytes, blueOffset + 1);
    pixel[2] = ByteAt(bytes, blueOffset);
    pixel[3] = 255;
}

BitmapResult ReadTrueColors(std::string_view bytes, Bitmap* bitmap, std::string* error)
{
    const uint64_t count = PixelCount(*bitmap);
    if (!Holds(bytes, dataOffset, count, 3)) {
        return Fail(cutShort, error);
    }
    bitmap->Pixels.resize(4 * count);
    for (size_t i = 0; i < count; ++i) {
        PutPixel(&bitmap->Pixels[4 * i], bytes, dataOffset + 3 * i);
    }
    return BitmapResult::Done;
}

BitmapResult ReadPaletteColors(std::string_view bytes, const std::string& colorFile, Bitmap* bitmap, std::string* error)
{
    int32_t entries = 0;
    if (!ReadNumber(bytes, paletteCountOffset, &entries)) {
        return Fail(cutShort, error);
    }
    if (entries == 0) {
        LogAbout("Texture", colorFile, "is corrupted, see readme FAQ for details.");
        entries = fullPalette;
    }
    if (entries < 0) {
        return Fail("The number of palette entries is negative.", error);
    }
    const size_t paletteCount = static_cast<size_t>(entries);
    if (!Holds(bytes, dataOffset, paletteCount, paletteEntrySize)) {
        return Fail(cutShort, error);
    }
    const size_t pixelsOffset = dataOffset + paletteEntrySize * paletteCount;
    const uint64_t count = PixelCount(*bitmap);
    if (!Holds(bytes, pixelsOffset, count, 1)) {
        return Fail(cutShort, error);
    }

    // An index has one byte, so no more than 256 colours can be asked for; those the palette lacks are black.
    constexpr Color black = {0, 0, 0, 255};
    constexpr Color blue = {0, 0, 255, 255};
    constexpr Color darkGray = {63, 63, 63, 255};
    std::array<Color, fullPalette> colors;
    colors.fill(black);
    for (size_t i = 0; i < std::min(paletteCount, colors.size()); ++i) {
        PutPixel(colors[i].data(), bytes, dataOffset + paletteEntrySize * i);
    }
    if (colors[0] == blue) {
        colors[0] = darkGray;
    }

    bitmap->Pixels.resize(4 * count);
    for (size_t i = 0; i < count; ++i) {
        const Color& color = colors[ByteAt(bytes, pixelsOffset + i)];
        std::copy(color.begin(), color.end(), &bitmap->Pixels[4 * i]);
    }
    return BitmapResult::Done;
}

} // namespace

BitmapResult ReadColorMap(std::string_view bytes, const std::string& colorFile, Bitmap* bitmap, std::string* error)
{
    if (!ReadSize(bytes, bitmap)) {
        return Fail(cutShort, error);
    }
    if (!IsPowerOfTwo(bitmap->Width) || !IsPowerOfTwo(bitmap->Height)) {
        return Refuse("Bitmap", colorFile, "does not have power of two dimensions.");
    }
    int16_t bits = 0;
    if (!ReadNumber(bytes, bitsOffset, &bits)) {
        return Fail(cutShort, error);
    }
    switch (bits) {
    case 8:
        return ReadPaletteColors(bytes, colorFile, bitmap, error);
    case 24:
        return ReadTrueColors(bytes, bitmap, error);
    default:
        return Refuse("Texture", colorFile, "is not 8-bit or 24-bit.");
    }
}

BitmapResult MergeOpacityMap(std::string_view bytes, const std::string& opacityFile, const std::string& colorFile,
                             Bitmap* bitmap, std::string* error)
{
    Bitmap opacity;
    int32_t bits = 0; // four bytes, so that a compressed map does not pass for 8
    int32_t entries = 0;
    if (!ReadSize(bytes, &opacity) || !ReadNumber(bytes, bitsOffset, &bits) ||
        !ReadNumber(bytes, paletteCountOffset, &entries)) {
        return Fail(cutShort, error);
    }
    if (opacity.Width != bitmap->Width) {
        return Refuse("Texture", opacityFile, "width does not match \"" + colorFile + "\".");
    }
    if (opacity.Height != bitmap->Height) {
        return Refuse("Texture", opacityFile, "height does not match \"" + colorFile + "\".");
    }
    if (bits != 8) {
        return Refuse("Texture", opacityFile, "is not 8-bit.");
    }
    if (entries != fullPalette) {
        return Refuse("Texture", opacityFile, "does not have 256 palette entries.");
    }
    const uint64_t count = PixelCount(*bitmap);
    if (!Holds(bytes, opacityPixelsOffset, count, 1)) {
        return Fail(cutShort, error);
    }
    for (size_t i = 0; i < count; ++i) {
        bitmap->Pixels[4 * i + 3] = ByteAt(bytes, opacityPixelsOffset + i);
    }
    return BitmapResult::Done;
}

BitmapResult LoadBitmap(const std::string& colorFile, const std::string& opacityFile, Bitmap* bitmap,
                        std::string* error)
{
    try {
        std::string bytes;
        if (!ReadWhole(colorFile, &bytes, error)) {
            return BitmapResult::Failed;
        }
        const BitmapResult result = ReadColorMap(bytes, colorFile, bitmap, error);
        if (result != BitmapResult::Done || opacityFile.empty()) {
            return result;
        }
        if (!ReadWhole(opacityFile, &bytes, error)) {
            return BitmapResult::Failed;
        }
        return MergeOpacityMap(bytes, opacityFile, colorFile, bitmap, error);
    } catch (const std::bad_alloc&) {
        return Fail("Not enough memory.", error);
    } catch (const std::length_error&) {
        return Fail("Not enough memory.", error);
    }
}
