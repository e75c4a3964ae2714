#pragma once

// The library for glTF, without its own access to pictures and files.

#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#define TINYGLTF_NO_INCLUDE_STB_IMAGE
#define TINYGLTF_NO_INCLUDE_STB_IMAGE_WRITE
#define TINYGLTF_NO_FS
#define TINYGLTF_NO_INCLUDE_JSON
#include <nlohmann/json.hpp>

#include <tiny_gltf.h>
