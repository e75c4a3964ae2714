#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "app/modArray.h"
#include "app/modMvmDef.h"

// Searches for points by position: a tree of boxes, sixteen entries a node. The points of a node are cut on its widest axis
// into sixteen parts of equal size, so the tree is balanced wherever the points lie, and a search in a narrow box visits
// few nodes. Wide boxes find many points, but each point is taken once.

/// A closed box; empty when a low limit is above its high limit.
struct NearBox {
    std::array<float, 3> Low{};
    std::array<float, 3> High{};
};

struct NearPoint {
    std::array<float, 3> Place{};
    int32_t Index = 0; ///< the caller's number
};

inline constexpr size_t NearWidth = 16; ///< entries of a node

/// One number an axis and entry; entries that a node has no use for repeat its last.
using NearLanes = std::array<std::array<float, NearWidth>, 3>;

struct NearLeaf {
    NearLanes Place{};
    std::array<int32_t, NearWidth> Index{};
    uint32_t Active = 0; ///< a bit for each point that can be taken
};

struct NearNode {
    NearLanes Low{}; ///< with High the smallest box around the points of each entry
    NearLanes High{};
    std::array<int32_t, NearWidth> First{}; ///< lowest index among them
    uint32_t Used = 0;                      ///< its entries
    uint32_t Active = 0;                    ///< a bit for each entry with a point that can be taken
};

/// Points that searches find. Entry k of node i is node 16 i + k of the level below, the leaves below the first level.
struct NearTree {
    std::vector<NearLeaf> Leaves;
    std::vector<std::vector<NearNode>> Levels; ///< the last one holds the root alone; none above a single leaf
    std::vector<int32_t> SlotOf;               ///< 16 * leaf + entry by index, -1 for an index without a point
};

/// Builds a tree of active points. Those with a coordinate that is not finite are left out: no search can find them.
[[nodiscard]] NearTree BuildNear(std::vector<NearPoint> points);
/// Makes a point active again; nothing when it was left out or is active.
void ActivatePoint(NearTree* tree, int32_t index);
/// Appends the indices of all active points in the box to *taken, in any order, and makes them inactive.
void TakeInBox(NearTree* tree, const NearBox& box, std::vector<int32_t>* taken);
/// The point nearest to `from` by distances in 32-bit floats, active or not, of several the one with the lowest index; 0
/// when none is nearer than `limit`. `guess` is any number; the search is short when it is that of a near point.
[[nodiscard]] int32_t NearestPoint(const NearTree& tree, const Vec3& from, float limit, int32_t guess);

/// The places that are less than `reach` from the center on each axis, the sums in double; empty when a coordinate is not a
/// number.
[[nodiscard]] NearBox BoxAround(const Vec3& center, double reach);
/// The largest finite float a with a - tolerance < limit, the difference in double; -infinity when there is none.
[[nodiscard]] float LargestWithin(float limit, float tolerance);
