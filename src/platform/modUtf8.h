#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Appends a character of at most 0xFFFF as UTF-8.
void AppendUtf8(char32_t character, std::string* text);
/// Reads the character at the start of `text`, which is not empty. Gives the number of its bytes; 0, with nothing
/// written, when they are malformed (cut, overlong, a surrogate, above 0x10FFFF).
size_t DecodeUtf8(std::string_view text, char32_t* character);
