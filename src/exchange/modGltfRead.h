#pragma once

#include <string>

#include "modExchangeModel.h"

/// Reads glTF 2.0, binary or text, whose other files lie in `folder` (with a separator at its end). What the model
/// cannot take is left out and told in its Notes. False, with *error set, when it cannot be read or holds no mesh.
bool ReadGltf(const std::string& bytes, const std::string& folder, ExchangeModel* model, std::string* error);
