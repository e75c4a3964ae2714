#pragma once

#include <cmath>
#include <cstdint>

#include "app/modMvmDef.h"

// Vector math. Vectors hold 32-bit floats; scalar results are worked out and returned as doubles.

// The small ones stand here, where loops over all faces can take them in.

[[nodiscard]] inline Vec3 VecSub(const Vec3& a, const Vec3& b)
{
    return {a.X - b.X, a.Y - b.Y, a.Z - b.Z};
}

[[nodiscard]] inline double VecDot(const Vec3& a, const Vec3& b)
{
    return static_cast<double>(a.X) * b.X + static_cast<double>(a.Y) * b.Y + static_cast<double>(a.Z) * b.Z;
}

[[nodiscard]] inline double VecLength(const Vec3& a)
{
    return std::sqrt(VecDot(a, a));
}

/// a / length; (0, 0, 0) when the length is 0 or not a number. No epsilon.
[[nodiscard]] inline Vec3 VecNormalize(const Vec3& a)
{
    const double length = VecLength(a);
    const auto x = static_cast<float>(a.X / length);
    const auto y = static_cast<float>(a.Y / length);
    const auto z = static_cast<float>(a.Z / length);
    return {length > 0 ? x : 0, length > 0 ? y : 0, length > 0 ? z : 0};
}

[[nodiscard]] inline double VecDistance(const Vec3& a, const Vec3& b)
{
    const double x = static_cast<double>(a.X) - b.X;
    const double y = static_cast<double>(a.Y) - b.Y;
    const double z = static_cast<double>(a.Z) - b.Z;
    return std::sqrt(x * x + y * y + z * z);
}

[[nodiscard]] inline Vec3 VecCross(const Vec3& a, const Vec3& b)
{
    return {static_cast<float>(static_cast<double>(a.Y) * b.Z - static_cast<double>(a.Z) * b.Y),
            static_cast<float>(static_cast<double>(a.Z) * b.X - static_cast<double>(a.X) * b.Z),
            static_cast<float>(static_cast<double>(a.X) * b.Y - static_cast<double>(a.Y) * b.X)};
}

/// VecNormalize(VecCross(c - a, b - a)); give the corners in reverse order for the right-hand normal.
[[nodiscard]] inline Vec3 FaceNormal(const Vec3& a, const Vec3& b, const Vec3& c)
{
    return VecNormalize(VecCross(VecSub(c, a), VecSub(b, a)));
}

/// Heron's formula on the sides |a-b| and |b-c| as 32-bit floats and |c-a|; may be not a number for a sliver.
[[nodiscard]] inline double TriangleArea(const Vec3& a, const Vec3& b, const Vec3& c)
{
    const auto ab = static_cast<float>(VecDistance(a, b));
    const auto bc = static_cast<float>(VecDistance(b, c));
    const double ca = VecDistance(c, a);
    const double s = (ab + static_cast<double>(bc) + ca) * 0.5;
    return std::sqrt(s * (s - ab) * (s - bc) * (s - ca));
}

/// Angle in radians, 0 to pi; pi/2 when a vector is zero; may be not a number from rounding.
[[nodiscard]] double VecAngle(const Vec3& a, const Vec3& b);
/// 0 for exactly 1, 3.1415927 for exactly -1, else pi/2 - atan(x / sqrt(1 - x * x)).
[[nodiscard]] double ArcCos(float x);
/// True for 2, 4, 8, ...
[[nodiscard]] bool IsPowerOfTwo(int32_t value);
