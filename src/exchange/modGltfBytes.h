#pragma once

#include <string>

#include "modTinyGltf.h"

/// Loads a file of glTF 2.0, binary or text, whose other files lie in `folder` (with a separator at its end) or below.
/// What the library leaves unchecked is checked: version, required extensions, depth, names of files, and that all
/// views lie inside their buffers. Pictures come as the bytes of their files.
bool LoadGltf(const std::string& bytes, const std::string& folder, tinygltf::Model* file, std::string* error);
