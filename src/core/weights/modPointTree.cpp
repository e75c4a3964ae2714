#include "weights/modPointTree.h"

#include <algorithm>
#include <cmath>

namespace {

size_t NextAxis(size_t axis)
{
    return axis == 2 ? 0 : axis + 1;
}

bool Finite(const Place& place)
{
    return std::isfinite(place[0]) && std::isfinite(place[1]) && std::isfinite(place[2]);
}

/// Gives the highest index of the stretch.
int32_t PutInOrder(TreeNode* begin, TreeNode* end, size_t axis)
{
    if (begin == end) {
        return 0;
    }
    TreeNode* const middle = begin + (end - begin) / 2;
    std::nth_element(begin, middle, end,
                     [axis](const TreeNode& a, const TreeNode& b) { return a.At[axis] < b.At[axis]; });
    const int32_t below = PutInOrder(begin, middle, NextAxis(axis));
    const int32_t above = PutInOrder(middle + 1, end, NextAxis(axis));
    middle->Highest = std::max({middle->Index, below, above});
    return middle->Highest;
}

struct Nearest {
    Place From{};
    float Distance = 0;
    int32_t Index = 0;
};

void Search(const TreeNode* begin, const TreeNode* end, size_t axis, Nearest* nearest)
{
    if (begin == end) {
        return;
    }
    const TreeNode* const middle = begin + (end - begin) / 2;
    double square = 0;
    for (size_t i = 0; i < 3; ++i) {
        const double gap = static_cast<double>(middle->At[i]) - nearest->From[i];
        square += gap * gap;
    }
    const auto distance = static_cast<float>(std::sqrt(square));
    if (distance < nearest->Distance || (distance == nearest->Distance && middle->Index < nearest->Index)) {
        nearest->Distance = distance;
        nearest->Index = middle->Index;
    }
    const double gap = static_cast<double>(middle->At[axis]) - nearest->From[axis];
    const bool lowerFirst = gap > 0;
    Search(lowerFirst ? begin : middle + 1, lowerFirst ? middle : end, NextAxis(axis), nearest);
    // Rounding keeps the order: behind the parting plane no distance is below that of the plane itself.
    if (static_cast<float>(std::fabs(gap)) <= nearest->Distance) {
        Search(lowerFirst ? middle + 1 : begin, lowerFirst ? end : middle, NextAxis(axis), nearest);
    }
}

} // namespace

Place PlaceOf(const Vec3& position)
{
    return {position.X, position.Y, position.Z};
}

OpenBox BoxAround(const Place& center, double reach)
{
    OpenBox box;
    for (size_t axis = 0; axis < 3; ++axis) {
        box.Low[axis] = center[axis] - reach;
        box.High[axis] = center[axis] + reach;
    }
    return box;
}

PointTree BuildPointTree(std::vector<TreeNode> nodes)
{
    std::erase_if(nodes, [](const TreeNode& node) { return !Finite(node.At); });
    PutInOrder(nodes.data(), nodes.data() + nodes.size(), 0);
    return {std::move(nodes)};
}

int32_t NearestPoint(const PointTree& tree, const Place& from, float limit)
{
    Nearest nearest{from, limit, 0};
    if (Finite(from)) {
        Search(tree.Nodes.data(), tree.Nodes.data() + tree.Nodes.size(), 0, &nearest);
    }
    return nearest.Index;
}
