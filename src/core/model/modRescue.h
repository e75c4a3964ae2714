#pragma once

#include <string>

/// Where unsaved changes of a model are written when the program is ended from outside: beside it, or in the folder for
/// temporary files for one without a name.
[[nodiscard]] std::string RescuePath(const std::string& model);

/// Writes the scene to the RescuePath of CurrentFile, whole or not at all; where that cannot be, to the folder for
/// temporary files. Nothing to do without an open model that was changed: true with an empty *path. Shows no box.
bool RescueModel(std::string* path, std::string* error);
