#include "weights/modNear.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>

namespace {

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

/// The smallest float above `limit`: infinity when there is none, also for a limit that is not a number.
float FloatAbove(double limit)
{
    if (limit < -largest) {
        return -largest;
    }
    if (!(limit < largest)) {
        return infinity;
    }
    const auto rounded = static_cast<float>(limit);
    return FloatOf(KeyOf(rounded) + (rounded > limit ? 0 : 1)); // no branch: it would be missed every other time
}

bool Finite(const NearPoint& point)
{
    return std::isfinite(point.Place[0]) && std::isfinite(point.Place[1]) && std::isfinite(point.Place[2]);
}

/// A point to be put in order: its sort key and its place in the list of points.
struct Slot {
    uint32_t Key = 0;
    uint32_t Point = 0;
};

/// Sorts slots by the lowest `bits` bits of their keys; equal ones keep their order.
void SortByKey(int bits, std::vector<Slot>* slots)
{
    constexpr int digitBits = 11;
    constexpr uint32_t mask = (1U << digitBits) - 1;
    std::vector<Slot> sorted(slots->size());
    for (int shift = 0; shift < bits; shift += digitBits) {
        std::array<uint32_t, mask + 2> starts{};
        for (const Slot& slot : *slots) {
            ++starts[((slot.Key >> shift) & mask) + 1];
        }
        std::partial_sum(starts.begin(), starts.end(), starts.begin());
        for (const Slot& slot : *slots) {
            sorted[starts[(slot.Key >> shift) & mask]++] = slot;
        }
        slots->swap(sorted);
    }
}

/// The axis on which the points of some slots lie widest apart.
size_t WidestAxis(const std::vector<NearPoint>& points, std::span<const Slot> slots)
{
    std::array<float, 3> low = points[slots.front().Point].Place;
    std::array<float, 3> high = low;
    for (const Slot& slot : slots) {
        for (size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], points[slot.Point].Place[axis]);
            high[axis] = std::max(high[axis], points[slot.Point].Place[axis]);
        }
    }
    std::array<double, 3> widths{};
    for (size_t axis = 0; axis < 3; ++axis) {
        widths[axis] = static_cast<double>(high[axis]) - low[axis];
    }
    return static_cast<size_t>(std::max_element(widths.begin(), widths.end()) - widths.begin());
}

/// An order of the points in which those of each node follow each other: the points of a node are sorted on its widest
/// axis and cut into those of its entries. All nodes of a level are sorted at once.
std::vector<Slot> NodeOrder(const std::vector<NearPoint>& points)
{
    std::vector<Slot> slots(points.size());
    for (uint32_t i = 0; i < slots.size(); ++i) {
        slots[i].Point = i;
    }
    size_t size = NearWidth; // points of a node
    while (size < points.size()) {
        size *= NearWidth;
    }
    std::vector<uint32_t> nodes(points.size());
    for (; size > NearWidth; size /= NearWidth) {
        for (size_t begin = 0; begin < slots.size(); begin += size) {
            const std::span<Slot> own(slots.data() + begin, std::min(size, slots.size() - begin));
            const size_t axis = WidestAxis(points, own);
            for (Slot& slot : own) {
                slot.Key = std::bit_cast<uint32_t>(KeyOf(points[slot.Point].Place[axis])) ^ 0x80000000U;
                nodes[slot.Point] = static_cast<uint32_t>(begin / size);
            }
        }
        SortByKey(32, &slots);
        for (Slot& slot : slots) {
            slot.Key = nodes[slot.Point];
        }
        SortByKey(static_cast<int>(std::bit_width((slots.size() - 1) / size)), &slots);
    }
    return slots;
}

/// Enters the box around all entries of a node or leaf into its parent.
void EnterBox(const NearLanes& low, const NearLanes& high, const std::array<int32_t, NearWidth>& first, size_t lane,
              NearNode* parent)
{
    for (size_t axis = 0; axis < 3; ++axis) {
        parent->Low[axis][lane] = *std::min_element(low[axis].begin(), low[axis].end());
        parent->High[axis][lane] = *std::max_element(high[axis].begin(), high[axis].end());
    }
    parent->First[lane] = *std::min_element(first.begin(), first.end());
}

/// The level above `count` nodes, each of which `enter` writes into an entry of its parent.
template <typename Enter>
std::vector<NearNode> LevelAbove(size_t count, Enter enter)
{
    std::vector<NearNode> level((count + NearWidth - 1) / NearWidth);
    for (size_t lane = 0; lane < level.size() * NearWidth; ++lane) {
        NearNode& parent = level[lane / NearWidth];
        enter(std::min(lane, count - 1), lane % NearWidth, &parent);
        if (lane < count) {
            parent.Used = static_cast<uint32_t>(lane % NearWidth) + 1;
            parent.Active |= 1U << lane % NearWidth;
        }
    }
    return level;
}

