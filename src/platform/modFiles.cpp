#include "platform/modFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <limits>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/modFileSteps.h"

namespace {

constexpr mode_t permissionBits = 07777;
constexpr size_t largestFile = std::numeric_limits<int32_t>::max();

/// The system's words for an error number.
std::string Words(int number)
{
    return std::generic_category().message(number);
}

/// Fails with the words for `number`.
bool Fail(int number, std::string* error)
{
    *error = Words(number);
    return false;
}

/// A path of the system ends at a NUL: text with one in it names no file.
bool IsPath(const std::string& path)
{
    return !path.empty() && path.find('\0') == std::string::npos;
}

bool Status(const std::string& path, struct stat* status)
{
    return IsPath(path) && stat(path.c_str(), status) == 0;
}

bool FailPath(const std::string& path, std::string* error)
{
    return Fail(path.empty() ? ENOENT : EINVAL, error);
}

/// Fails with words that say what stands in place of a regular file.
bool FailKind(mode_t mode, std::string* error)
{
    *error = S_ISDIR(mode) ? Words(EISDIR) : "Not a regular file";
    return false;
}

std::string FolderOf(const std::string& path)
{
    const size_t separator = path.rfind('/');
    return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

/// True when both paths are one entry of one folder.
bool IsSamePlace(const std::string& left, const std::string& right)
{
    const std::string leftFolder = FolderOf(left);
    const std::string rightFolder = FolderOf(right);
    struct stat leftStatus {};
    struct stat rightStatus {};
    return stat(leftFolder.empty() ? "." : leftFolder.c_str(), &leftStatus) == 0 &&
           stat(rightFolder.empty() ? "." : rightFolder.c_str(), &rightStatus) == 0 &&
           leftStatus.st_dev == rightStatus.st_dev && leftStatus.st_ino == rightStatus.st_ino &&
           left.substr(leftFolder.size()) == right.substr(rightFolder.size());
}

/// Follows the links at the end of a path, also to a name that does not exist yet.
bool FollowLinks(std::string* path, std::string* error)
{
    constexpr int mostLinks = 40;
    for (int links = 0; links <= mostLinks; ++links) {
        struct stat status {};
        if (lstat(path->c_str(), &status) != 0) {
            return errno == ENOENT || Fail(errno, error);
        }
        if (!S_ISLNK(status.st_mode)) {
            return true;
        }
        std::string target(4096, '\0');
        const ssize_t length = readlink(path->c_str(), target.data(), target.size());
        if (length < 0) {
            return Fail(errno, error);
        }
        target.resize(static_cast<size_t>(length));
        *path = target.starts_with('/') ? target : FolderOf(*path) + target;
    }
    return Fail(ELOOP, error);
}

/// Takes a name beside `path` that nothing else has: `make` creates it and gives a negative number on a failure.
template <typename Make>
int MakeBeside(const std::string& path, const Make& make, std::string* name)
{
    constexpr int mostTries = 1000;
    static unsigned counter = 0;
    int result = -1;
    for (int tries = 0; tries < mostTries; ++tries) {
        *name = FolderOf(path) + ".beastwright-" + std::to_string(getpid()) + "-" + std::to_string(++counter) + ".tmp";
        result = make(*name);
        if (result >= 0 || errno != EEXIST) {
            break;
        }
    }
    return result;
}

bool WriteAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = StepWrite(fd, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<size_t>(count));
        } else if (count == 0) {
            errno = EIO; // a regular file that takes nothing and names no reason
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Lets the disk begin with what stands in the file so far, so that the flush at its end has less to wait for. Only a
/// hint: the flush tells what went wrong.
void BeginFlush([[maybe_unused]] int fd)
{
#ifdef SYNC_FILE_RANGE_WRITE
    sync_file_range(fd, 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
}

/// Reads to the end of a file.
bool ReadAll(OpenedFile* file, std::string* bytes, std::string* error)
{
    std::string content(file->Expected + 1, '\0'); // room to see the end without growing
    for (;;) {
        const size_t filled = file->Taken;
        size_t count = 0;
        if (!ReadOn(file, content.data() + filled, content.size() - filled, &count, error)) {
            return false;
        }
        if (file->Taken < content.size()) {
            break;
        }
        // The file has grown meanwhile.
        content.resize(file->Taken + std::clamp<size_t>(file->Taken / 2, 4096, size_t{1} << 20));
    }
    content.resize(file->Taken);
    *bytes = std::move(content);
    return true;
}

/// Brings a rename to the disk. The new name stands already, so a failure here changes nothing.
void SyncFolder(const std::string& path)
{
    const std::string folder = FolderOf(path);
    const int fd = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        (void)fsync(fd);
        (void)close(fd);
    }
}

} // namespace

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
    // The administrator may write anything, yet a file without the mark of its owner is meant to be left alone.
    return Status(path, &status) && ((status.st_mode & S_IWUSR) == 0 || access(path.c_str(), W_OK) != 0);
}

