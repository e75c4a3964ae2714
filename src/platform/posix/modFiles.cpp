#include "modFiles.h"

#include <cerrno>
#include <filesystem>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

#include "posix/modFileErrors.h"
#include "posix/modFileSteps.h"

namespace {

constexpr size_t largestFile = std::numeric_limits<int32_t>::max();

bool Status(const std::string& path, struct stat* status)
{
    return IsPath(path) && stat(path.c_str(), status) == 0;
}

} // namespace

bool KindOfFile(const std::string& path, FileKind* kind, std::string* error)
{
    struct stat status {};
    *kind = FileKind::None;
    if (!IsPath(path)) {
        return path.empty() || FailPath(path, error);
    }
    if (stat(path.c_str(), &status) != 0) {
        return errno == ENOENT || Fail(errno, error);
    }
    *kind = S_ISREG(status.st_mode) ? FileKind::Plain : S_ISDIR(status.st_mode) ? FileKind::Folder : FileKind::Other;
    return true;
}

bool IsPlainFile(const std::string& path)
{
    struct stat status {};
    return Status(path, &status) && S_ISREG(status.st_mode);
}

bool IsFolder(const std::string& path)
{
    struct stat status {};
    return Status(path, &status) && S_ISDIR(status.st_mode);
}

bool IsReadOnly(const std::string& path)
{
    struct stat status {};
    // The administrator may write anything, yet a file that its owner may not write is meant to be left alone.
    return Status(path, &status) && ((status.st_mode & S_IWUSR) == 0 || access(path.c_str(), W_OK) != 0);
}

size_t NameStart(const std::string& path)
{
    return path.rfind('/') + 1; // 0 where there is none
}

bool IsHidden(const std::string& path)
{
    return path.substr(NameStart(path)).starts_with('.');
}

std::string TemporaryFolder()
{
    return (std::filesystem::temp_directory_path() / "").string();
}

OpenedFile::~OpenedFile()
{
    if (Descriptor >= 0) {
        (void)close(static_cast<int>(Descriptor)); // nothing was written, so nothing can be lost here
    }
}

bool OpenForReading(const std::string& path, OpenedFile* file, std::string* error)
{
    if (!IsPath(path)) {
        return FailPath(path, error);
    }
    // The kind is asked before the open, since opening a device can have effects of its own.
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return Fail(errno, error);
    }
    if (!S_ISREG(status.st_mode)) {
        return FailKind(status.st_mode, error);
    }
    const int fd = StepOpenRead(path);
    file->Descriptor = fd;
    if (fd < 0 || fstat(fd, &status) != 0) {
        return Fail(errno, error);
    }
    if (!S_ISREG(status.st_mode)) {
        return FailKind(status.st_mode, error);
    }
    file->Expected = static_cast<size_t>(status.st_size);
    return file->Expected <= largestFile || Fail(EFBIG, error);
}

bool ReadOn(OpenedFile* file, char* to, size_t size, size_t* count, std::string* error)
{
    *count = 0;
    while (*count < size) {
        const ssize_t step = StepRead(static_cast<int>(file->Descriptor), to + *count, size - *count);
        if (step < 0 && errno == EINTR) {
            continue;
        }
        if (step < 0) {
            return Fail(errno, error);
        }
        if (step == 0) {
            break;
        }
        *count += static_cast<size_t>(step);
        file->Taken += static_cast<size_t>(step);
        if (file->Taken > largestFile) {
            return Fail(EFBIG, error);
        }
    }
    return true;
}