/// The entries whose box and `box` have a point in common, one bit each.
uint32_t Touching(const NearLanes& low, const NearLanes& high, const NearBox& box)
{
    constexpr std::array<uint32_t, NearWidth> bits = {1U << 0,  1U << 1,  1U << 2,  1U << 3, 1U << 4,  1U << 5,
                                                      1U << 6,  1U << 7,  1U << 8,  1U << 9, 1U << 10, 1U << 11,
                                                      1U << 12, 1U << 13, 1U << 14, 1U << 15};
    const auto [lowX, lowY, lowZ] = box.Low;
    const auto [highX, highY, highZ] = box.High;
    uint32_t touching = 0;
    for (size_t lane = 0; lane < NearWidth; ++lane) {
        // Masks, so that the compiler puts four entries into one step.
        uint32_t bit = bits[lane];
        bit &= low[0][lane] <= highX ? ~0U : 0U;
        bit &= high[0][lane] >= lowX ? ~0U : 0U;
        bit &= low[1][lane] <= highY ? ~0U : 0U;
        bit &= high[1][lane] >= lowY ? ~0U : 0U;
        bit &= low[2][lane] <= highZ ? ~0U : 0U;
        bit &= high[2][lane] >= lowZ ? ~0U : 0U;
        touching |= bit;
    }
    return touching;
}

size_t LowestBit(uint32_t bits)
{
    return static_cast<size_t>(std::countr_zero(bits));
}

/// Gives whether no point below the node is active any more. Level 0 are the leaves.
bool TakeBelow(NearTree* tree, size_t level, size_t node, const NearBox& box, std::vector<int32_t>* taken)
{
    if (level == 0) {
        NearLeaf& leaf = tree->Leaves[node];
        const uint32_t inside = Touching(leaf.Place, leaf.Place, box) & leaf.Active;
        for (uint32_t rest = inside; rest != 0; rest &= rest - 1) {
            taken->push_back(leaf.Index[LowestBit(rest)]);
        }
        leaf.Active ^= inside;
        return leaf.Active == 0;
    }
    NearNode& inner = tree->Levels[level - 1][node];
    for (uint32_t rest = Touching(inner.Low, inner.High, box) & inner.Active; rest != 0; rest &= rest - 1) {
        const size_t lane = LowestBit(rest);
        if (TakeBelow(tree, level - 1, NearWidth * node + lane, box, taken)) {
            inner.Active ^= 1U << lane;
        }
    }
    return inner.Active == 0;
}

/// 16 * leaf + entry of a point, -1 when the tree has no such point.
int32_t SlotOf(const NearTree& tree, int32_t index)
{
    return index >= 0 && static_cast<size_t>(index) < tree.SlotOf.size() ? tree.SlotOf[static_cast<size_t>(index)] : -1;
}

struct Nearest {
    std::array<float, 3> From{};
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

/// Distance on one axis to the nearest coordinate of a box.
double Gap(float low, float high, float from)
{
    float place = from < low ? low : from;
    place = place > high ? high : place;
    return static_cast<double>(place) - from;
}

/// Square of the distance to a box. It is never above the square for a point of the box: rounding keeps the order.
double Square(std::array<float, 3> from, const NearLanes& low, const NearLanes& high, size_t lane)
{
    const double x = Gap(low[0][lane], high[0][lane], from[0]);
    const double y = Gap(low[1][lane], high[1][lane], from[1]);
    const double z = Gap(low[2][lane], high[2][lane], from[2]);
    return x * x + y * y + z * z;
}

std::array<double, NearWidth> Squares(std::array<float, 3> from, const NearLanes& low, const NearLanes& high)
{
    std::array<double, NearWidth> squares{};
    for (size_t lane = 0; lane < NearWidth; ++lane) {
        squares[lane] = Square(from, low, high, lane);
    }
    return squares;
}

/// Takes a point at a distance of sqrt(square) when it is nearer, or as near with a lower index.
void Offer(double square, int32_t index, Nearest* nearest)
{
    if (square > nearest->Reach) {
        return;
    }
    const auto distance = static_cast<float>(std::sqrt(square));
    if (distance < nearest->Distance) {
        nearest->Index = index;
        SetDistance(nearest, distance);
    } else if (distance == nearest->Distance && index < nearest->Index) {
        nearest->Index = index;
    }
}

void SearchNearest(const NearTree& tree, size_t level, size_t node, Nearest* nearest)
{
    if (level == 0) {
        const NearLeaf& leaf = tree.Leaves[node];
        const std::array<double, NearWidth> squares = Squares(nearest->From, leaf.Place, leaf.Place);
        for (size_t lane = 0; lane < NearWidth; ++lane) {
            Offer(squares[lane], leaf.Index[lane], nearest);
        }
        return;
    }
    const NearNode& inner = tree.Levels[level - 1][node];
    const std::array<double, NearWidth> squares = Squares(nearest->From, inner.Low, inner.High);
    for (size_t lane = 0; lane < inner.Used; ++lane) {
        if (squares[lane] > nearest->Reach) {
            continue;
        }
        const bool beaten = nearest->Index != 0 && inner.First[lane] > nearest->Index &&
                            static_cast<float>(std::sqrt(squares[lane])) >= nearest->Distance;
        if (!beaten) {
            SearchNearest(tree, level - 1, NearWidth * node + lane, nearest);
        }
    }
}

} // namespace

