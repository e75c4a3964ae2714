#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The little-endian number of 1 to 4 bytes at `at`; the bytes must hold it whole.
template <std::integral T>
[[nodiscard]] T LittleEndian(std::string_view bytes, size_t at)
{
    uint32_t bits = 0;
    for (size_t i = 0; i < sizeof(T); ++i) {
        bits |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
    }
    return static_cast<T>(bits);
}
