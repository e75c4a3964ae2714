#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "app/modMath.h"

namespace {

TEST(Math, NormalizesWithoutEpsilon)
{
    const float tiny = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(VecNormalize({0, -tiny, 0}).Y, -1);
    EXPECT_EQ(VecNormalize({3, 0, 4}).Z, 0.8F);
    EXPECT_TRUE(std::isnan(VecNormalize({std::numeric_limits<float>::infinity(), 0, 0}).X));
    for (const float nothing : {0.0F, std::nanf("")}) {
        const Vec3 normal = VecNormalize({nothing, 0, nothing});
        EXPECT_TRUE(normal.X == 0 && normal.Y == 0 && normal.Z == 0);
    }
}

TEST(Math, ScalarsKeepDoublePrecision)
{
    EXPECT_EQ(VecLength({3e30F, 4e30F, 0}), std::hypot(static_cast<double>(3e30F), static_cast<double>(4e30F)));
    EXPECT_EQ(VecDot({16777216, 1, 0}, {1, 1, 0}), 16777217.0);
    // The difference itself is not rounded to 32 bits.
    EXPECT_EQ(VecDistance({16777216, 0, 0}, {-1, 0, 0}), 16777217.0);
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
        EXPECT_TRUE(IsPowerOfTwo(value) && !IsPowerOfTwo(value - 1)) << value;
    }
    EXPECT_FALSE(IsPowerOfTwo(0));
    EXPECT_FALSE(IsPowerOfTwo(INT32_MIN));
}

} // namespace
