#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Numbers of the shape that nearly every line of a model file has: an optional "-", at most 18 digits, at most one point.

/// 10^0 to 10^22: the powers of ten that a double holds exactly.
inline constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

inline constexpr std::array<uint64_t, 9> wholePowers = {1,       10,        100,        1'000,      10'000,
                                                        100'000, 1'000'000, 10'000'000, 100'000'000};

/// Up to eight digits at once: the number of digits that stand at the start of eight readable bytes, and their value.
struct DigitRun {
    unsigned Count;
    uint64_t Value;
};

inline DigitRun ReadDigits(const char* at)
{
    uint64_t bytes = 0;
    std::memcpy(&bytes, at, sizeof(bytes));
    bytes ^= 0x3030303030303030; // digits become 0 to 9
    // The lowest byte above 9 gets its high bit; a carry only reaches bytes behind it.
    const uint64_t others = (bytes | (bytes + 0x7676767676767676)) & 0x8080808080808080;
    const auto count = static_cast<unsigned>(std::countr_zero(others)) / 8;
    if (count == 0) {
        return {0, 0};
    }
    bytes <<= 64 - 8 * count; // zeros in front
    bytes = bytes * 10 + (bytes >> 8);
    const uint64_t value = ((bytes & 0x000000FF000000FF) * 0x000F424000000064 +
                            ((bytes >> 16) & 0x000000FF000000FF) * 0x0000271000000001) >>
                           32;
    return {count, value};
}

/// True when ReadDigits may be used at `at` on this machine.
inline bool CanReadDigits(const char* at, const char* end)
{
    return std::endian::native == std::endian::little && end - at >= 8;
}

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
    ptrdiff_t count = 0;
    ptrdiff_t decimals = 0;
    const auto take = [&] {
        const char* const first = next;
        if (CanReadDigits(next, end)) {
            const DigitRun run = ReadDigits(next);
            digits = digits * wholePowers[run.Count] + run.Value;
            next += run.Count;
        }
        if (next == first || next - first == 8) {
            for (; next != end && *next >= '0' && *next <= '9'; ++next) {
                digits = digits * 10 + static_cast<uint64_t>(*next - '0');
            }
        }
        return next - first;
    };
    count = take();
    if (next != end && *next == '.') {
        ++next;
        decimals = take();
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

/// Plain decimal text; `to` has room for 6 characters. Gives the end.
char* Int16ToChars(int16_t value, char* to);
