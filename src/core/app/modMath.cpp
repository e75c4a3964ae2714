#include "app/modMath.h"

#include <cmath>

namespace {

constexpr double pi = 3.14159265358979;

} // namespace

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
    // The last bit of the double's own function differs between systems, and with it the normals in a saved model.
    const long double slope = wide / std::sqrt(1 - wide * wide);
    return pi / 2 - static_cast<double>(std::atan(slope));
}

bool IsPowerOfTwo(int32_t value)
{
    return value >= 2 && (value & (value - 1)) == 0;
}
