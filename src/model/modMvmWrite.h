#pragma once

#include <string>

/// The whole scene as the text of a model file, in the code page of the scene.
[[nodiscard]] std::string ModelText();

/// Writes ModelText() to `path`: whole, or not at all. On a failure shows a message and gives false. The scene is not
/// changed.
bool WriteMVM(const std::string& path);
