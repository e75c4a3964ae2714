#pragma once

#include <array>
#include <optional>

#include "app/modMvmDef.h"

/// 4 x 4, column by column as glTF has it; the last row is 0, 0, 0, 1.
using Matrix = std::array<double, 16>;

constexpr Matrix identityMatrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// The matrix that does b, then a.
[[nodiscard]] Matrix Multiply(const Matrix& a, const Matrix& b);
/// A scale, then a turn (a unit quaternion x, y, z, w), then a move.
[[nodiscard]] Matrix MatrixOf(const std::array<double, 3>& move, const std::array<double, 4>& turn,
                              const std::array<double, 3>& scale);
/// A scale, then turns about X, Y and Z in this order, in degrees, then a move.
[[nodiscard]] Matrix MatrixOf(const Vec3& move, const Vec3& degrees, float scale);
/// None for a matrix that flattens space.
[[nodiscard]] std::optional<Matrix> Inverse(const Matrix& matrix);
/// True when the scene's floats can hold all of it.
[[nodiscard]] bool IsMirrored(const Matrix& matrix);
[[nodiscard]] bool IsFinite(const Matrix& matrix);
/// True when places as large as `size` come out alike, within 1e-5 of what they come out as.
[[nodiscard]] bool AreAlike(const Matrix& a, const Matrix& b, double size);

[[nodiscard]] Vec3 Transformed(const Matrix& matrix, const Vec3& place);
/// A normal under the matrix whose inverse is given, of length 1; 0 when there is no direction.
[[nodiscard]] Vec3 TransformedNormal(const Matrix& inverse, const Vec3& normal);

struct Placing {
    Vec3 Move{};
    Vec3 Degrees{}; ///< about X, then Y, then Z
    float Scale = 1;
};
/// The parts of a matrix that scales evenly, below 0 for one that mirrors; none for any other.
[[nodiscard]] std::optional<Placing> PlacingOf(const Matrix& matrix);
