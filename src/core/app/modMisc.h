#pragma once

#include <string>

/// True when the file system has a plain, not hidden file of that path. Empty text, folders and malformed paths give
/// false; no failure is reported.
[[nodiscard]] bool FileExists(const std::string& path);
