#pragma once

#include <vector>

#include "field.h"
#include "mesh.h"

/// Distances between the planes of the grid that the surface is cut with. The fine ones lie through paws, head and
/// tail.
struct GridSteps {
    double x, y, z;
    double fineY, fineZ;
};

/// The half with X >= 0 of a body's surface as a mesh: vertices on the surface, one normal for each vertex, bones by
/// the nearest limb. Vertices that the middle plane cuts lie on it exactly. Texture coordinates are left out.
Mesh HalfSurface(const Body& body, const Skeleton& skeleton, const GridSteps& steps);
