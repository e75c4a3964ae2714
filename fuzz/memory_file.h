#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Puts bytes into a file that lives in memory and gives its path. Each slot (0 to 3) is one file, written over by the
/// next call with the same slot.
std::string MemoryFile(int slot, const uint8_t* data, size_t size);
