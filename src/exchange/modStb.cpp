#include "modStb.h"

#include <cstdlib>
#include <new>

namespace {

/// The largest block that the decoder gets.
size_t LargestBlock = 0;

void* BlockUpTo(void* block, size_t size)
{
    return size > LargestBlock ? nullptr : std::realloc(block, size);
}

/// The writer does not look whether it got its memory.
void* BlockOrThrow(void* block, size_t size)
{
    void* const got = std::realloc(block, size);
    if (got == nullptr) {
        throw std::bad_alloc();
    }
    return got;
}

} // namespace

#define STBI_MALLOC(size) BlockUpTo(nullptr, size)
#define STBI_REALLOC(block, size) BlockUpTo(block, size)
#define STBI_FREE(block) std::free(block)
#define STBI_NO_STDIO
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_LINEAR
#define STBI_MAX_DIMENSIONS 16384
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>

#define STBIR_ASSERT(condition) ((void)0)
#define STB_IMAGE_RESIZE_STATIC
#define STB_IMAGE_RESIZE_IMPLEMENTATION
#include <stb/stb_image_resize.h>

#define STBIW_MALLOC(size) BlockOrThrow(nullptr, size)
#define STBIW_REALLOC(block, size) BlockOrThrow(block, size)
#define STBIW_FREE(block) std::free(block)
#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace {

const stbi_uc* BytesOf(std::string_view file)
{
    return reinterpret_cast<const stbi_uc*>(file.data());
}

int LengthOf(std::string_view file)
{
    return file.size() > INT32_MAX ? 0 : static_cast<int>(file.size());
}

} // namespace

bool PictureSize(std::string_view file, int32_t* width, int32_t* height)
{
    constexpr size_t forItself = size_t{1} << 20;
    LargestBlock = 2 * file.size() + forItself;
    int channels = 0;
    return stbi_info_from_memory(BytesOf(file), LengthOf(file), width, height, &channels) != 0;
}

bool DecodePicture(std::string_view file, Picture* picture)
{
    int32_t width = 0;
    int32_t height = 0;
    if (!PictureSize(file, &width, &height)) {
        return false;
    }
    // Eight bytes for a pixel of 16 bits, sides rounded up to whole blocks; the compressed data are collected too.
    constexpr size_t block = 64;
    LargestBlock += 8 * (static_cast<size_t>(width) + block) * (static_cast<size_t>(height) + block);
    int channels = 0;
    stbi_uc* const pixels =
        stbi_load_from_memory(BytesOf(file), LengthOf(file), &picture->Width, &picture->Height, &channels, 4);
    if (pixels == nullptr) {
        return false;
    }
    picture->Pixels.assign(pixels, pixels + 4 * static_cast<size_t>(width) * static_cast<size_t>(height));
    std::free(pixels);
    return true;
}

bool ScalePicture(const Picture& from, int32_t width, int32_t height, Picture* to)
{
    *to = {width, height, std::vector<uint8_t>(4 * static_cast<size_t>(width) * static_cast<size_t>(height))};
    return stbir_resize_uint8_srgb(from.Pixels.data(), from.Width, from.Height, 0, to->Pixels.data(), width, height, 0,
                                   4, 3, 0) != 0;
}

bool EncodePng(const std::vector<uint8_t>& pixels, int32_t width, int32_t height, int channels, std::string* file)
{
    constexpr size_t largest = size_t{1} << 28;
    const auto append = [](void* context, void* data, int size) {
        static_cast<std::string*>(context)->append(static_cast<const char*>(data), static_cast<size_t>(size));
    };
    return pixels.size() <= largest &&
           stbi_write_png_to_func(append, file, width, height, channels, pixels.data(), 0) != 0;
}
