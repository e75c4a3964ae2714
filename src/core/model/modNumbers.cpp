#include "model/modNumbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <system_error>

#include "modLocale.h"

namespace {

constexpr std::array<double, 11> powersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

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

/// "00" to "99".
constexpr std::array<char, 200> digitPairs = [] {
    std::array<char, 200> pairs{};
    for (size_t number = 0; number < 100; ++number) {
        pairs[2 * number] = static_cast<char>('0' + number / 10);
        pairs[2 * number + 1] = static_cast<char>('0' + number % 10);
    }
    return pairs;
}();

/// Writes a number below 100,000,000 as eight digits.
void WriteEightDigits(uint32_t number, char* to)
{
    const uint32_t high = number / 10'000;
    const uint32_t low = number % 10'000;
    std::memcpy(to, &digitPairs[size_t{2} * (high / 100)], 2);
    std::memcpy(to + 2, &digitPairs[size_t{2} * (high % 100)], 2);
    std::memcpy(to + 4, &digitPairs[size_t{2} * (low / 100)], 2);
    std::memcpy(to + 6, &digitPairs[size_t{2} * (low % 100)], 2);
}

/// Writes seven digits (the first one not 0) as first.rest times 10^exponent, for exponents from -4 to 6, without zeros
/// at the end. Uses up to 16 characters of `to`.
char* WriteDecimal(uint32_t digits, int exponent, char* to)
{
    std::array<char, 8> text{}; // text[0] is a "0" in front
    WriteEightDigits(digits, text.data());
    if (exponent < 0) {
        constexpr std::string_view zeros = "0.000";
        std::memcpy(to, zeros.data(), zeros.size());
        to += 1 - exponent;
        std::memcpy(to, &text[1], 7);
        to += 7;
    } else {
        const auto whole = static_cast<size_t>(exponent) + 1;
        std::memcpy(to, &text[1], 7);
        std::memmove(to + whole + 1, to + whole, 7 - whole);
        to[whole] = '.';
        to += 8;
    }
    while (to[-1] == '0') {
        --to;
    }
    return to[-1] == '.' ? to - 1 : to;
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

std::string FloatToLocaleText(float value)
{
    std::string text = FloatToText(value);
    const size_t point = text.find('.');
    if (point != std::string::npos) {
        text.replace(point, 1, LocaleDecimalMark());
    }
    return text;
}
