#pragma once

// The system's header, for the files of this folder alone: its macros must not get anywhere else.
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>
#include <string_view>

/// Empty for text that is no UTF-8.
[[nodiscard]] std::wstring WideText(std::string_view text);
[[nodiscard]] std::string Utf8Text(std::wstring_view text);

/// The whole path, in the form that may be longer than 260 characters where it needs to. Empty for text that names no
/// file.
[[nodiscard]] std::wstring SystemPath(const std::string& path);
/// True for a path whose name the system keeps for a device, as CON, "nul.mvm" or "\\.\pipe\x", whatever version it is.
[[nodiscard]] bool IsDevice(const std::wstring& systemPath);
/// Where the name begins behind the last separator of a whole path.
[[nodiscard]] size_t WideNameStart(const std::wstring& systemPath);

/// Closed with the end of its life.
class OwnedHandle {
public:
    explicit OwnedHandle(HANDLE handle) : Value(handle) {}
    ~OwnedHandle()
    {
        if (*this) {
            (void)CloseHandle(Value);
        }
    }
    OwnedHandle(const OwnedHandle&) = delete;
    OwnedHandle& operator=(const OwnedHandle&) = delete;

    explicit operator bool() const { return Value != INVALID_HANDLE_VALUE && Value != nullptr; }
    HANDLE Value;
};

/// The files of a folder that fit a pattern.
class FoundFiles {
public:
    FoundFiles(const std::wstring& pattern, WIN32_FIND_DATAW* first) : Listing(FindFirstFileW(pattern.c_str(), first))
    {}
    ~FoundFiles()
    {
        if (Any()) {
            (void)FindClose(Listing);
        }
    }
    FoundFiles(const FoundFiles&) = delete;
    FoundFiles& operator=(const FoundFiles&) = delete;

    [[nodiscard]] bool Any() const { return Listing != INVALID_HANDLE_VALUE; }
    [[nodiscard]] bool Next(WIN32_FIND_DATAW* entry) const { return FindNextFileW(Listing, entry) != 0; }

private:
    HANDLE Listing;
};

/// What stands at a path; links are followed. False, with the last error set, when the system does not tell.
bool Status(const std::wstring& systemPath, BY_HANDLE_FILE_INFORMATION* status);
[[nodiscard]] bool IsSame(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b);
[[nodiscard]] inline bool IsFolder(const BY_HANDLE_FILE_INFORMATION& status)
{
    return (status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
