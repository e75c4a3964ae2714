#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "app/modMvmDef.h"

// Places of points for the comparisons with plain loops: kinds of arrangements that a search by position could get wrong.
namespace shapes {

inline constexpr int Kinds = 8;

inline float Pick(std::mt19937* random, const std::vector<float>& from)
{
    return from[(*random)() % from.size()];
}

/// A number of points: a few, or such that nodes of a search are just full or just not.
inline std::mt19937::result_type Count(std::mt19937* random)
{
    const std::mt19937::result_type full[] = {16, 17, 256, 257, 300};
    return (*random)() % 4 == 0 ? full[(*random)() % 5] : (*random)() % 150;
}

/// A place of the arrangement `kind`, with steps of `step` between neighbours where it has a pattern.
inline Vec3 Place(std::mt19937* random, int kind, float step)
{
    const float inf = std::numeric_limits<float>::infinity();
    std::uniform_real_distribution<float> unit(-1, 1);
    const auto grid = [&](int size) {
        return static_cast<float>(static_cast<int>((*random)() % (2U * static_cast<unsigned>(size) + 1)) - size) * step;
    };
    switch (kind) {
    case 0: // spread
        return {unit(*random), unit(*random), unit(*random)};
    case 1: // a grid on which thresholds are met exactly
        return {grid(3), grid(2), grid(2)};
    case 2: // all close to one place
        return {unit(*random) * step, unit(*random) * step, unit(*random) * step};
    case 3: // a line
        return {grid(40), 0, -0.0F};
    case 4: // a plane
        return {grid(8), 1, grid(8)};
    case 5: // far away, where sums round
        return {unit(*random) * 1e7F, 1e7F + grid(2), -1e7F};
    case 6: // values at the ends of the range
        return {Pick(random, {0, -0.0F, inf, -inf, std::nanf(""), 3e38F, -3e38F, 1e-45F, -1e-45F, step, -step}),
                Pick(random, {0, -0.0F, inf, std::nanf(""), 1e-45F}), Pick(random, {0, -0.0F, 3e38F, step})};
    default: // powers, each place much nearer to the origin than the last
        return {std::ldexp(unit(*random) < 0 ? 1.0F : -1.0F, -static_cast<int>((*random)() % 60)), grid(1), 0};
    }
}

} // namespace shapes
