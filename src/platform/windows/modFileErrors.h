#pragma once

#include <string>

#include "windows/modWindows.h"

// The system's words for what went wrong with a file. Each gives false.

/// For an error number of the system.
bool Fail(DWORD number, std::string* error);
/// For text that is no path: it is empty or no name of a file.
bool FailPath(const std::string& path, std::string* error);
/// For something that stands where a plain file is wanted.
bool FailKind(bool isFolder, std::string* error);

/// True when the error says no more than that there is nothing of that name.
[[nodiscard]] bool IsMissing(DWORD number);
