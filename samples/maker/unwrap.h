#pragma once

#include <array>
#include <vector>

#include "field.h"
#include "mesh.h"

/// The parts of the hide's picture.
enum Chart { trunkChart, headChart, armChart, legChart, earChart, chartCount };

/// Size of the hide's picture in pixels.
constexpr int hideWidth = 512;
constexpr int hideHeight = 256;

/// What the painter needs to know of a face's corners beside the mesh: the part of the picture, and for each texture
/// coordinate the way along the part's axis (in units of the skin) and around it (0 above or outside, 1 below or inside).
struct Unwrapping {
    std::vector<Chart> chart; ///< for each face
    std::vector<V2> raw;      ///< for each texture coordinate
};

/// Gives the body's half its texture coordinates: each part is rolled out around its own axis, and both of its flanks
/// share their place, so that there are seams only where parts meet.
Unwrapping UnwrapBody(const Skeleton& skeleton, Mesh* half);
/// Way along and around the trunk for any place, so that a limb can go on with the trunk's pattern.
std::vector<V2> TrunkPlaces(const Skeleton& skeleton, const std::vector<V3>& places);
/// Moves an ear's own coordinates into its place in the picture and notes them.
void UnwrapEar(Mesh* ear, Unwrapping* unwrapping);
