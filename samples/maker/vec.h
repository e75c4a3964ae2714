#pragma once

#include <cmath>

/// A point or direction in view axes: X to the creature's right, Y up, Z towards its tail.
struct V3 {
    double x = 0, y = 0, z = 0;
};

struct V2 {
    double u = 0, v = 0;
};

inline V3 operator+(V3 a, V3 b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline V3 operator-(V3 a, V3 b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline V3 operator*(V3 a, double s)
{
    return {a.x * s, a.y * s, a.z * s};
}
inline double Dot(V3 a, V3 b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline V3 Cross(V3 a, V3 b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(V3 a)
{
    return std::sqrt(Dot(a, a));
}
inline V3 Unit(V3 a)
{
    const double length = Length(a);
    return length > 0 ? a * (1 / length) : V3{0, 1, 0};
}
inline V3 Mix(V3 a, V3 b, double t)
{
    return a + (b - a) * t;
}
/// 0 below `low`, 1 above `high`, smooth between.
inline double Step(double low, double high, double value)
{
    double t = (value - low) / (high - low);
    t = t < 0 ? 0 : (t > 1 ? 1 : t);
    return t * t * (3 - 2 * t);
}
