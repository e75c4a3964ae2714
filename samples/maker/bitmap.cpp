#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "paint.h"

namespace {

using Colour = std::array<uint8_t, 3>; // blue, green, red: the order of the file

Colour Bytes(V3 colour)
{
    const auto byte = [](double value) { return static_cast<uint8_t>(std::clamp(std::nearbyint(value), 0.0, 255.0)); };
    return {byte(colour.z), byte(colour.y), byte(colour.x)};
}

void Put(uint32_t value, int bytes, std::string* to)
{
    for (int i = 0; i < bytes; ++i) {
        to->push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
    }
}

// File header and info header; a palette of 256 entries follows for 8 bits a pixel.
std::string Header(const Picture& picture, uint32_t bits)
{
    const uint32_t colours = bits == 8 ? 256 : 0;
    const auto pixels = static_cast<uint32_t>(picture.width * picture.height) * bits / 8;
    const uint32_t start = 54 + 4 * colours;
    std::string header = "BM";
    Put(start + pixels, 4, &header);
    Put(0, 4, &header);
    Put(start, 4, &header);
    Put(40, 4, &header);
    Put(static_cast<uint32_t>(picture.width), 4, &header);
    Put(static_cast<uint32_t>(picture.height), 4, &header);
    Put(1, 2, &header);
    Put(bits, 2, &header);
    Put(0, 4, &header);
    Put(pixels, 4, &header);
    Put(2835, 4, &header);
    Put(2835, 4, &header);
    Put(colours, 4, &header);
    Put(0, 4, &header);
    return header;
}

void PutColour(const Colour& colour, std::string* to)
{
    for (const uint8_t part : colour) {
        to->push_back(static_cast<char>(part));
    }
}

// Halves the box of colours with the longest side until there are 256, and takes the mean of each.
std::vector<Colour> Palette(const Picture& picture)
{
    std::vector<std::vector<Colour>> boxes(1);
    for (const V3& pixel : picture.pixels) {
        boxes[0].push_back(Bytes(pixel));
    }
    const auto longest = [](const std::vector<Colour>& box, size_t* axis) {
        int best = -1;
        for (size_t k = 0; k < 3; ++k) {
            const auto [low, high] =
                std::minmax_element(box.begin(), box.end(), [&](Colour a, Colour b) { return a[k] < b[k]; });
            const int length = (*high)[k] - (*low)[k];
            *axis = length > best ? k : *axis;
            best = std::max(best, length);
        }
        return best;
    };
    while (boxes.size() < 256) {
        size_t widest = 0;
        size_t axis = 0;
        int length = 0;
        for (size_t i = 0; i < boxes.size(); ++i) {
            size_t own = 0;
            const int side = longest(boxes[i], &own);
            if (side > length) {
                length = side;
                widest = i;
                axis = own;
            }
        }
        if (length == 0) {
            break;
        }
        std::vector<Colour>& box = boxes[widest];
        std::sort(box.begin(), box.end(),
                  [&](Colour a, Colour b) { return a[axis] != b[axis] ? a[axis] < b[axis] : a < b; });
        const auto middle = box.begin() + static_cast<std::ptrdiff_t>(box.size() / 2);
        std::vector<Colour> upper(middle, box.end());
        box.erase(middle, box.end());
        boxes.push_back(std::move(upper));
    }
    std::vector<Colour> palette;
    for (const std::vector<Colour>& box : boxes) {
        std::array<size_t, 3> sum{};
        for (const Colour& colour : box) {
            for (size_t k = 0; k < 3; ++k) {
                sum[k] += colour[k];
            }
        }
        Colour mean{};
        for (size_t k = 0; k < 3; ++k) {
            mean[k] = static_cast<uint8_t>(sum[k] / box.size());
        }
        palette.push_back(mean);
    }
    palette.resize(256);
    return palette;
}

} // namespace

std::string TrueColourBitmap(const Picture& picture)
{
    std::string file = Header(picture, 24);
    for (const V3& pixel : picture.pixels) {
        PutColour(Bytes(pixel), &file);
    }
    return file;
}

std::string PaletteBitmap(const Picture& picture)
{
    const std::vector<Colour> palette = Palette(picture);
    std::string file = Header(picture, 8);
    for (const Colour& colour : palette) {
        PutColour(colour, &file);
        file.push_back(0);
    }
    for (const V3& pixel : picture.pixels) {
        const Colour wanted = Bytes(pixel);
        const auto far = [&](Colour a) {
            int sum = 0;
            for (size_t k = 0; k < 3; ++k) {
                sum += (a[k] - wanted[k]) * (a[k] - wanted[k]);
            }
            return sum;
        };
        const auto best =
            std::min_element(palette.begin(), palette.end(), [&](Colour a, Colour b) { return far(a) < far(b); });
        file.push_back(static_cast<char>(best - palette.begin()));
    }
    return file;
}

std::string GreyBitmap(const Picture& picture)
{
    std::string file = Header(picture, 8);
    for (uint8_t i = 0;; ++i) {
        PutColour({i, i, i}, &file);
        file.push_back(0);
        if (i == 255) {
            break;
        }
    }
    for (const V3& pixel : picture.pixels) {
        file.push_back(static_cast<char>(Bytes(pixel)[0]));
    }
    return file;
}
