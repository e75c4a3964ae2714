#include "windows/modFileSteps.h"

#include <algorithm>
#include <vector>

#include "support/scripted.h"
#include "support/system_words.h"
#include "windows/modFileErrors.h"

// The program's own steps under names of their own; what they include stands above.
namespace own {
#include "windows/system/modFileSteps.cpp" // NOLINT(bugprone-suspicious-include)
}

namespace {

/// The system's number for what POSIX gives this number.
DWORD SystemNumber(int error)
{
    switch (error) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
        return ERROR_ACCESS_DENIED;
    case EIO:
        return ERROR_CRC;
    case EINVAL:
        return ERROR_INVALID_NAME;
    case EFBIG:
        return ERROR_FILE_TOO_LARGE;
    default:
        return ERROR_DISK_FULL;
    }
}

/// Counts a step and says whether it must fail.
bool Fails(const char* step)
{
    ++scripted::Steps;
    const bool counted = scripted::FailAt > 0 && (scripted::FailAfter ? scripted::Steps >= scripted::FailAt
                                                                      : scripted::Steps == scripted::FailAt);
    const bool missing = scripted::MissingSteps.contains(step);
    if (counted || missing) {
        SetLastError(SystemNumber(missing ? EPERM : scripted::FailError));
    }
    return counted || missing;
}

} // namespace

std::string SystemWords(int error)
{
    std::string words;
    Fail(SystemNumber(error), &words);
    return words;
}

std::string NoFolderWords()
{
    return SystemWords(ENOTDIR);
}

#define STEP(result, failure, name, parameters, ...)                                                                   \
    result name parameters                                                                                             \
    {                                                                                                                  \
        return Fails(#name) ? failure : own::name(__VA_ARGS__);                                                        \
    }
STEP(HANDLE, INVALID_HANDLE_VALUE, StepOpenRead, (const std::wstring& path), path)
STEP(bool, false, StepRead, (HANDLE file, char* data, size_t size, size_t* count), file, data, size, count)
STEP(HANDLE, INVALID_HANDLE_VALUE, StepOpenNew, (const std::wstring& path, DWORD attributes), path, attributes)
STEP(HANDLE, INVALID_HANDLE_VALUE, StepOpenWrite, (const std::wstring& path), path)
STEP(bool, false, StepCut, (HANDLE file), file)
STEP(bool, false, StepSync, (HANDLE file), file)
STEP(bool, false, StepRename, (const std::wstring& from, const std::wstring& to), from, to)
STEP(bool, false, StepDelete, (const std::wstring& path), path)
#undef STEP

bool StepWrite(HANDLE file, const char* data, size_t size, size_t* count)
{
    if (!Fails("StepWrite")) {
        return own::StepWrite(file, data, size, count);
    }
    const DWORD error = GetLastError();
    own::StepWrite(file, data, size / 2, count); // a disk that fills up takes a part first
    SetLastError(error);
    return false;
}

bool StepClose(HANDLE file)
{
    const bool closed = own::StepClose(file);
    return !Fails("StepClose") && closed;
}

bool StepReplace(const std::wstring& target, const std::wstring& with, const std::wstring& backup)
{
    if (!Fails("StepReplace")) {
        return own::StepReplace(target, with, backup);
    }
    if (scripted::BreakReplacement) {
        (void)MoveFileExW(target.c_str(), backup.c_str(), 0);
        SetLastError(ERROR_UNABLE_TO_MOVE_REPLACEMENT_2);
    }
    return false;
}
