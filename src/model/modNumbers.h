#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Numbers of the shape that nearly every line of a model file has: an optional "-", at most 18 digits, at most one point.

/// 10^0 to 10^22: the powers of ten that a double holds exactly.
inline constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

inline constexpr std::array<uint64_t, 9> wholePowers = {1,       10,        100,        1'000,      10'000,
                                                        100'000, 1'000'000, 10'000'000, 100'000'000};

/// Eight readable bytes as a number, the first one lowest.
inline uint64_t LoadEight(const char* at)
{
    uint64_t bytes = 0;
    std::memcpy(&bytes, at, sizeof(bytes));
    if constexpr (std::endian::native == std::endian::big) {
        uint64_t swapped = 0;
        for (int byte = 0; byte < 8; ++byte) {
            swapped = swapped << 8 | (bytes >> (8 * byte) & 0xFF);
        }
        return swapped;
    }
    return bytes;
}

/// Bit n of the result says whether byte n of eight readable ones is no digit.
inline uint64_t OthersOfEight(const char* at)
{
    constexpr uint64_t lowBits = 0x7F7F7F7F7F7F7F7F;
    const uint64_t bytes = LoadEight(at) ^ 0x3030303030303030;                // digits become 0 to 9
    const uint64_t others = ((bytes & lowBits) + 0x7676767676767676) | bytes; // the high bit of each byte above 9
    return ((others & ~lowBits) >> 7) * 0x0102040810204080 >> 56;             // gathers one bit of each byte
}

/// The same for 64 readable bytes.
inline uint64_t OthersOf64(const char* at)
{
    uint64_t others = 0;
#ifdef __SSE2__
    for (unsigned part = 0; part < 64; part += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + part));
        const __m128i digitsLowest = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(-128 - '0')));
        const __m128i found = _mm_cmpgt_epi8(digitsLowest, _mm_set1_epi8(-128 + 9));
        others |= uint64_t{static_cast<unsigned>(_mm_movemask_epi8(found))} << part;
    }
#else
    for (unsigned part = 0; part < 64; part += 8) {
        others |= OthersOfEight(at + part) << part;
    }
#endif
    return others;
}

/// The value of `count` digits, 1 to 8, of which eight bytes can be read.
inline uint64_t DigitsValue(const char* at, unsigned count)
{
    uint64_t bytes = (LoadEight(at) ^ 0x3030303030303030) << (64 - 8 * count); // zeros in front
    bytes = bytes * 10 + (bytes >> 8);
    return ((bytes & 0x000000FF000000FF) * 0x000F424000000064 +
            ((bytes >> 16) & 0x000000FF000000FF) * 0x0000271000000001) >>
           32;
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
    const auto take = [&] {
        const char* const first = next;
        for (; next != end && *next >= '0' && *next <= '9'; ++next) {
            digits = digits * 10 + static_cast<uint64_t>(*next - '0');
        }
        return next - first;
    };
    ptrdiff_t count = take();
    ptrdiff_t decimals = 0;
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
