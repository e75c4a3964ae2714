#pragma once

#include <string>
#include <vector>

#include "vec.h"

/// Height of the ground in the space that the creature is made in.
constexpr double sole = -0.35;

/// A joint in the space that the creature is made in. parent and partner are indices into the skeleton, parent -1 for a
/// root; a bone on the middle plane is its own partner.
struct Joint {
    std::string name, label, extra;
    V3 at;
    int parent = -1, partner = -1;
    bool shadow = false;
};

using Skeleton = std::vector<Joint>;

/// Ordinary bones first, then shadow bones. Right is X > 0.
Skeleton MakeSkeleton();

/// The index of the bone whose name begins with `stem` and is followed by its two digits.
int FindBone(const Skeleton& skeleton, const std::string& stem);
