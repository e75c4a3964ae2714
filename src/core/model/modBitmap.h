#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// BMP colour and opacity maps, read at the fixed offsets of the classic layout and merged into one picture. A map that
// cannot be used is told to the Info Log. Nothing behind the end of the data is read, and memory is taken only for
// pixels that the file holds.

/// A picture as OpenGL takes it: red, green, blue, alpha, one byte each; rows in the order of the file.
struct Bitmap {
    int32_t Width = 0;
    int32_t Height = 0;
    std::vector<uint8_t> Pixels; ///< 4 x Width x Height
};

enum class BitmapResult {
    Done,
    Refused, ///< a line in the Info Log tells why
    Failed,  ///< the file cannot be read or lacks data: *error says why
};

/// Makes a picture with alpha 255 of the bytes of an 8-bit or 24-bit colour map. `colorFile` is for the log.
BitmapResult ReadColorMap(std::string_view bytes, const std::string& colorFile, Bitmap* bitmap, std::string* error);

/// Puts the palette indices of an 8-bit opacity map of the same size into the picture's alpha. The names are for the log.
BitmapResult MergeOpacityMap(std::string_view bytes, const std::string& opacityFile, const std::string& colorFile,
                             Bitmap* bitmap, std::string* error);

/// Reads both files and merges them; `opacityFile` may be empty. After anything but Done the picture is of no use.
BitmapResult LoadBitmap(const std::string& colorFile, const std::string& opacityFile, Bitmap* bitmap,
                        std::string* error);
