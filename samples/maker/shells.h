#pragma once

#include <vector>

#include "field.h"
#include "mesh.h"

/// Closed and open parts that sit on the body, all on the side X >= 0, ready to be appended to the half.

enum MaterialNumber { hideMaterial, eyeMaterial, hornMaterial, clawMaterial, maneMaterial };

/// One ring of a swept shell: an oval around `at`, spanned by `side` and `front`; `cup` bends its edges to the front.
struct Ring {
    V3 at, side, front;
    double wide, deep, cup = 0;
};

/// A closed shell through the rings, with a point at each end. U runs along it; V runs from its front (0) to its back
/// (1), alike on both sides.
Mesh Sweep(const std::vector<Ring>& rings, V3 first, V3 last, int around, int bone, int material);
/// A ball that looks along `look`, with the picture of the iris on its front.
Mesh Eye(V3 at, V3 look, double radius, int bone);
Mesh Horn(const Skeleton& skeleton);
Mesh Ear(const Skeleton& skeleton);
Mesh Claws(const Skeleton& skeleton);
/// Strips of hair along the neck and around the end of the tail, seen from both sides.
Mesh Mane(const Body& body, const Skeleton& skeleton);
