#pragma once

#include <string>

#include "platform/modFiles.h"

/// Hands on the whole scene as the text of a model file, in the code page of the scene, part by part.
void WriteModelText(const PartWriter& write);
/// The same text in one.
[[nodiscard]] std::string ModelText();

/// Writes the text of WriteModelText to `path`: whole, or not at all. On a failure shows a message and gives false. The scene is not
/// changed.
bool WriteMVM(const std::string& path);
