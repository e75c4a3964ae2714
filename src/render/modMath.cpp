#include "render/modMath.h"

#include <cmath>

namespace {

constexpr double pi = 3.14159265358979;

} // namespace

Vec3 VecSub(const Vec3& a, const Vec3& b)
{
    return {a.X - b.X, a.Y - b.Y, a.Z - b.Z};
}

double VecLength(const Vec3& a)
{
    return std::sqrt(VecDot(a, a));
}

Vec3 VecNormalize(const Vec3& a)
{
    const double length = VecLength(a);
    if (!(length > 0)) {
        return {};
    }
    return {static_cast<float>(a.X / length), static_cast<float>(a.Y / length), static_cast<float>(a.Z / length)};
}

double VecDistance(const Vec3& a, const Vec3& b)
{
    const double x = static_cast<double>(a.X) - b.X;
    const double y = static_cast<double>(a.Y) - b.Y;
    const double z = static_cast<double>(a.Z) - b.Z;
    return std::sqrt(x * x + y * y + z * z);
}

double VecDot(const Vec3& a, const Vec3& b)
{
    return static_cast<double>(a.X) * b.X + static_cast<double>(a.Y) * b.Y + static_cast<double>(a.Z) * b.Z;
}

Vec3 VecCross(const Vec3& a, const Vec3& b)
{
    return {static_cast<float>(static_cast<double>(a.Y) * b.Z - static_cast<double>(a.Z) * b.Y),
            static_cast<float>(static_cast<double>(a.Z) * b.X - static_cast<double>(a.X) * b.Z),
            static_cast<float>(static_cast<double>(a.X) * b.Y - static_cast<double>(a.Y) * b.X)};
}

Vec3 FaceNormal(const Vec3& a, const Vec3& b, const Vec3& c)
{
    return VecNormalize(VecCross(VecSub(c, a), VecSub(b, a)));
}

double TriangleArea(const Vec3& a, const Vec3& b, const Vec3& c)
{
    const auto ab = static_cast<float>(VecDistance(a, b));
    const auto bc = static_cast<float>(VecDistance(b, c));
    const double ca = VecDistance(c, a);
    const double s = (ab + static_cast<double>(bc) + ca) * 0.5;
    return std::sqrt(s * (s - ab) * (s - bc) * (s - ca));
}

double VecAngle(const Vec3& a, const Vec3& b)
{
    return ArcCos(static_cast<float>(VecDot(VecNormalize(a), VecNormalize(b))));
}

double ArcCos(float x)
{
    if (x == 1) {
        return 0;
    }
    if (x == -1) {
        return 3.1415927;
    }
    const double wide = x;
    return pi / 2 - std::atan(wide / std::sqrt(1 - wide * wide));
}

bool IsPowerOfTwo(int32_t value)
{
    return value >= 2 && (value & (value - 1)) == 0;
}
