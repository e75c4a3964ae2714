#pragma once

#include <string>

#include <sys/types.h>

// The system's words for what went wrong with a file. Each gives false.

/// For an error number.
bool Fail(int number, std::string* error);
/// For text that is no path: it is empty or holds a NUL.
bool FailPath(const std::string& path, std::string* error);
/// For something that stands where a plain file is wanted.
bool FailKind(mode_t mode, std::string* error);

/// A path of the system ends at a NUL: text with one in it names no file.
[[nodiscard]] bool IsPath(const std::string& path);
