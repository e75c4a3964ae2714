#include "model/modNumbers.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "model/modStrings.h"

namespace {

// No double and no midpoint between two doubles has more than 768 significant digits, so digits behind these matter
// only by being zero or not.
constexpr int keptDigits = 800;
constexpr int64_t exponentLimit = 100'000'000'000'000'000;

/// The characters of a number one by one, without what may stand between them.
struct NumberText {
    const char* At;
    const char* End;

    /// The present character, 0 at the end (a NUL of the text ends a number just as well).
    char Peek()
    {
        while (At != End && (*At == ' ' || *At == '\t' || *At == '\n')) {
            ++At;
        }
        return At != End ? *At : '\0';
    }
    void Take() { ++At; }
    bool TakeSign()
    {
        const char sign = Peek();
        if (sign == '+' || sign == '-') {
            Take();
        }
        return sign == '-';
    }
};

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The exponent behind a number's digits, 0 when none stands there.
int64_t TakeExponent(NumberText* text)
{
    const char letter = text->Peek();
    if (letter != 'E' && letter != 'e' && letter != 'D' && letter != 'd') {
        return 0;
    }
    text->Take();
    const bool negative = text->TakeSign();
    int64_t exponent = 0;
    for (char c = text->Peek(); IsDigit(c); c = text->Peek()) {
        exponent = exponent < exponentLimit ? exponent * 10 + (c - '0') : exponent;
        text->Take();
    }
    return negative ? -exponent : exponent;
}

/// Writes the seven digits (first one not 0) as first.rest times 10^exponent, for exponents from -4 to 6.
char* WriteDecimal(uint32_t digits, int exponent, char* to)
{
    std::array<char, 7> text{};
    for (size_t place = text.size(); place-- > 0;) {
        text[place] = static_cast<char>('0' + digits % 10);
        digits /= 10;
    }
    int used = 7;
    while (used > 1 && text[static_cast<size_t>(used) - 1] == '0') {
        --used;
    }
    int next = 0;
    if (exponent < 0) {
        *to++ = '0';
        *to++ = '.';
        for (int zero = -1; zero > exponent; --zero) {
            *to++ = '0';
        }
    } else {
        for (; next <= exponent; ++next) {
            *to++ = text[static_cast<size_t>(next)];
        }
        if (next < used) {
            *to++ = '.';
        }
    }
    for (; next < used; ++next) {
        *to++ = text[static_cast<size_t>(next)];
    }
    return to;
}

/// The usual magnitudes by one multiplication. Gives nullptr when its error could decide the last digit.
char* WriteUsual(double value, char* to)
{
    if (!(value >= 1e-4 && value < 1e7)) {
        return nullptr;
    }
    int exponent = 6;
    while (exponent > 0 && value < powersOfTen[static_cast<size_t>(exponent)]) {
        --exponent;
    }
    if (value < 1) {
        exponent = value >= 1e-1 ? -1 : value >= 1e-2 ? -2 : value >= 1e-3 ? -3 : -4;
    }
    const double scaled = value * powersOfTen[static_cast<size_t>(6 - exponent)];
    auto digits = static_cast<uint32_t>(scaled);
    const double rest = scaled - digits;
    if (std::abs(rest - 0.5) < 1e-6) {
        return nullptr;
    }
    digits += rest > 0.5 ? 1 : 0;
    return digits >= 1'000'000 && digits <= 9'999'999 ? WriteDecimal(digits, exponent, to) : nullptr;
}

} // namespace

bool LeadingNumber(std::string_view text, double* result)
{
    const char* start = text.data();
    if (PlainNumber(&start, text.data() + text.size(), result)) {
        return true;
    }
    NumberText number{text.data(), text.data() + text.size()};
    const bool negative = number.TakeSign();
    // Kept as 0.DIGITS times 10^point, without zeros in front.
    std::array<char, keptDigits + 32> clean{};
    char* to = clean.data();
    *to++ = '0';
    *to++ = '.';
    char* const firstDigit = to;
    char* const lastDigit = firstDigit + keptDigits;
    int64_t point = 0;
    bool pointSeen = false;
    bool restHolds = false; // digits other than 0 stand behind those that are kept
    bool zeroSeen = false;
    for (char c = number.Peek(); IsDigit(c) || (c == '.' && !pointSeen); c = number.Peek()) {
        number.Take();
        if (c == '.') {
            pointSeen = true;
            continue;
        }
        const bool leadingZero = c == '0' && to == firstDigit;
        zeroSeen = zeroSeen || leadingZero;
        if (!leadingZero && to != lastDigit) {
            *to++ = c;
        } else if (!leadingZero) {
            restHolds = restHolds || c != '0';
        }
        if (!pointSeen && !leadingZero) {
            ++point;
        } else if (pointSeen && leadingZero) {
            --point;
        }
    }
    if (to == firstDigit) {
        *result = negative && zeroSeen ? -0.0 : 0.0;
        return true;
    }
    point += TakeExponent(&number);
    double value = 0;
    if (point > 400) {
        return false;
    }
    if (point > -400) {
        *to = '1';
        to += restHolds ? 1 : 0;
        *to++ = 'e';
        to = std::to_chars(to, clean.data() + clean.size(), point).ptr;
        const auto read = std::from_chars(clean.data(), to, value);
        if (read.ec != std::errc() || std::isinf(value)) {
            if (point > 0) {
                return false;
            }
            value = 0;
        }
    }
    *result = negative ? -value : value;
    return true;
}

bool ToFloat(double value, float* result)
{
    constexpr double largest = std::numeric_limits<float>::max();
    constexpr double roundsToInfinity = 0x1.ffffffp127;
    const double size = std::abs(value);
    if (size > largest && !std::isinf(value)) {
        if (size >= roundsToInfinity) {
            return false;
        }
        value = std::copysign(largest, value);
    }
    *result = static_cast<float>(value);
    return true;
}

bool RoundToInt16(double value, int16_t* result)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -32768.0 && rounded <= 32767.0)) {
        return false;
    }
    *result = static_cast<int16_t>(rounded);
    return true;
}

bool RoundToInt32(double value, int32_t* result)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0)) {
        return false;
    }
    *result = static_cast<int32_t>(rounded);
    return true;
}

char* FloatToChars(float value, char* to)
{
    if (value == 0 || std::isnan(value)) {
        *to++ = '0';
        return to;
    }
    if (std::signbit(value)) {
        *to++ = '-';
    }
    const float size = std::isinf(value) ? std::numeric_limits<float>::max() : std::abs(value);
    if (char* const end = WriteUsual(size, to)) {
        return end;
    }
    char* const end = std::to_chars(to, to + 20, size, std::chars_format::general, 7).ptr;
    for (; to != end; ++to) {
        *to = *to == 'e' ? 'E' : *to;
    }
    return end;
}

std::string FloatToText(float value)
{
    std::array<char, 24> text{};
    return {text.data(), FloatToChars(value, text.data())};
}
