#include <algorithm>
#include <cmath>
#include <random>

#include "support/fresh.h"
#include "weights/modMvmXTools.h"
#include "weights/modSegments.h"
#include "weights/modSkeleton.h"

using testing::ElementsAre;
using Segments = Fresh;

namespace {

void MakeScene(const std::vector<MvmBone>& bones, const std::vector<Vec3>& vertices)
{
    scripted::Reset();
    Bones.Items = bones;
    Meshes.Add().Vertices.Items = vertices;
    MakeSkin(1);
}

using Point = std::array<double, 3>;

Point Mix(const Point& a, const Point& b, double t)
{
    return {a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), a[2] + t * (b[2] - a[2])};
}

double Distance(const Point& a, const Point& b)
{
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

/// To the way from a to b, which ends a quarter of the distance from its line before b when `early`.
double ToSegment(const Point& v, const Point& a, const Point& b, bool early)
{
    const double length = Distance(a, b);
    double dot = 0;
    for (size_t i = 0; i < 3; ++i) {
        dot += (v[i] - a[i]) * (b[i] - a[i]);
    }
    const double along = length > 0 ? dot / (length * length) : 0;
    const double aside = Distance(v, Mix(a, b, along));
    const double last = early && along > 0 && length > 0 ? std::max(0.0, 1 - aside / 4 / length) : 1;
    return Distance(v, Mix(a, b, std::clamp(along, 0.0, last)));
}

/// The distance of a vertex from a bone, worked out without any search.
double ToBone(const Point& v, size_t bone, const std::vector<int16_t>& links)
{
    const auto joint = [](size_t b) {
        const Vec3 at = JointInSkin(Bones[static_cast<int32_t>(b)]);
        return Point{at.X, at.Y, at.Z};
    };
    double nearest = Distance(v, joint(bone));
    bool isEnd = true;
    for (size_t b = 1; b < links.size(); ++b) {
        if (static_cast<size_t>(links[b]) == bone) {
            nearest = std::min(nearest, ToSegment(v, joint(bone), joint(b), true));
            isEnd = false;
        }
    }
    if (const auto link = static_cast<size_t>(links[bone]); isEnd && link != 0) {
        nearest = std::min(nearest, ToSegment(v, joint(bone), Mix(joint(link), joint(bone), 1.5), false));
    }
    return nearest;
}

} // namespace

TEST_F(Segments, EachVertexGoesToTheNearestBoneOfItsSide)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> anywhere(-1, 1);
        const auto place = [&] { return Vec3{anywhere(random), anywhere(random), anywhere(random)}; };
        const size_t count = 1 + random() % 60;
        std::vector<MvmBone> bones(count);
        for (MvmBone& bone : bones) {
            bone.Position = place();
            // Links of all kinds, circles too.
            bone.LinkBone = static_cast<int16_t>(seed % 2 == 0 ? 0 : random() % (count + 1));
        }
        std::vector<Vec3> vertices(100);
        std::generate(vertices.begin(), vertices.end(), place);
        MakeScene(bones, vertices);
        SkinScale = 0.5F;
        SkinOffset = {0.1F, 0, 0};
        AutoAssignBySegments(1);
        const std::vector<int16_t> links = LinksOf(false);
        float low = 0;
        float high = 0;
        for (const MvmBone& bone : Bones) {
            low = std::min(low, JointInSkin(bone).X);
            high = std::max(high, JointInSkin(bone).X);
        }
        const float middle = low < 0 && high > 0 ? (high - low) / 50 : 10;
        for (int32_t v = 1; v <= 100; ++v) {
            const Vec3& at = Meshes[1].Vertices[v];
            const int16_t given = Meshes[1].VertexBones[v];
            ASSERT_TRUE(IsValidBone(given)) << seed;
            const auto mayHave = [&](int32_t bone) {
                const float x = JointInSkin(Bones[bone]).X;
                return std::fabs(x) <= middle || std::fabs(at.X) <= middle || (x > 0) == (at.X > 0);
            };
            const auto distance = [&](int32_t bone) {
                return ToBone({at.X, at.Y, at.Z}, static_cast<size_t>(bone), links);
            };
            ASSERT_TRUE(mayHave(given)) << seed;
            for (int32_t b = 1; b <= BoneCount(); ++b) {
                ASSERT_TRUE(!mayHave(b) || distance(b) > distance(given) - 1e-6) << seed << " " << b << " " << given;
            }
        }
    }
}

TEST_F(Segments, OnlyOrdinaryBonesAndOpenVerticesCount)
{
    const std::vector<MvmBone> row = {{.Position = {0, 0, 0}},
                                      {.Position = {0, 4, 0}, .LinkBone = 1},
                                      {.Position = {0, 4, 0}, .LinkBone = 1},
                                      {.Position = {0, 1, 0}, .IsShadow = true},
                                      {.Position = {NAN, 0, 0}, .LinkBone = 1},
                                      {.Position = {0, 20, 0}, .LinkBone = 4}};
    // Nearer to the end of a bone than to its joint; ties; a link to a bone of the other kind.
    MakeScene(row,
              {{0, 3, 0}, {0, 4, 0}, {0, 4.5F, 0}, {0, 1, 0}, {0, 19, 0}, {NAN, 0, 0}, {INFINITY, 0, 0}, {2e6F, 0, 0}});
    Meshes[1].VertexBones[4] = 6;
    AutoAssignBySegments(1);
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(1, 1, 2, 6, 6, 0, 0, 0));
    EXPECT_EQ(scripted::Redraws, 1);
    // Bones on one side alone serve both.
    MakeScene({{.Position = {1, 0, 0}}}, {{-5, 0, 0}});
    AutoAssignBySegments(1);
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(1));
    // The same refusals as of the other command.
    AutoAssignBySegments(2);
    EXPECT_EQ(Told(), "");
    Meshes[1].IsSkin = false;
    AutoAssignBySegments(1);
    EXPECT_EQ(Told(), "Warning: Mesh is not a skin.\n");
    Bones.Clear();
    AutoAssignBySegments(1);
    EXPECT_EQ(Told(), "Warning: No boned found to assign.\n");
}
