#pragma once

#include <limits>
#include <random>
#include <vector>

#include "app/modMvmDef.h"

// Places of points for the comparisons with plain loops: kinds of arrangements that a search by position could get wrong.
namespace shapes {

inline constexpr int Kinds = 4;

inline float Pick(std::mt19937* random, const std::vector<float>& from)
{
    return from[(*random)() % from.size()];
}

/// A place of the arrangement `kind`, with steps of `step` between neighbours where it has a pattern.
inline Vec3 Place(std::mt19937* random, int kind, float step)
{
    const float inf = std::numeric_limits<float>::infinity();
    std::uniform_real_distribution<float> unit(-1, 1);
    const auto grid = [&](int size) { return static_cast<float>(static_cast<int>((*random)() % 7) % size - 1) * step; };
    switch (kind) {
    case 0: // spread
        return {unit(*random), unit(*random), unit(*random)};
    case 1: // a grid on which thresholds are met exactly
        return {grid(7), grid(3), grid(2)};
    case 2: // far away, where sums round
        return {unit(*random) * 1e7F, 1e7F + grid(3), -1e7F};
    default: // values at the ends of the range
        return {Pick(random, {0, -0.0F, inf, -inf, std::nanf(""), 3e38F, -3e38F, 1e-45F, -1e-45F, step, -step}),
                Pick(random, {0, -0.0F, inf, std::nanf(""), 1e-45F}), Pick(random, {0, -0.0F, 3e38F, step})};
    }
}

} // namespace shapes