NearTree BuildNear(std::vector<NearPoint> points)
{
    NearTree tree;
    std::erase_if(points, [](const NearPoint& point) { return !Finite(point); });
    if (points.empty()) {
        return tree;
    }
    const std::vector<Slot> order = NodeOrder(points);
    tree.Leaves.resize((points.size() + NearWidth - 1) / NearWidth);
    int32_t last = 0;
    for (const NearPoint& point : points) {
        last = std::max(last, point.Index);
    }
    tree.SlotOf.assign(static_cast<size_t>(last) + 1, -1);
    for (size_t slot = 0; slot < tree.Leaves.size() * NearWidth; ++slot) {
        const NearPoint& point = points[order[std::min(slot, points.size() - 1)].Point];
        NearLeaf& leaf = tree.Leaves[slot / NearWidth];
        const size_t lane = slot % NearWidth;
        for (size_t axis = 0; axis < 3; ++axis) {
            leaf.Place[axis][lane] = point.Place[axis];
        }
        leaf.Index[lane] = point.Index;
        if (slot < points.size()) {
            leaf.Active |= 1U << lane;
            tree.SlotOf[static_cast<size_t>(point.Index)] = static_cast<int32_t>(slot);
        }
    }
    if (tree.Leaves.size() > 1) {
        tree.Levels.push_back(LevelAbove(tree.Leaves.size(), [&tree](size_t leaf, size_t lane, NearNode* parent) {
            EnterBox(tree.Leaves[leaf].Place, tree.Leaves[leaf].Place, tree.Leaves[leaf].Index, lane, parent);
        }));
        while (tree.Levels.back().size() > 1) {
            tree.Levels.push_back(
                LevelAbove(tree.Levels.back().size(), [&tree](size_t node, size_t lane, NearNode* parent) {
                    const NearNode& child = tree.Levels.back()[node];
                    EnterBox(child.Low, child.High, child.First, lane, parent);
                }));
        }
    }
    return tree;
}

void ActivatePoint(NearTree* tree, int32_t index)
{
    const int32_t place = SlotOf(*tree, index);
    if (place < 0) {
        return;
    }
    auto slot = static_cast<size_t>(place);
    tree->Leaves[slot / NearWidth].Active |= 1U << slot % NearWidth;
    for (std::vector<NearNode>& level : tree->Levels) {
        slot /= NearWidth;
        level[slot / NearWidth].Active |= 1U << slot % NearWidth;
    }
}

void TakeInBox(NearTree* tree, const NearBox& box, std::vector<int32_t>* taken)
{
    if (!tree->Leaves.empty()) {
        TakeBelow(tree, tree->Levels.size(), 0, box, taken);
    }
}

int32_t NearestPoint(const NearTree& tree, const Vec3& from, float limit, int32_t guess)
{
    if (tree.Leaves.empty() || !Finite({{from.X, from.Y, from.Z}, 0})) {
        return 0;
    }
    Nearest nearest{{from.X, from.Y, from.Z}};
    SetDistance(&nearest, limit);
    if (const int32_t slot = SlotOf(tree, guess); slot >= 0) {
        const NearLanes& places = tree.Leaves[static_cast<size_t>(slot) / NearWidth].Place;
        const size_t lane = static_cast<size_t>(slot) % NearWidth;
        Offer(Square(nearest.From, places, places, lane), guess, &nearest);
    }
    SearchNearest(tree, tree.Levels.size(), 0, &nearest);
    return nearest.Index;
}

NearBox BoxAround(const Vec3& center, double reach)
{
    NearBox box;
    const std::array<double, 3> middle = {center.X, center.Y, center.Z};
    for (size_t axis = 0; axis < 3; ++axis) {
        box.Low[axis] = FloatAbove(middle[axis] - reach);
        box.High[axis] = -FloatAbove(-(middle[axis] + reach));
    }
    return box;
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
    if (guess - 2 > -end && guess + 2 < end && passes(guess - 2) && !passes(guess + 2)) {
        return FloatOf(guess - 2 + static_cast<int32_t>(passes(guess - 1)) + static_cast<int32_t>(passes(guess)) +
                       static_cast<int32_t>(passes(guess + 1)));
    }
    int32_t low = -end;
    int32_t high = end;
    while (low + 1 < high) {
        const int32_t middle = std::midpoint(low, high); // the difference of both can pass 32 bits
        (passes(middle) ? low : high) = middle;
    }
    return FloatOf(low);
}
