#include "weights/modSegments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "weights/modMvmXTools.h"
#include "weights/modSkeleton.h"

namespace {

constexpr double farthest = 1000000;
/// The part of a vertex's distance from a segment by which the segment ends early for it.
constexpr double borderSlope = 0.25;
/// The length of a bone that none links to, as a part of the way from its link.
constexpr double endLength = 0.5;
/// The part of the skeleton's width that belongs to neither side.
constexpr double middleWidth = 0.02;
constexpr size_t groupSize = 16;

using Point = std::array<double, 3>;

struct Ball {
    Point Center{};
    double Radius = 0;
};

struct Segment {
    Point From{};
    Point Along{};
    double Square = 0; ///< of the length
    Ball Around{};
    int16_t Bone = 0;
    int8_t Side = 0; ///< -1, 1, or 0 for the middle
    bool IsEnd = false;
};

double Dot(const Point& a, const Point& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Point Plus(const Point& a, double factor, const Point& b)
{
    return {a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
}

Point PointOf(const Vec3& place)
{
    return {place.X, place.Y, place.Z};
}

int8_t SideOf(double x, double middle)
{
    return static_cast<int8_t>(x > middle ? 1 : x < -middle ? -1 : 0);
}

double SquareDistance(const Point& place, const Segment& segment)
{
    const Point from = Plus(place, -1, segment.From);
    if (segment.Square == 0) {
        return Dot(from, from);
    }
    const double along = Dot(from, segment.Along) / segment.Square;
    double last = 1;
    if (!segment.IsEnd && along > 0) {
        const Point aside = Plus(from, -along, segment.Along);
        last = std::max(0.0, 1 - borderSlope * std::sqrt(Dot(aside, aside) / segment.Square));
    }
    const Point gap = Plus(from, -std::clamp(along, 0.0, last), segment.Along);
    return Dot(gap, gap);
}

/// Puts joints and links together; the joints by bone number, those that are not to be used not finite.
class Skeleton {
public:
    Skeleton(const std::vector<int16_t>& links, bool shadow) : Joints(links.size(), {NAN, NAN, NAN})
    {
        double low = 0;
        double high = 0;
        for (size_t b = 1; b < links.size(); ++b) {
            const MvmBone& bone = Bones[static_cast<int32_t>(b)];
            if (bone.IsShadow == shadow) {
                Joints[b] = PointOf(JointInSkin(bone));
                low = std::min(low, Joints[b][0]);
                high = std::max(high, Joints[b][0]);
            }
        }
        // A skeleton on one side of X = 0 has no sides.
        const double width = std::min(-low, high) > middleWidth * (high - low) ? high - low : INFINITY;
        Middle = middleWidth * width;
        AddSegments(links);
        MakeGroups(0, Segments.size(), 0);
    }

    /// The bone nearest to a place, of several the lowest; 0 for none.
    [[nodiscard]] int16_t Nearest(const Vec3& vertex) const
    {
        Search search{.From = PointOf(vertex), .Side = SideOf(vertex.X, Middle)};
        for (const Group& group : Groups) {
            if (!IsBeyond(search, group.Around)) {
                SearchGroup(group, &search);
            }
        }
        return search.Bone;
    }

private:
    /// Neighbouring segments.
    struct Group {
        Ball Around{};
        size_t First = 0;
        size_t Last = 0; ///< one behind the last
    };

    struct Search {
        Point From{};
        int8_t Side = 0;
        double Square = farthest * farthest;
        double Reach = farthest;
        int16_t Bone = 0;
    };

    static bool IsBeyond(const Search& search, const Ball& ball)
    {
        const Point gap = Plus(search.From, -1, ball.Center);
        const double most = search.Reach + ball.Radius;
        return Dot(gap, gap) > most * most;
    }

    void SearchGroup(const Group& group, Search* search) const
    {
        for (size_t i = group.First; i < group.Last; ++i) {
            const Segment& segment = Segments[i];
            if (search->Side * segment.Side < 0 || IsBeyond(*search, segment.Around)) {
                continue;
            }
            const double square = SquareDistance(search->From, segment);
            if (square < search->Square || (square == search->Square && segment.Bone < search->Bone)) {
                // Rounded up, so that no equally near one is passed over.
                *search = {search->From, search->Side, square, std::sqrt(square) * (1 + 1e-9), segment.Bone};
            }
        }
    }

    /// Parts a stretch of segments until the groups are small.
    void MakeGroups(size_t first, size_t last, size_t axis)
    {
        if (last - first > groupSize) {
            const auto at = [this](size_t i) { return Segments.begin() + static_cast<std::ptrdiff_t>(i); };
            const size_t middle = (first + last) / 2;
            std::nth_element(at(first), at(middle), at(last), [axis](const Segment& a, const Segment& b) {
                return a.Around.Center[axis] < b.Around.Center[axis];
            });
            MakeGroups(first, middle, (axis + 1) % 3);
            MakeGroups(middle, last, (axis + 1) % 3);
            return;
        }
        Group group{.First = first, .Last = last};
        for (size_t i = first; i < last; ++i) {
            group.Around.Center =
                Plus(group.Around.Center, 1 / static_cast<double>(last - first), Segments[i].Around.Center);
        }
        for (size_t i = first; i < last; ++i) {
            const Point gap = Plus(Segments[i].Around.Center, -1, group.Around.Center);
            group.Around.Radius =
                std::max(group.Around.Radius, std::sqrt(Dot(gap, gap)) * (1 + 1e-9) + Segments[i].Around.Radius);
        }
        Groups.push_back(group);
    }

    void AddSegments(const std::vector<int16_t>& links)
    {
        std::vector<bool> isLinkedTo(links.size());
        for (const int16_t link : links) {
            isLinkedTo[static_cast<size_t>(link)] = true;
        }
        for (size_t b = 1; b < links.size(); ++b) {
            const auto link = static_cast<size_t>(links[b]);
            Point along = Plus(Joints[b], -1, Joints[link]);
            if (std::isfinite(Dot(along, along))) {
                Add(link, along, false);
            } else {
                along = {};
            }
            Add(b, isLinkedTo[b] ? Point{} : Plus({}, endLength, along), true);
        }
    }

    void Add(size_t bone, const Point& along, bool isEnd)
    {
        const Segment segment{.From = Joints[bone],
                              .Along = along,
                              .Square = Dot(along, along),
                              .Around = {Plus(Joints[bone], 0.5, along), std::sqrt(Dot(along, along)) / 2 * (1 + 1e-9)},
                              .Bone = static_cast<int16_t>(bone),
                              .Side = SideOf(Joints[bone][0], Middle),
                              .IsEnd = isEnd};
        if (std::isfinite(Dot(segment.From, segment.From) + segment.Square)) {
            Segments.push_back(segment);
        }
    }

    std::vector<Point> Joints;
    std::vector<Segment> Segments;
    std::vector<Group> Groups;
    double Middle = 0;
};

} // namespace

void AutoAssignBySegments(int16_t mesh)
{
    if (!MayAssign(mesh)) {
        return;
    }
    const bool shadow = mesh == ShadowMesh && mesh != SkinMesh;
    const Skeleton skeleton(LinksOf(shadow), shadow);
    MvmMesh& skin = Meshes[mesh];
    Touch(ScenePart::Assignments, mesh);
    for (int32_t v = 1; v <= skin.VertexBones.Count(); ++v) {
        if (skin.VertexBones[v] == 0) {
            skin.VertexBones[v] = skeleton.Nearest(skin.Vertices[v]);
        }
    }
    Redraw(true);
}
