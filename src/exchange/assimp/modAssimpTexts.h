#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <assimp/types.h>

#include "modUtf8.h"

/// A text of a file as UTF-8 on one line: what is neither becomes "?".
[[nodiscard]] inline std::string TextOf(std::string_view bytes)
{
    std::string text;
    while (!bytes.empty()) {
        char32_t character = 0;
        const size_t length = DecodeUtf8(bytes, &character);
        text += length == 0 || character < U' ' ? "?" : bytes.substr(0, length);
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

[[nodiscard]] inline std::string TextOf(const aiString& text)
{
    return TextOf(std::string_view(text.C_Str()));
}

/// "1 light was left out." or "2 lights were left out."
[[nodiscard]] inline std::string LeftOut(size_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + " " + (count == 1 ? one + " was" : many + " were") + " left out.";
}