OpenedFile::~OpenedFile()
{
    if (Descriptor >= 0) {
        (void)close(Descriptor); // nothing was written, so nothing can be lost here
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
    file->Descriptor = StepOpenRead(path);
    if (file->Descriptor < 0 || fstat(file->Descriptor, &status) != 0) {
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
        const ssize_t step = StepRead(file->Descriptor, to + *count, size - *count);
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

bool ReadFile(const std::string& path, std::string* bytes, std::string* error)
{
    try {
        OpenedFile file;
        return OpenForReading(path, &file, error) && ReadAll(&file, bytes, error);
    } catch (const std::bad_alloc&) {
        return Fail(ENOMEM, error);
    }
}

bool ReplaceFile(const std::string& path, std::string_view bytes, std::string* error)
{
    return ReplaceFile(
        path, [bytes](const PartWriter& write) { write(bytes); }, error);
}

bool ReplaceFile(const std::string& path, const std::function<void(const PartWriter&)>& writeParts, std::string* error)
{
    if (!IsPath(path)) {
        return FailPath(path, error);
    }
    std::string target = path;
    if (!FollowLinks(&target, error)) {
        return false;
    }
    struct stat status {};
    const bool exists = stat(target.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        return FailKind(status.st_mode, error);
    }
    if (target.ends_with('/')) {
        return Fail(EISDIR, error);
    }

    // Nobody else may look into the new file before it has the permissions of the old one.
    const mode_t mode = exists ? S_IRUSR | S_IWUSR : 0666;
    std::string name;
    const int fd = MakeBeside(
        target, [mode](const std::string& file) { return StepOpenNew(file, mode); }, &name);
    if (fd < 0) {
        return Fail(errno, error);
    }
    bool good = true;
    int failure = 0;
    try {
        writeParts([&](std::string_view part) {
            if (good && !WriteAll(fd, part)) {
                good = false;
                failure = errno;
            }
            BeginFlush(fd);
        });
    } catch (...) {
        StepClose(fd);
        StepDelete(name);
        throw;
    }
    good = good && (!exists || StepSetMode(fd, status.st_mode & permissionBits) == 0);
    good = good && StepSync(fd) == 0;
    failure = good || failure != 0 ? failure : errno;
    if (StepClose(fd) != 0 && good) {
        good = false;
        failure = errno;
    }
    if (good && StepRename(name, target) != 0) {
        good = false;
        failure = errno;
    }
    if (!good) {
        StepDelete(name);
        return Fail(failure, error);
    }
    SyncFolder(target);
    return true;
}

bool CopyFileTo(const std::string& from, const std::string& to, std::string* error)
{
    std::string bytes;
    return ReadFile(from, &bytes, error) && ReplaceFile(to, bytes, error);
}

bool GuardFile(const std::string& from, const std::string& to, std::string* error)
{
    if (!IsPath(from) || !IsPath(to)) {
        return FailPath(from.empty() ? from : to, error);
    }
    std::string source = from;
    if (!FollowLinks(&source, error)) {
        return false;
    }
    struct stat old {};
    struct stat guard {};
    if (stat(source.c_str(), &old) != 0) {
        return Fail(errno, error);
    }
    if (!S_ISREG(old.st_mode)) {
        return FailKind(old.st_mode, error);
    }
    const bool exists = lstat(to.c_str(), &guard) == 0;
    if (exists && !S_ISREG(guard.st_mode) && !S_ISLNK(guard.st_mode)) {
        return FailKind(guard.st_mode, error);
    }
    if (exists && guard.st_dev == old.st_dev && guard.st_ino == old.st_ino) {
        if (old.st_nlink == 1 || IsSamePlace(source, to)) {
            *error = "The file itself has the name of its safety copy.";
            return false;
        }
        return true; // a second name for the same file already, which a rename would leave in place with its new name
    }

    std::string name;
    const auto make = [&source](const std::string& file) { return StepLink(source, file); };
    if (MakeBeside(to, make, &name) == 0) {
        if (StepRename(name, to) != 0) {
            const int failure = errno;
            StepDelete(name);
            return Fail(failure, error);
        }
        return true;
    }
    // A copy is written to the name itself, not to where a link of that name points.
    if (exists && S_ISLNK(guard.st_mode) && StepDelete(to) != 0) {
        return Fail(errno, error);
    }
    return CopyFileTo(source, to, error);
}

bool DeleteFile(const std::string& path, std::string* error)
{
    if (!IsPath(path)) {
        return FailPath(path, error);
    }
    return StepDelete(path) == 0 || Fail(errno, error);
}
