#include "modBase64.h"

#include <array>
#include <cstdint>

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string ToBase64(std::string_view bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t word = 0;
        for (size_t k = 0; k < 3; ++k) {
            word = word << 8U | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        }
        for (size_t k = 0; k < 4; ++k) {
            text += i + k <= bytes.size() ? alphabet[word >> (18 - 6 * k) & 63U] : '=';
        }
    }
    return text;
}

std::string FromBase64(std::string_view text)
{
    std::array<uint8_t, 256> values{};
    values.fill(64);
    for (size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<uint8_t>(i);
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    uint32_t word = 0;
    unsigned bits = 0;
    for (const char c : text) {
        const uint8_t value = values[static_cast<unsigned char>(c)];
        if (value == 64) {
            break;
        }
        word = (word << 6U | value) & 0xFFFFU;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>(word >> bits & 0xFFU);
        }
    }
    return bytes;
}
