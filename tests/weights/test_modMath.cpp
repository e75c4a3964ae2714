#include "render/modMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

bool IsZero(const Vec3& a)
{
    return a.X == 0 && a.Y == 0 && a.Z == 0;
}

TEST(Math, NormalizesWithoutEpsilon)
{
    EXPECT_TRUE(IsZero(VecNormalize({0, 0, 0})));
    EXPECT_TRUE(IsZero(VecNormalize({std::nanf(""), 1, 1})));
    const float tiny = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(VecNormalize({0, -tiny, 0}).Y, -1);
    EXPECT_EQ(VecNormalize({3, 0, 4}).Z, 0.8F);
    EXPECT_TRUE(std::isnan(VecNormalize({infinity, 0, 0}).X));
}

TEST(Math, ScalarsKeepDoublePrecision)
{
    EXPECT_EQ(VecDistance({1e20F, 0, 0}, {0, 0, 0}), static_cast<double>(1e20F));
    EXPECT_EQ(VecLength({3e30F, 4e30F, 0}), std::hypot(static_cast<double>(3e30F), static_cast<double>(4e30F)));
    EXPECT_EQ(VecDot({16777216, 1, 0}, {1, 1, 0}), 16777217.0);
    // The difference itself is not rounded to 32 bits.
    EXPECT_EQ(VecDistance({16777216, 0, 0}, {-1, 0, 0}), 16777217.0);
}

TEST(Math, FaceNormalIsRightHandedInReverseOrder)
{
    const Vec3 p1{0, 0, 0};
    const Vec3 p2{1, 0, 0};
    const Vec3 p3{0, 1, 0};
    EXPECT_EQ(FaceNormal(p3, p2, p1).Z, 1);
    EXPECT_EQ(FaceNormal(p1, p2, p3).Z, -1);
}

TEST(Math, AreasAndAngles)
{
    EXPECT_EQ(TriangleArea({0, 0, 0}, {3, 0, 0}, {3, 4, 0}), 6);
    EXPECT_EQ(TriangleArea({1, 2, 3}, {1, 2, 3}, {1, 2, 3}), 0);
    EXPECT_EQ(VecAngle({0, 2, 0}, {0, 5, 0}), 0);
    EXPECT_EQ(VecAngle({0, 2, 0}, {0, -5, 0}), 3.1415927);
    EXPECT_DOUBLE_EQ(VecAngle({0, 0, 0}, {1, 2, 3}), 3.14159265358979 / 2);
    EXPECT_NEAR(ArcCos(0.5F), std::acos(0.5), 1e-12);
    EXPECT_TRUE(std::isnan(ArcCos(1.0000001F)));
}

TEST(Math, PowersOfTwoStartAtTwo)
{
    for (const int32_t value : {2, 4, 1024, 1 << 30}) {
        EXPECT_TRUE(IsPowerOfTwo(value)) << value;
    }
    for (const int32_t value : {0, 1, 3, 1023, -2, INT32_MIN}) {
        EXPECT_FALSE(IsPowerOfTwo(value)) << value;
    }
}

} // namespace
