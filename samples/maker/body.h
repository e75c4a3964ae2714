#pragma once

#include <string>
#include <vector>

#include "vec.h"

/// The proportions that tell one creature from another. 1 is the Vorrel's own.
struct BodyPlan {
    double legs = 1, neck = 1, tail = 1, trunk = 1;
    int tailBones = 5;
};

/// A joint in the skin's own space. parent and partner are indices into the skeleton, parent -1 for a root; a bone on
/// the middle plane is its own partner.
struct Joint {
    std::string name, label, extra;
    V3 at;
    int parent = -1, partner = -1;
    bool shadow = false;
    bool firm = false; ///< keeps its vertices when they lie close to those of another bone
};

using Skeleton = std::vector<Joint>;

/// Ordinary bones first, then shadow bones. Right is X > 0.
Skeleton MakeSkeleton(const BodyPlan& plan);

/// The index of the bone whose name begins with `stem` and is followed by its two digits.
int FindBone(const Skeleton& skeleton, const std::string& stem);
