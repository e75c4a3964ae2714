#include "weights/modNear.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr size_t leafSize = 8;
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();

/// Numbers all floats but NaN in their order; both zeros are 0.
int32_t KeyOf(float value)
{
    const auto bits = std::bit_cast<int32_t>(value);
    return bits >= 0 ? bits : -(bits & INT32_MAX);
}

float FloatOf(int32_t key)
{
    return key >= 0 ? std::bit_cast<float>(key) : -std::bit_cast<float>(-key);
}

bool Finite(const NearPoint& point)
{
    return std::isfinite(point.Place[0]) && std::isfinite(point.Place[1]) && std::isfinite(point.Place[2]);
}

bool Inside(const NearBox& box, const std::array<float, 3>& place)
{
    // Without short cuts: most points of a visited leaf fail at any of the six tests.
    return (static_cast<int>(place[0] >= box.Low[0]) & static_cast<int>(place[0] <= box.High[0]) &
            static_cast<int>(place[1] >= box.Low[1]) & static_cast<int>(place[1] <= box.High[1]) &
            static_cast<int>(place[2] >= box.Low[2]) & static_cast<int>(place[2] <= box.High[2])) != 0;
}

bool Apart(const NearBox& a, const NearBox& b)
{
    return (static_cast<int>(a.High[0] < b.Low[0]) | static_cast<int>(a.Low[0] > b.High[0]) |
            static_cast<int>(a.High[1] < b.Low[1]) | static_cast<int>(a.Low[1] > b.High[1]) |
            static_cast<int>(a.High[2] < b.Low[2]) | static_cast<int>(a.Low[2] > b.High[2])) != 0;
}

size_t WidestAxis(const NearBox& box)
{
    size_t widest = 0;
    double width = -1;
    for (size_t axis = 0; axis < 3; ++axis) {
        const double extent = static_cast<double>(box.High[axis]) - box.Low[axis];
        if (extent > width) {
            width = extent;
            widest = axis;
        }
    }
    return widest;
}

