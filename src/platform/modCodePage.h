#pragma once

#include <string>
#include <string_view>

// Model, alias and weights files are Windows-1252 on every machine. The five bytes without a character there stand for
// the control characters of the same number, so every byte survives a round trip.

[[nodiscard]] std::string Utf8FromCodePage(std::string_view bytes);
/// Characters outside the code page and malformed UTF-8 become "?".
[[nodiscard]] std::string CodePageFromUtf8(std::string_view text);
