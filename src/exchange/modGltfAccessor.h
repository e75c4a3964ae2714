#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "modTinyGltf.h"

/// The entries of an accessor as floats (whole numbers that are normalized as 0 to 1 or -1 to 1), `width` in a row.
/// Fails for one of another width, that is not inside its view, or with a number that is not finite.
bool ReadFloats(const tinygltf::Model& file, int accessor, size_t width, std::vector<float>* result,
                std::string* error);
/// The same for whole numbers of at least 0.
bool ReadWholes(const tinygltf::Model& file, int accessor, size_t width, std::vector<uint32_t>* result,
                std::string* error);
