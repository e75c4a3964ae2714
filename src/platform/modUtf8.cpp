#include "modUtf8.h"

void AppendUtf8(char32_t character, std::string* text)
{
    const auto add = [text](char32_t byte) { *text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (character < 0x80) {
        add(character);
    } else if (character < 0x800) {
        add(0xC0 | (character >> 6));
        add(0x80 | (character & 0x3F));
    } else {
        add(0xE0 | (character >> 12));
        add(0x80 | ((character >> 6) & 0x3F));
        add(0x80 | (character & 0x3F));
    }
}

size_t DecodeUtf8(std::string_view text, char32_t* character)
{
    const auto byteAt = [text](size_t index) { return static_cast<char32_t>(static_cast<unsigned char>(text[index])); };
    const char32_t first = byteAt(0);
    if (first < 0x80) {
        *character = first;
        return 1;
    }
    size_t length = 0;
    char32_t value = 0;
    char32_t smallest = 0; // below it the form is overlong
    if ((first & 0xE0) == 0xC0) {
        length = 2;
        value = first & 0x1F;
        smallest = 0x80;
    } else if ((first & 0xF0) == 0xE0) {
        length = 3;
        value = first & 0x0F;
        smallest = 0x800;
    } else if ((first & 0xF8) == 0xF0) {
        length = 4;
        value = first & 0x07;
        smallest = 0x10000;
    }
    if (length == 0 || text.size() < length) {
        return 0;
    }
    for (size_t index = 1; index < length; ++index) {
        const char32_t next = byteAt(index);
        if ((next & 0xC0) != 0x80) {
            return 0;
        }
        value = (value << 6) | (next & 0x3F);
    }
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < smallest || value > 0x10FFFF || surrogate) {
        return 0;
    }
    *character = value;
    return length;
}
