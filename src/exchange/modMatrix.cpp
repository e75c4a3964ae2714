#include "modMatrix.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace {

constexpr double degree = std::numbers::pi / 180;

double Row(const Matrix& m, size_t row, double x, double y, double z)
{
    return m[row] * x + m[4 + row] * y + m[8 + row] * z;
}

double Determinant(const Matrix& m)
{
    return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
           m[2] * (m[4] * m[9] - m[5] * m[8]);
}

} // namespace

Matrix Multiply(const Matrix& a, const Matrix& b)
{
    Matrix result{};
    for (size_t column = 0; column < 4; ++column) {
        for (size_t row = 0; row < 4; ++row) {
            double sum = 0;
            for (size_t k = 0; k < 4; ++k) {
                sum += a[4 * k + row] * b[4 * column + k];
            }
            result[4 * column + row] = sum;
        }
    }
    return result;
}

Matrix MatrixOf(const std::array<double, 3>& move, const std::array<double, 4>& turn,
                const std::array<double, 3>& scale)
{
    const auto [x, y, z, w] = turn;
    return {(1 - 2 * (y * y + z * z)) * scale[0],
            2 * (x * y + w * z) * scale[0],
            2 * (x * z - w * y) * scale[0],
            0,
            2 * (x * y - w * z) * scale[1],
            (1 - 2 * (x * x + z * z)) * scale[1],
            2 * (y * z + w * x) * scale[1],
            0,
            2 * (x * z + w * y) * scale[2],
            2 * (y * z - w * x) * scale[2],
            (1 - 2 * (x * x + y * y)) * scale[2],
            0,
            move[0],
            move[1],
            move[2],
            1};
}

Matrix MatrixOf(const Vec3& move, const Vec3& degrees, float scale)
{
    const double a = degrees.X * degree;
    const double b = degrees.Y * degree;
    const double c = degrees.Z * degree;
    const Matrix x = {1, 0, 0, 0, 0, std::cos(a), std::sin(a), 0, 0, -std::sin(a), std::cos(a), 0, 0, 0, 0, 1};
    const Matrix y = {std::cos(b), 0, -std::sin(b), 0, 0, 1, 0, 0, std::sin(b), 0, std::cos(b), 0, 0, 0, 0, 1};
    const Matrix z = {std::cos(c), std::sin(c), 0, 0, -std::sin(c), std::cos(c), 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    Matrix result = Multiply(z, Multiply(y, x));
    for (size_t i = 0; i < 12; ++i) {
        result[i] *= scale;
    }
    result[12] = move.X;
    result[13] = move.Y;
    result[14] = move.Z;
    return result;
}

std::optional<Matrix> Inverse(const Matrix& m)
{
    // Rows of the inverse are the cross products of the columns, over the determinant.
    const auto cross = [&](size_t a, size_t b) {
        return std::array<double, 3>{m[a + 1] * m[b + 2] - m[a + 2] * m[b + 1], m[a + 2] * m[b] - m[a] * m[b + 2],
                                     m[a] * m[b + 1] - m[a + 1] * m[b]};
    };
    const std::array<std::array<double, 3>, 3> rows = {cross(4, 8), cross(8, 0), cross(0, 4)};
    const double determinant = m[0] * rows[0][0] + m[1] * rows[0][1] + m[2] * rows[0][2];
    if (!std::isnormal(determinant)) {
        return std::nullopt;
    }
    Matrix result{};
    for (size_t row = 0; row < 3; ++row) {
        double moved = 0;
        for (size_t column = 0; column < 3; ++column) {
            result[4 * column + row] = rows[row][column] / determinant;
            moved -= result[4 * column + row] * m[12 + column];
        }
        result[12 + row] = moved;
    }
    result[15] = 1;
    return IsFinite(result) ? std::optional(result) : std::nullopt;
}

bool IsMirrored(const Matrix& matrix)
{
    return Determinant(matrix) < 0;
}

bool IsFinite(const Matrix& matrix)
{
    return std::all_of(matrix.begin(), matrix.end(),
                       [](double number) { return std::isfinite(static_cast<float>(number)); });
}

bool AreAlike(const Matrix& a, const Matrix& b, double size)
{
    double largest = 0;
    double apart = 0;
    for (size_t i = 0; i < 16; ++i) {
        const double factor = i < 12 ? size : 1;
        largest = std::max(largest, std::fabs(a[i]) * factor);
        apart = std::max(apart, std::fabs(a[i] - b[i]) * factor);
    }
    return apart <= 1e-5 * largest;
}

Vec3 Transformed(const Matrix& m, const Vec3& p)
{
    return {static_cast<float>(Row(m, 0, p.X, p.Y, p.Z) + m[12]), static_cast<float>(Row(m, 1, p.X, p.Y, p.Z) + m[13]),
            static_cast<float>(Row(m, 2, p.X, p.Y, p.Z) + m[14])};
}

Vec3 TransformedNormal(const Matrix& inverse, const Vec3& n)
{
    // The transpose of the inverse: its columns are the inverse's rows.
    std::array<double, 3> turned{};
    for (size_t i = 0; i < 3; ++i) {
        turned[i] = inverse[4 * i] * n.X + inverse[4 * i + 1] * n.Y + inverse[4 * i + 2] * n.Z;
    }
    const double length = std::sqrt(turned[0] * turned[0] + turned[1] * turned[1] + turned[2] * turned[2]);
    if (!std::isnormal(length)) {
        return {};
    }
    return {static_cast<float>(turned[0] / length), static_cast<float>(turned[1] / length),
            static_cast<float>(turned[2] / length)};
}

std::optional<Placing> PlacingOf(const Matrix& matrix)
{
    constexpr double even = 1e-5;
    Matrix m = matrix;
    const double handed = Determinant(m);
    for (size_t i = 0; handed < 0 && i < 12; ++i) {
        m[i] = -m[i];
    }
    std::array<double, 3> scales{};
    for (size_t i = 0; i < 3; ++i) {
        scales[i] = std::sqrt(m[4 * i] * m[4 * i] + m[4 * i + 1] * m[4 * i + 1] + m[4 * i + 2] * m[4 * i + 2]);
    }
    const double scale = (scales[0] + scales[1] + scales[2]) / 3;
    const auto dot = [&](size_t a, size_t b) {
        return (m[a] * m[b] + m[a + 1] * m[b + 1] + m[a + 2] * m[b + 2]) / (scale * scale);
    };
    const auto number = static_cast<float>(scale);
    if (!std::isnormal(number) || handed == 0) {
        return std::nullopt;
    }
    for (size_t i = 0; i < 3; ++i) {
        if (std::fabs(scales[i] / scale - 1) > even || std::fabs(dot(4 * i, 4 * ((i + 1) % 3))) > even) {
            return std::nullopt;
        }
    }
    Placing placing;
    placing.Move = {static_cast<float>(m[12]), static_cast<float>(m[13]), static_cast<float>(m[14])};
    placing.Scale = handed < 0 ? -number : number;
    const double sine = std::clamp(-m[2] / scale, -1.0, 1.0);
    const double cosine = std::hypot(m[0], m[1]) / scale;
    const bool upright = cosine > 1e-6; // otherwise X and Z turn about one axis, and X takes it all
    const double x = upright ? std::atan2(m[6], m[10]) : std::atan2(-m[9], m[5]);
    const double z = upright ? std::atan2(m[1], m[0]) : 0;
    placing.Degrees = {static_cast<float>(x / degree), static_cast<float>(std::atan2(sine, cosine) / degree),
                       static_cast<float>(z / degree)};
    return placing;
}
