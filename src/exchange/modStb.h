#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// PNG and JPEG in memory.

/// Red, green, blue, alpha, one byte each; the top row first.
struct Picture {
    int32_t Width = 0;
    int32_t Height = 0;
    std::vector<uint8_t> Pixels{};
};

/// What the head of a PNG or JPEG file says of its size; false for other files.
bool PictureSize(std::string_view file, int32_t* width, int32_t* height);
/// Decodes a file whose size is known. Takes memory in proportion to that size and the file's, whatever the file holds;
/// false for a damaged one.
bool DecodePicture(std::string_view file, Picture* picture);
bool ScalePicture(const Picture& from, int32_t width, int32_t height, Picture* to);
/// Pixels of 3 or 4 bytes, the top row first; at most 256 MB.
bool EncodePng(const std::vector<uint8_t>& pixels, int32_t width, int32_t height, int channels, std::string* file);
