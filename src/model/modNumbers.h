#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Numbers of the shape that nearly every line of a model file has: an optional "-", at most 18 digits, at most one point.

/// 10^0 to 10^22: the powers of ten that a double holds exactly.
inline constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Reads a number of the common shape at *at and moves *at behind it. True only when ",", ")" or `end` follows; then the
/// result is that of LeadingNumber for the same text. Else nothing is changed and the general rule must decide.
inline bool PlainNumber(const char** at, const char* end, double* result)
{
    constexpr uint64_t exactLimit = uint64_t{1} << 53;
    const char* next = *at;
    const bool negative = next != end && *next == '-';
    if (negative) {
        ++next;
    }
    uint64_t digits = 0;
    const char* const first = next;
    while (next != end && *next >= '0' && *next <= '9') {
        digits = digits * 10 + static_cast<uint64_t>(*next - '0');
        ++next;
    }
    auto count = next - first;
    decltype(count) decimals = 0;
    if (next != end && *next == '.') {
        const char* const point = ++next;
        while (next != end && *next >= '0' && *next <= '9') {
            digits = digits * 10 + static_cast<uint64_t>(*next - '0');
            ++next;
        }
        decimals = next - point;
        count += decimals;
    }
    if (count == 0 || count > 18 || digits > exactLimit || (next != end && *next != ',' && *next != ')')) {
        return false;
    }
    // Both operands are exact, so the one rounding of the division gives the correctly rounded value.
    const double value = static_cast<double>(digits) / powersOfTen[static_cast<size_t>(decimals)];
    *result = negative ? -value : value;
    *at = next;
    return true;
}
