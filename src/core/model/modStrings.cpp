#include "model/modStrings.h"

#include <algorithm>
#include <array>

#include "model/modNumbers.h"

namespace {

char LowerChar(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Drops the first and the last character and reads the pieces between commas. Missing pieces are 0, further ones
/// ignored.
template <size_t Count>
bool ParseNumbers(std::string_view text, std::array<float, Count>* result)
{
    if (text.size() < 2) {
        return false;
    }
    std::string_view rest = text.substr(1, text.size() - 2);
    std::array<float, Count> numbers{};
    for (size_t index = 0; index < Count; ++index) {
        const size_t comma = rest.find(',');
        double value = 0;
        if (!LeadingNumber(rest.substr(0, comma), &value) || !ToFloat(value, &numbers[index])) {
            return false;
        }
        if (comma == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
    *result = numbers;
    return true;
}

} // namespace

std::string_view FileNameOf(std::string_view path)
{
    const size_t separator = path.find_last_of("\\/");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::string_view DirectoryOf(std::string_view path)
{
    const size_t separator = path.find_last_of("\\/");
    return separator == std::string_view::npos ? std::string_view() : path.substr(0, separator + 1);
}

std::string_view ExtensionOf(std::string_view path)
{
    const size_t point = path.rfind('.');
    return point == std::string_view::npos ? path : path.substr(point + 1);
}

std::string_view TextBeforeNull(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerChar);
    return lower;
}

bool EqualsAnyCase(std::string_view text, std::string_view word)
{
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char a, char b) { return LowerChar(a) == b; });
}

bool HoldsAnyCase(std::string_view text, std::string_view word)
{
    return std::search(text.begin(), text.end(), word.begin(), word.end(),
                       [](char a, char b) { return LowerChar(a) == b; }) != text.end() ||
           word.empty();
}

std::string StripWhitespace(std::string_view line)
{
    std::string result;
    result.reserve(line.size());
    bool inQuotes = false;
    for (const char c : line) {
        inQuotes = inQuotes != (c == '"');
        if (inQuotes || (c != ' ' && c != '\t')) {
            result.push_back(c);
        }
    }
    return result;
}

std::string StripQuotes(std::string_view text)
{
    std::string result(text);
    std::erase(result, '"');
    return result;
}

bool ParseUV(std::string_view text, Vec2* result)
{
    std::array<float, 2> numbers{};
    if (!ParseNumbers(text, &numbers)) {
        return false;
    }
    *result = {numbers[0], numbers[1]};
    return true;
}

bool ParseVec3(std::string_view text, Vec3* result)
{
    std::array<float, 3> numbers{};
    if (!ParseNumbers(text, &numbers)) {
        return false;
    }
    *result = {numbers[0], numbers[2], -numbers[1]};
    return true;
}

double JointNumber(std::string_view boneName)
{
    double number = 0;
    LeadingNumber(boneName.substr(boneName.size() - std::min<size_t>(boneName.size(), 2)), &number);
    return number;
}
