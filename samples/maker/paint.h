#pragma once

#include <string>
#include <vector>

#include "mesh.h"
#include "unwrap.h"

/// A picture of 24 bits; rows run upward, colours from 0 to 255.
struct Picture {
    int width, height;
    std::vector<V3> pixels;
    Picture(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h)) {}
    V3& At(int x, int y)
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    [[nodiscard]] const V3& At(int x, int y) const
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

/// Paints the hide where the half's faces lie in the picture, from their places on the body.
Picture PaintHide(const Mesh& half, const Unwrapping& unwrapping, const Skeleton& skeleton);
Picture PaintEye();
Picture PaintHorn();
Picture PaintMane();
/// Strands of hair, 255 where there is hair.
Picture PaintStrands();

/// Bitmap files: 24 bits a pixel; 8 bits with a palette of the picture's own colours; 8 bits with a grey ramp.
std::string TrueColourBitmap(const Picture& picture);
std::string PaletteBitmap(const Picture& picture);
std::string GreyBitmap(const Picture& picture);
