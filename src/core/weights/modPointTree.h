#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"

// Searches for points by position: a k-d tree in one array. The middle node of a stretch parts it on the axis of its
// depth; lower coordinates lie before it, higher ones behind it.

using Place = std::array<float, 3>;

struct TreeNode {
    Place At{};
    int32_t Index = 0;   ///< the caller's number, above 0
    int32_t Highest = 0; ///< of the indices of its stretch
};

struct PointTree {
    std::vector<TreeNode> Nodes;
};

/// An open box: a place is inside when Low < coordinate < High on each axis.
struct OpenBox {
    std::array<double, 3> Low{};
    std::array<double, 3> High{};
};

[[nodiscard]] Place PlaceOf(const Vec3& position);
/// The box of the places less than `reach` from the center on each axis; the sums are worked out in double precision.
[[nodiscard]] OpenBox BoxAround(const Place& center, double reach);

/// Builds a tree of nodes with At and Index set. Those with a coordinate that is not finite are left out: no search can
/// find them.
[[nodiscard]] PointTree BuildPointTree(std::vector<TreeNode> nodes);
/// The point nearest to `from` by distances in 32-bit floats, of several the one with the lowest index; 0 when none is
/// nearer than `limit`.
[[nodiscard]] int32_t NearestPoint(const PointTree& tree, const Place& from, float limit);

/// Raises *highest to the highest index in a stretch, parted on `axis`, of a point that lies in the box and passes
/// test(node).
template <typename Test>
void SearchStretch(const TreeNode* begin, const TreeNode* end, size_t axis, const OpenBox& box, const Test& test,
                   int32_t* highest)
{
    while (begin != end) {
        const TreeNode* const middle = begin + (end - begin) / 2;
        if (middle->Highest <= *highest) {
            return;
        }
        const auto isInside = [middle, &box](size_t i) {
            return box.Low[i] < middle->At[i] && middle->At[i] < box.High[i];
        };
        if (middle->Index > *highest && isInside(0) && isInside(1) && isInside(2) && test(*middle)) {
            *highest = middle->Index;
        }
        const size_t next = axis == 2 ? 0 : axis + 1;
        if (box.Low[axis] < middle->At[axis]) {
            SearchStretch(begin, middle, next, box, test, highest);
        }
        begin = middle->At[axis] < box.High[axis] ? middle + 1 : end;
        axis = next;
    }
}

/// The highest index of a point that lies in the box and passes test(node), 0 for none.
template <typename Test>
[[nodiscard]] int32_t HighestInside(const PointTree& tree, const OpenBox& box, const Test& test)
{
    int32_t highest = 0;
    SearchStretch(tree.Nodes.data(), tree.Nodes.data() + tree.Nodes.size(), 0, box, test, &highest);
    return highest;
}
