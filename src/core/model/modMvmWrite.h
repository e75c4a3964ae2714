#pragma once

#include <string>

#include "modFiles.h"

/// Hands on the whole scene as the text of a model file, in the code page of the scene, part by part.
void WriteModelText(const PartWriter& write);

/// Writes that text to `path`: whole, or not at all; `guard` is the name of a copy of the old content while it does. On
/// a failure shows a message and gives false. The scene is not changed.
bool WriteMVM(const std::string& path, const std::string& guard = {});
