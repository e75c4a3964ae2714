#pragma once

#include <array>
#include <vector>

#include "field.h"
#include "mesh.h"

/// The parts of the hide's picture.
enum Chart { trunkChart, headChart, armChart, legChart, earChart, chartCount };

/// Size of the hide's picture in pixels.
constexpr int hideWidth = 1024;
constexpr int hideHeight = 512;

/// What the painter needs to know of a face's corners beside the mesh: the part of the picture, and for each texture
/// coordinate its place within the part.
struct Unwrapping {
    std::vector<Chart> chart; ///< for each face
    std::vector<V2> raw;      ///< for each texture coordinate
};

/// The part of the picture that shows the hide over a bone.
Chart ChartOf(const Skeleton& skeleton, int bone);

/// Gives the body's half its texture coordinates: each part is rolled out around its own axis. Legs are cut open along
/// their inside; head and trunk lie there with one flank, which is the other's image.
Unwrapping UnwrapBody(const Skeleton& skeleton, Mesh* half);
/// For each of the places, by the chart but for the ear's: the way along the part's axis and around it (0 above or
/// outside, 1 below or inside). Patterns go by all of them, so that they blend from part to part.
std::vector<std::array<V2, earChart>> PlacesAround(const Skeleton& skeleton, const std::vector<V3>& places);
/// Moves an ear's own coordinates into its place in the picture and notes them.
void UnwrapEar(Mesh* ear, Unwrapping* unwrapping);
