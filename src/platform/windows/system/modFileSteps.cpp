#include "windows/modFileSteps.h"

#include <algorithm>
#include <vector>

namespace {

/// Tries again what another program, as a rule a scanner or an indexer, keeps from being done for a moment.
template <typename Act>
bool WithPatience(const Act& act)
{
    constexpr DWORD longestPause = 160;
    for (DWORD pause = 20;; pause *= 2) {
        if (act()) {
            return true;
        }
        if (GetLastError() != ERROR_SHARING_VIOLATION || pause > longestPause) {
            return false;
        }
        Sleep(pause);
    }
}

DWORD OneCall(size_t size)
{
    return static_cast<DWORD>(std::min(size, size_t{1} << 30));
}

/// The access list; empty where the file system has none.
std::vector<char> AccessOf(const std::wstring& path)
{
    DWORD size = 0;
    (void)GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<char> access(size);
    const bool read =
        size > 0 && GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, access.data(), size, &size) != 0;
    return read ? access : std::vector<char>();
}

/// What a replacement keeps as a rule, put right where it did not.
void PutRight(const std::wstring& path, DWORD attributes, std::vector<char>* access)
{
    if (!access->empty() && AccessOf(path) != *access) {
        (void)SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, access->data());
    }
    constexpr DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    const DWORD now = GetFileAttributesW(path.c_str());
    if (now != INVALID_FILE_ATTRIBUTES && (now & kept) != (attributes & kept)) {
        (void)SetFileAttributesW(path.c_str(), (now & ~kept) | (attributes & kept));
    }
}

} // namespace

HANDLE StepOpenRead(const std::wstring& path)
{
    return CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

bool StepRead(HANDLE file, char* data, size_t size, size_t* count)
{
    DWORD done = 0;
    const bool good = ReadFile(file, data, OneCall(size), &done, nullptr) != 0;
    *count = done;
    return good;
}

HANDLE StepOpenNew(const std::wstring& path, DWORD attributes)
{
    return CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, attributes, nullptr);
}

HANDLE StepOpenWrite(const std::wstring& path)
{
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
}

bool StepWrite(HANDLE file, const char* data, size_t size, size_t* count)
{
    DWORD done = 0;
    const bool good = WriteFile(file, data, OneCall(size), &done, nullptr) != 0;
    *count = done;
    return good;
}

bool StepCut(HANDLE file)
{
    return SetEndOfFile(file) != 0;
}

bool StepSync(HANDLE file)
{
    return FlushFileBuffers(file) != 0;
}

bool StepClose(HANDLE file)
{
    return CloseHandle(file) != 0;
}

bool StepReplace(const std::wstring& target, const std::wstring& with, const std::wstring& backup)
{
    const DWORD attributes = GetFileAttributesW(target.c_str());
    std::vector<char> access = AccessOf(target);
    const auto replace = [&] {
        return ReplaceFileW(target.c_str(), with.c_str(), backup.c_str(), 0, nullptr, nullptr) != 0;
    };
    if (!WithPatience(replace)) {
        return false;
    }
    PutRight(target, attributes, &access);
    return true;
}

bool StepRename(const std::wstring& from, const std::wstring& to)
{
    return WithPatience([&] { return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0; });
}

bool StepDelete(const std::wstring& path)
{
    return WithPatience([&] { return DeleteFileW(path.c_str()) != 0; });
}
