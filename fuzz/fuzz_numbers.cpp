// The number rules, and FloatToText: what is written reads back to the nearest value that seven digits allow.

#include <cmath>
#include <cstring>

#include "model/modNumbers.h"
#include "model/modStrings.h"

namespace {

void CheckFloat(float value)
{
    if (!std::isfinite(value)) {
        (void)FloatToText(value);
        return;
    }
    const std::string text = FloatToText(value);
    double back = 0;
    if (!LeadingNumber(text, &back) || text.size() > 24 || text.find(',') != std::string::npos) {
        __builtin_trap();
    }
    // Half a unit of the seventh digit.
    const double bound =
        value == 0 ? 0 : 0.5 * std::pow(10, std::floor(std::log10(std::fabs(static_cast<double>(value)))) - 6);
    if (std::fabs(back - static_cast<double>(value)) > bound * 1.0000001) {
        __builtin_trap();
    }
    // The digits stand from then on, but for a power of ten whose nearest float lies so far below it (1E+28 is one)
    // that the float has digits of its own.
    const std::string digits = text.substr(0, text.find('E'));
    const bool powerOfTen =
        digits.find_first_of("23456789") == std::string::npos && digits.find('1') == digits.rfind('1');
    float stored = 0;
    if (ToFloat(back, &stored) && FloatToText(stored) != text && !powerOfTen) {
        __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    double number = 0;
    if (LeadingNumber(text, &number)) {
        if (!std::isfinite(number)) {
            __builtin_trap();
        }
        int16_t small = 0;
        int32_t large = 0;
        if (RoundToInt16(number, &small) && std::fabs(number - small) > 0.5) {
            __builtin_trap();
        }
        if (RoundToInt32(number, &large) && std::fabs(number - large) > 0.5) {
            __builtin_trap();
        }
        float stored = 0;
        if (ToFloat(number, &stored)) {
            CheckFloat(stored);
        }
    }
    Vec2 pair;
    Vec3 triple;
    (void)ParseUV(text, &pair);
    (void)ParseVec3(text, &triple);
    (void)StripQuotes(StripWhitespace(text));
    if (size >= sizeof(float)) {
        float value = 0;
        std::memcpy(&value, data, sizeof value);
        CheckFloat(value);
    }
    return 0;
}
