#pragma once

#include <vector>

#include "body.h"

/// A round cone from `a` to `b`, narrowed (below 1) or widened in X, that belongs to a bone.
struct Limb {
    V3 a, b;
    double ra, rb;
    int bone;
    int group; ///< limbs of one group blend tightly, groups blend widely
    double wide = 1;
};

/// A body as a distance field: negative inside. Only the half with X >= 0 is described, the other is its image.
struct Body {
    std::vector<Limb> limbs;
    double tight = 0.03, loose = 0.05;
};

/// The Vorrel's body on its own skeleton, and the same in a few thick limbs on the shadow bones.
Body MakeBody(const Skeleton& skeleton);
Body MakeShadowBody(const Skeleton& skeleton);
/// The part of a body whose bones satisfy the test.
template <typename Test>
Body PartOf(const Body& body, Test test)
{
    Body part = body;
    part.limbs.clear();
    for (const Limb& limb : body.limbs) {
        if (test(limb.bone)) {
            part.limbs.push_back(limb);
        }
    }
    return part;
}

double Distance(const Body& body, V3 at);
/// Direction away from the body, not of unit length.
V3 Gradient(const Body& body, V3 at);
/// The point of the surface next to `at`; a point on the middle plane stays on it.
V3 OnSurface(const Body& body, V3 at);
/// The bone of the limb that is nearest to a point with X >= 0; for a point on the middle plane a middle bone.
int NearestBone(const Body& body, const Skeleton& skeleton, V3 at);
