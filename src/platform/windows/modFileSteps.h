#pragma once

#include <cstddef>
#include <string>

#include "windows/modWindows.h"

// The single steps of reading and writing files, one call of the system each; reading and saving are built on these. The
// implementation for tests lets the Nth step fail as a full or broken disk would. Those that open give
// INVALID_HANDLE_VALUE on a failure, the others false, with the last error set. Paths are those of SystemPath.

HANDLE StepOpenRead(const std::wstring& path);
bool StepRead(HANDLE file, char* data, size_t size, size_t* count);
HANDLE StepOpenNew(const std::wstring& path, DWORD attributes); ///< creates a file that must not exist
HANDLE StepOpenWrite(const std::wstring& path);                 ///< opens a file that exists, with its content
bool StepWrite(HANDLE file, const char* data, size_t size, size_t* count);
bool StepCut(HANDLE file); ///< the file ends where it was written last
bool StepSync(HANDLE file);
bool StepClose(HANDLE file);
/// Puts a file in place of another, which becomes `backup`, and gives it the attributes and the access list of that one.
bool StepReplace(const std::wstring& target, const std::wstring& with, const std::wstring& backup);
bool StepRename(const std::wstring& from, const std::wstring& to); ///< `to` must not exist
bool StepDelete(const std::wstring& path);
