#include "modFiles.h"

#include <limits>

#include "windows/modFileErrors.h"
#include "windows/modFileSteps.h"

namespace {

constexpr size_t largestFile = std::numeric_limits<int32_t>::max();

HANDLE HandleOf(std::intptr_t descriptor)
{
    return reinterpret_cast<HANDLE>(descriptor); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

bool KindOfFile(const std::string& path, FileKind* kind, std::string* error)
{
    *kind = FileKind::None;
    const std::wstring place = SystemPath(path);
    if (place.empty()) {
        return path.empty() || FailPath(path, error);
    }
    if (IsDevice(place)) {
        *kind = FileKind::Other;
        return true;
    }
    BY_HANDLE_FILE_INFORMATION status{};
    if (!Status(place, &status)) {
        return IsMissing(GetLastError()) || Fail(GetLastError(), error);
    }
    *kind = IsFolder(status) ? FileKind::Folder : FileKind::Plain;
    return true;
}

bool IsPlainFile(const std::string& path)
{
    FileKind kind = FileKind::None;
    std::string error;
    return KindOfFile(path, &kind, &error) && kind == FileKind::Plain;
}

bool IsFolder(const std::string& path)
{
    FileKind kind = FileKind::None;
    std::string error;
    return KindOfFile(path, &kind, &error) && kind == FileKind::Folder;
}

bool IsReadOnly(const std::string& path)
{
    const std::wstring place = SystemPath(path);
    BY_HANDLE_FILE_INFORMATION status{};
    if (place.empty() || IsDevice(place) || !Status(place, &status) || IsFolder(status)) {
        return false;
    }
    if ((status.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
        return true;
    }
    const OwnedHandle file(CreateFileW(place.c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                       0, nullptr));
    // A file that another program holds open may be written all the same later on.
    return !file && (GetLastError() == ERROR_ACCESS_DENIED || GetLastError() == ERROR_WRITE_PROTECT);
}

size_t NameStart(const std::string& path)
{
    return path.find_last_of("\\/:") + 1; // 0 where there is none
}

bool IsHidden(const std::string& path)
{
    if (path.substr(NameStart(path)).starts_with('.')) {
        return true;
    }
    const std::wstring place = SystemPath(path);
    const DWORD attributes = place.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(place.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_HIDDEN) != 0;
}

std::string TemporaryFolder()
{
    std::wstring folder(MAX_PATH + 1, L'\0');
    folder.resize(GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()));
    return Utf8Text(folder);
}

OpenedFile::~OpenedFile()
{
    if (Descriptor != -1) {
        (void)CloseHandle(HandleOf(Descriptor)); // nothing was written, so nothing can be lost here
    }
}

bool OpenForReading(const std::string& path, OpenedFile* file, std::string* error)
{
    const std::wstring place = SystemPath(path);
    if (place.empty()) {
        return FailPath(path, error);
    }
    // Opening a device can have effects of its own.
    if (IsDevice(place)) {
        return FailKind(false, error);
    }
    BY_HANDLE_FILE_INFORMATION status{};
    if (!Status(place, &status)) {
        return Fail(GetLastError(), error);
    }
    if (IsFolder(status)) {
        return FailKind(true, error);
    }
    HANDLE const handle = StepOpenRead(place);
    file->Descriptor = reinterpret_cast<std::intptr_t>(handle);
    if (handle == INVALID_HANDLE_VALUE || GetFileInformationByHandle(handle, &status) == 0) {
        return Fail(GetLastError(), error);
    }
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        return FailKind(false, error);
    }
    file->Expected = (size_t{status.nFileSizeHigh} << 32U) | status.nFileSizeLow;
    return file->Expected <= largestFile || Fail(ERROR_FILE_TOO_LARGE, error);
}

bool ReadOn(OpenedFile* file, char* to, size_t size, size_t* count, std::string* error)
{
    *count = 0;
    while (*count < size) {
        size_t step = 0;
        if (!StepRead(HandleOf(file->Descriptor), to + *count, size - *count, &step)) {
            return Fail(GetLastError(), error);
        }
        if (step == 0) {
            break;
        }
        *count += step;
        file->Taken += step;
        if (file->Taken > largestFile) {
            return Fail(ERROR_FILE_TOO_LARGE, error);
        }
    }
    return true;
}
