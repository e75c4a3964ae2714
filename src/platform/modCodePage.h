#pragma once

#include <string>
#include <string_view>

// Model, alias and weights files are Windows-1252 on every machine. The five bytes without a character there stand for
// the control characters of the same number, so every byte survives a round trip.

[[nodiscard]] std::string Utf8FromCodePage(std::string_view bytes);
/// Characters outside the code page and malformed UTF-8 become "?".
[[nodiscard]] std::string CodePageFromUtf8(std::string_view text);

/// The small letter of a character that the code page has; any other character itself.
[[nodiscard]] char32_t SmallLetter(char32_t character);
/// UTF-8 text with the letters of the code page in lower case; malformed bytes stay.
[[nodiscard]] std::string LowerText(std::string_view text);
