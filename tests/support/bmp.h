#pragma once

#include <cstdint>
#include <functional>
#include <string>

// BMP files for tests, put together byte by byte.
namespace bmp {

inline void Put(std::string* bytes, size_t offset, uint32_t value, size_t size)
{
    for (size_t i = 0; i < size; ++i) {
        (*bytes)[offset + i] = static_cast<char>(value >> (8 * i));
    }
}

inline std::string Header(int32_t width, int32_t height, uint32_t bits, int32_t paletteCount)
{
    std::string bytes(54, '\0');
    bytes[0] = 'B';
    bytes[1] = 'M';
    Put(&bytes, 14, 40, 4);
    Put(&bytes, 18, static_cast<uint32_t>(width), 4);
    Put(&bytes, 22, static_cast<uint32_t>(height), 4);
    Put(&bytes, 26, 1, 2);
    Put(&bytes, 28, bits, 4);
    Put(&bytes, 46, static_cast<uint32_t>(paletteCount), 4);
    return bytes;
}

/// An 8-bit file with a palette of `paletteCount` entries; entry i has the colour 0xRRGGBB that `color` gives.
inline std::string EightBits(int32_t width, int32_t height, int32_t paletteCount,
                             const std::function<uint32_t(int)>& color, const std::string& indices)
{
    std::string bytes = Header(width, height, 8, paletteCount);
    for (int i = 0; i < paletteCount; ++i) {
        bytes.append(4, '\0');
        Put(&bytes, bytes.size() - 4, color(i), 4);
    }
    return bytes + indices;
}

/// A 24-bit file; the pixels are blue, green, red.
inline std::string TrueColors(int32_t width, int32_t height, const std::string& pixels)
{
    return Header(width, height, 24, 0) + pixels;
}

inline uint32_t Gray(int i)
{
    return 0x010101U * static_cast<uint32_t>(i);
}

} // namespace bmp
