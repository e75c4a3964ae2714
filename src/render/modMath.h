#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

// Vector math. Vectors hold 32-bit floats; scalar results are worked out and returned as doubles.

[[nodiscard]] Vec3 VecSub(const Vec3& a, const Vec3& b);
[[nodiscard]] double VecLength(const Vec3& a);
/// a / length; (0, 0, 0) when the length is 0 or not a number. No epsilon.
[[nodiscard]] Vec3 VecNormalize(const Vec3& a);
[[nodiscard]] double VecDistance(const Vec3& a, const Vec3& b);
[[nodiscard]] double VecDot(const Vec3& a, const Vec3& b);
[[nodiscard]] Vec3 VecCross(const Vec3& a, const Vec3& b);
/// VecNormalize(VecCross(c - a, b - a)); give the corners in reverse order for the right-hand normal.
[[nodiscard]] Vec3 FaceNormal(const Vec3& a, const Vec3& b, const Vec3& c);
/// Heron's formula on the sides |a-b| and |b-c| as 32-bit floats and |c-a|; may be not a number for a sliver.
[[nodiscard]] double TriangleArea(const Vec3& a, const Vec3& b, const Vec3& c);
/// Angle in radians, 0 to pi; pi/2 when a vector is zero; may be not a number from rounding.
[[nodiscard]] double VecAngle(const Vec3& a, const Vec3& b);
/// 0 for exactly 1, 3.1415927 for exactly -1, else pi/2 - atan(x / sqrt(1 - x * x)).
[[nodiscard]] double ArcCos(float x);
/// True for 2, 4, 8, ...
[[nodiscard]] bool IsPowerOfTwo(int32_t value);
