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

/// Reads the access list into `access`, which is large enough. False where there is none.
bool ReadAccess(const std::wstring& path, std::vector<char>* access)
{
    DWORD size = static_cast<DWORD>(access->size());
    return size > 0 && GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, access->data(), size, &size) != 0;
}

/// What a replacement keeps as a rule, read before it to be put right behind it. That needs no memory any more.
class Kept {
public:
    explicit Kept(const std::wstring& path) : Attributes(GetFileAttributesW(path.c_str()))
    {
        DWORD size = 0;
        (void)GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
        Access.resize(size);
        Present.resize(size);
        HasAccess = ReadAccess(path, &Access);
    }
    void PutRight(const std::wstring& path)
    {
        if (HasAccess && (!ReadAccess(path, &Present) || Present != Access)) {
            (void)SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, Access.data());
        }
        constexpr DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        const DWORD now = GetFileAttributesW(path.c_str());
        if (now != INVALID_FILE_ATTRIBUTES && (now & kept) != (Attributes & kept)) {
            (void)SetFileAttributesW(path.c_str(), (now & ~kept) | (Attributes & kept));
        }
    }

private:
    DWORD Attributes;
    std::vector<char> Access;
    std::vector<char> Present;
    bool HasAccess = false;
};

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
    Kept kept(target);
    const auto replace = [&] {
        return ReplaceFileW(target.c_str(), with.c_str(), backup.c_str(), 0, nullptr, nullptr) != 0;
    };
    if (!WithPatience(replace)) {
        return false;
    }
    kept.PutRight(target);
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
