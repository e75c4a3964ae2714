#pragma once

#include <cstdint>
#include <vector>

#include "modJoin.h"
#include "weights/modPointTree.h"

/// A mesh of a file beside the mesh of the model that it was made from, both in the space of the model's.
struct LikePair {
    const ExchangeMesh& File;
    const MvmMesh& Model;
    uint32_t Salt = 0;
    /// Of each bone of the file: the number into Bones, 0 for one that the model has not.
    const std::vector<int16_t>& Bones;
    bool HasBones = true; ///< the file says what vertices belong to
    double Extent = 0; ///< the largest coordinate, also of the scene's origin: a place far from it is known less well
};

/// The vertices by place, with their numbers.
[[nodiscard]] PointTree TreeOfVertices(const MvmMesh& mesh);
/// The largest coordinate of the model's mesh.
[[nodiscard]] double ExtentOf(const MvmMesh& mesh);
/// True for texture coordinates that are the same but for what other programs lose.
[[nodiscard]] bool AreSamePairs(const Vec2& a, const Vec2& b);

/// The vertex of the model that each corner of the file is, 0 for none: by the number that it carries, else by a whole
/// face that is equal in places, bones and texture coordinates, else by the nearest vertex, one of the same bone first.
[[nodiscard]] CornerNumbers OldVertices(const LikePair& pair);
