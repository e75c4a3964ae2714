#include "modCodePage.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "modUtf8.h"

namespace {

/// The characters of the bytes 0x80 to 0x9F. All other bytes are the character of their own number.
constexpr std::array<char32_t, 32> highCharacters = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char ByteOf(char32_t character)
{
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<char>(static_cast<unsigned char>(character));
    }
    const auto* found = std::find(highCharacters.begin(), highCharacters.end(), character);
    if (found == highCharacters.end()) {
        return '?';
    }
    return static_cast<char>(static_cast<unsigned char>(0x80 + std::distance(highCharacters.begin(), found)));
}

} // namespace

std::string Utf8FromCodePage(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        const bool high = number >= 0x80 && number < 0xA0;
        AppendUtf8(high ? highCharacters[number - 0x80U] : char32_t{number}, &text);
    }
    return text;
}

std::string CodePageFromUtf8(std::string_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        char32_t character = 0;
        const size_t length = DecodeUtf8(text.substr(at), &character);
        bytes += length > 0 ? ByteOf(character) : '?';
        at += std::max<size_t>(length, 1);
    }
    return bytes;
}

char32_t SmallLetter(char32_t character)
{
    const bool ascii = character >= U'A' && character <= U'Z';
    const bool latin = character >= 0xC0 && character <= 0xDE && character != 0xD7;
    if (ascii || latin) {
        return character + 0x20;
    }
    switch (character) {
    case 0x152: // OE ligature
    case 0x160: // S with caron
    case 0x17D: // Z with caron
        return character + 1;
    case 0x178: // Y with diaeresis
        return 0xFF;
    default:
        return character;
    }
}

std::string LowerText(std::string_view text)
{
    std::string lower;
    lower.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        char32_t character = 0;
        const size_t length = std::max<size_t>(DecodeUtf8(text.substr(at), &character), 1);
        const char32_t small = SmallLetter(character);
        if (small != character) {
            AppendUtf8(small, &lower);
        } else {
            lower += text.substr(at, length);
        }
        at += length;
    }
    return lower;
}
