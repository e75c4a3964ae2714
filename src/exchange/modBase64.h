#pragma once

#include <string>
#include <string_view>

/// RFC 4648, with its padding.
[[nodiscard]] std::string ToBase64(std::string_view bytes);
/// The bytes up to the first character that is none of the alphabet.
[[nodiscard]] std::string FromBase64(std::string_view text);
