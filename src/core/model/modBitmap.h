#pragma once

#include <cstdint>
#include <string>
#include <vector>

// BMP colour and opacity maps, read at the fixed offsets of the classic layout and merged into one picture. A map that
// cannot be used is told to the Info Log. The header is looked at before anything else is read; the pixels are read in
// pieces, between which events are served. Memory is taken only for pixels that the file holds and that OpenGL can
// take.

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
    Stopped, ///< the user ended the operation
};

/// Reads an 8-bit or 24-bit colour map and puts the palette indices of an 8-bit opacity map of the same size into its
/// alpha; without one, `opacityFile` is empty and alpha 255. A picture with a side above LargestTextureSide comes with
/// that side halved until it fits, each pixel the mean of those that it stands for. After anything but Done the picture
/// is of no use.
BitmapResult LoadBitmap(const std::string& colorFile, const std::string& opacityFile, Bitmap* bitmap,
                        std::string* error);