void BuildNode(NearTree* tree, size_t node, size_t begin, size_t end, bool active)
{
    if (node >= tree->Nodes.size()) {
        tree->Nodes.resize(node + 1);
    }
    NearBox box{{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
    int32_t first = INT32_MAX;
    for (size_t slot = begin; slot < end; ++slot) {
        const NearPoint& point = tree->Points[slot];
        for (size_t axis = 0; axis < 3; ++axis) {
            box.Low[axis] = std::min(box.Low[axis], point.Place[axis]);
            box.High[axis] = std::max(box.High[axis], point.Place[axis]);
        }
        first = std::min(first, point.Index);
    }
    const size_t axis = WidestAxis(box);
    tree->Nodes[node] = {box, first, active ? static_cast<int32_t>(end - begin) : 0, static_cast<int32_t>(axis)};
    if (end - begin <= leafSize) {
        return;
    }
    const size_t middle = (begin + end) / 2;
    const auto points = tree->Points.begin();
    std::nth_element(points + static_cast<ptrdiff_t>(begin), points + static_cast<ptrdiff_t>(middle),
                     points + static_cast<ptrdiff_t>(end),
                     [axis](const NearPoint& a, const NearPoint& b) { return a.Place[axis] < b.Place[axis]; });
    BuildNode(tree, 2 * node, begin, middle, active);
    BuildNode(tree, 2 * node + 1, middle, end, active);
}

/// Gives the number of points taken below the node. On the way down only the axis of each split is looked at, which
/// the narrow boxes of most searches make enough.
int32_t TakeBelow(NearTree* tree, size_t node, size_t begin, size_t end, const NearBox& box,
                  std::vector<int32_t>* taken)
{
    int32_t count = 0;
    if (end - begin > leafSize) {
        const size_t middle = (begin + end) / 2;
        const auto axis = static_cast<size_t>(tree->Nodes[node].Axis);
        const NearNode& left = tree->Nodes[2 * node];
        const NearNode& right = tree->Nodes[2 * node + 1];
        if (left.Active != 0 && left.Box.High[axis] >= box.Low[axis]) {
            count += TakeBelow(tree, 2 * node, begin, middle, box, taken);
        }
        if (right.Active != 0 && right.Box.Low[axis] <= box.High[axis]) {
            count += TakeBelow(tree, 2 * node + 1, middle, end, box, taken);
        }
    } else if (!Apart(tree->Nodes[node].Box, box)) {
        for (size_t slot = begin; slot < end; ++slot) {
            if (tree->Active[slot] != 0 && Inside(box, tree->Points[slot].Place)) {
                tree->Active[slot] = 0;
                taken->push_back(tree->Points[slot].Index);
                ++count;
            }
        }
    }
    tree->Nodes[node].Active -= count;
    return count;
}

struct Nearest {
    std::array<double, 3> From{};
    float Distance = 0;
    int32_t Index = 0;
    double Reach = 0; ///< no square above this can give a distance of at most Distance
};

void SetDistance(Nearest* nearest, float distance)
{
    nearest->Distance = distance;
    const double next = FloatAbove(distance);
    nearest->Reach = next * next;
}

/// Square of the distance to the box. It is never above the square for a point of the box: rounding keeps the order.
double SquareToBox(const Nearest& nearest, const NearBox& box)
{
    std::array<double, 3> gap{};
    for (size_t axis = 0; axis < 3; ++axis) {
        gap[axis] = std::max({box.Low[axis] - nearest.From[axis], nearest.From[axis] - box.High[axis], 0.0});
    }
    return gap[0] * gap[0] + gap[1] * gap[1] + gap[2] * gap[2];
}

void SearchNearest(const NearTree& tree, size_t node, size_t begin, size_t end, double square, Nearest* nearest)
{
    const auto beaten = [nearest](double boxSquare, int32_t first) {
        return boxSquare > nearest->Reach || (nearest->Index != 0 && first > nearest->Index &&
                                              static_cast<float>(std::sqrt(boxSquare)) >= nearest->Distance);
    };
    if (beaten(square, tree.Nodes[node].First)) {
        return;
    }
    if (end - begin > leafSize) {
        const size_t middle = (begin + end) / 2;
        const double left = SquareToBox(*nearest, tree.Nodes[2 * node].Box);
        const double right = SquareToBox(*nearest, tree.Nodes[2 * node + 1].Box);
        if (right < left) {
            SearchNearest(tree, 2 * node + 1, middle, end, right, nearest);
            SearchNearest(tree, 2 * node, begin, middle, left, nearest);
        } else {
            SearchNearest(tree, 2 * node, begin, middle, left, nearest);
            SearchNearest(tree, 2 * node + 1, middle, end, right, nearest);
        }
        return;
    }
    for (size_t slot = begin; slot < end; ++slot) {
        const NearPoint& point = tree.Points[slot];
        const double x = point.Place[0] - nearest->From[0];
        const double y = point.Place[1] - nearest->From[1];
        const double z = point.Place[2] - nearest->From[2];
        const double pointSquare = x * x + y * y + z * z;
        if (pointSquare > nearest->Reach) {
            continue;
        }
        const auto distance = static_cast<float>(std::sqrt(pointSquare));
        if (distance < nearest->Distance) {
            nearest->Index = point.Index;
            SetDistance(nearest, distance);
        } else if (distance == nearest->Distance && point.Index < nearest->Index) {
            nearest->Index = point.Index;
        }
    }
}

} // namespace

NearTree BuildNear(std::vector<NearPoint> points, bool active)
{
    NearTree tree;
    std::erase_if(points, [](const NearPoint& point) { return !Finite(point); });
    tree.Points = std::move(points);
    if (tree.Points.empty()) {
        return tree;
    }
    BuildNode(&tree, 1, 0, tree.Points.size(), active);
    tree.Active.assign(tree.Points.size(), active ? 1 : 0);
    for (size_t slot = 0; slot < tree.Points.size(); ++slot) {
        const auto index = static_cast<size_t>(tree.Points[slot].Index);
        if (index >= tree.SlotOf.size()) {
            tree.SlotOf.resize(index + 1, -1);
        }
        tree.SlotOf[index] = static_cast<int32_t>(slot);
    }
    return tree;
}

void ActivatePoint(NearTree* tree, int32_t index)
{
    if (static_cast<size_t>(index) >= tree->SlotOf.size() || tree->SlotOf[static_cast<size_t>(index)] < 0) {
        return;
    }
    const auto slot = static_cast<size_t>(tree->SlotOf[static_cast<size_t>(index)]);
    if (tree->Active[slot] != 0) {
        return;
    }
    tree->Active[slot] = 1;
    size_t node = 1;
    size_t begin = 0;
    size_t end = tree->Points.size();
    ++tree->Nodes[node].Active;
    while (end - begin > leafSize) {
        const size_t middle = (begin + end) / 2;
        const bool right = slot >= middle;
        node = 2 * node + (right ? 1 : 0);
        (right ? begin : end) = middle;
        ++tree->Nodes[node].Active;
    }
}

void TakeInBox(NearTree* tree, const NearBox& box, std::vector<int32_t>* taken)
{
    if (!tree->Points.empty() && tree->Nodes[1].Active != 0 && !Apart(tree->Nodes[1].Box, box)) {
        TakeBelow(tree, 1, 0, tree->Points.size(), box, taken);
    }
}

int32_t NearestPoint(const NearTree& tree, const Vec3& from, float limit)
{
    if (tree.Points.empty() || !Finite({{from.X, from.Y, from.Z}, 0})) {
        return 0;
    }
    Nearest nearest{{from.X, from.Y, from.Z}};
    SetDistance(&nearest, limit);
    SearchNearest(tree, 1, 0, tree.Points.size(), SquareToBox(nearest, tree.Nodes[1].Box), &nearest);
    return nearest.Index;
}

float FloatAbove(double limit)
{
    if (limit < -largest) {
        return -largest;
    }
    if (!(limit < largest)) {
        return infinity;
    }
    const auto rounded = static_cast<float>(limit);
    return rounded > limit ? rounded : FloatOf(KeyOf(rounded) + 1);
}

float FloatBelow(double limit)
{
    return -FloatAbove(-limit);
}

float LargestWithin(float limit, float tolerance)
{
    const auto passes = [limit, tolerance](int32_t key) {
        return static_cast<double>(FloatOf(key)) - tolerance < limit;
    };
    const int32_t end = KeyOf(infinity);
    // The sum is at most a step or two off, but where it is tiny against both: then all floats are searched.
    const double sum = static_cast<double>(limit) + tolerance;
    const int32_t guess = std::isnan(sum) ? 0 : KeyOf(static_cast<float>(std::clamp<double>(sum, -largest, largest)));
    int32_t low = std::max(guess - 2, -end);
    int32_t high = std::min(guess + 2, end);
    if ((low > -end && !passes(low)) || (high < end && passes(high))) {
        low = -end;
        high = end;
    }
    while (low + 1 < high) {
        const int32_t middle = std::midpoint(low, high); // the difference of both can pass 32 bits
        (passes(middle) ? low : high) = middle;
    }
    return FloatOf(low);
}
