#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "app/modArray.h"
#include "app/modMvmDef.h"

// Searches for points by position: a balanced tree over the points, halved at the middle of its widest axis. A search in a
// box visits about n^(2/3) nodes at worst, whatever the places of the points.

/// A closed box; empty when a low limit is above its high limit.
struct NearBox {
    std::array<float, 3> Low{};
    std::array<float, 3> High{};
};

struct NearPoint {
    std::array<float, 3> Place{};
    int32_t Index = 0; ///< the caller's number
};

struct NearNode {
    NearBox Box;        ///< the smallest box around its points
    int32_t First = 0;  ///< lowest index among its points
    int32_t Active = 0; ///< points below it that can still be taken
    int32_t Axis = 0;   ///< its halves lie below and above each other on this axis
};

/// Points that searches find. Node 1 is the root, node k has the halves 2k and 2k + 1.
struct NearTree {
    std::vector<NearPoint> Points;
    std::vector<uint8_t> Active; ///< one entry a point
    std::vector<int32_t> SlotOf; ///< place in Points by index, -1 for an index without a point
    std::vector<NearNode> Nodes;
};

/// Builds a tree. Points with a coordinate that is not finite are left out: no search can find them.
[[nodiscard]] NearTree BuildNear(std::vector<NearPoint> points, bool active);
/// Makes a point active; nothing when it was left out or is active.
void ActivatePoint(NearTree* tree, int32_t index);
/// Appends the indices of all active points in the box to *taken, in any order, and makes them inactive.
void TakeInBox(NearTree* tree, const NearBox& box, std::vector<int32_t>* taken);
/// The point nearest to `from` by distances in 32-bit floats, of several the one with the lowest index; 0 when none is
/// nearer than `limit`.
[[nodiscard]] int32_t NearestPoint(const NearTree& tree, const Vec3& from, float limit);

/// The smallest float above `limit`: infinity when there is none, also for a limit that is not a number.
[[nodiscard]] float FloatAbove(double limit);
/// The largest float below `limit`: -infinity when there is none, also for a limit that is not a number.
[[nodiscard]] float FloatBelow(double limit);
/// The largest finite float a with a - tolerance < limit, the difference in double; -infinity when there is none.
[[nodiscard]] float LargestWithin(float limit, float tolerance);
