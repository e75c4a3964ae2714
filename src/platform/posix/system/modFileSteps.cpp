#include "posix/modFileSteps.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <set>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

/// Calls read(data, size) with a buffer that is large enough: with none at first, which gives the size. False with
/// errno set when it fails.
template <typename Read>
bool ReadSized(const Read& read, std::vector<char>* bytes)
{
    bytes->clear();
    ssize_t size = read(nullptr, 0);
    while (size > 0) {
        bytes->resize(static_cast<size_t>(size));
        size = read(bytes->data(), bytes->size());
        if (size >= 0) {
            bytes->resize(static_cast<size_t>(size));
            return true;
        }
        size = errno == ERANGE ? read(nullptr, 0) : -1;
    }
    return size == 0;
}

/// The names in a list of them, each ended by a NUL.
std::set<std::string> NamesIn(const std::vector<char>& list)
{
    std::set<std::string> names;
    for (size_t at = 0; at < list.size();) {
        const std::string name(&list[at], strnlen(&list[at], list.size() - at));
        at += name.size() + 1;
        names.insert(name);
    }
    return names;
}

bool TakesNoAttributes()
{
    return errno == ENOTSUP || errno == ENOSYS;
}

} // namespace

int StepOpenRead(const std::string& path)
{
    return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

ssize_t StepRead(int fd, char* data, size_t size)
{
    return read(fd, data, size);
}

int StepOpenNew(const std::string& path, mode_t mode)
{
    return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
}

int StepOpenUnnamed([[maybe_unused]] const std::string& folder, [[maybe_unused]] mode_t mode)
{
#ifdef O_TMPFILE
    return open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode);
#else
    errno = ENOTSUP;
    return -1;
#endif
}

int StepOpenWrite(const std::string& path)
{
    return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

ssize_t StepWrite(int fd, const char* data, size_t size)
{
    // A file-size limit must come back as a failed write and not as the end of the program.
    static const auto before = std::signal(SIGXFSZ, SIG_IGN);
    (void)before;
    return write(fd, data, size);
}

int StepTruncate(int fd, size_t size)
{
    return ftruncate(fd, static_cast<off_t>(size));
}

int StepSync(int fd)
{
    return fsync(fd);
}

int StepClose(int fd)
{
    return close(fd);
}

int StepSetMode(int fd, mode_t mode)
{
    return fchmod(fd, mode);
}

int StepSetOwner(int fd, uid_t owner, gid_t group)
{
    return fchown(fd, owner, group);
}

int StepCopyAttributes(const std::string& from, int fd)
{
    std::vector<char> list;
    std::vector<char> value;
    std::vector<char> present;
    if (!ReadSized([&](char* to, size_t size) { return listxattr(from.c_str(), to, size); }, &list)) {
        return TakesNoAttributes() ? 0 : -1;
    }
    const std::set<std::string> names = NamesIn(list);
    if (!ReadSized([&](char* to, size_t size) { return flistxattr(fd, to, size); }, &list)) {
        return -1;
    }
    // A folder can give new files an access list of its own.
    for (const std::string& name : NamesIn(list)) {
        if (!names.contains(name) && fremovexattr(fd, name.c_str()) != 0) {
            return -1;
        }
    }
    for (const std::string& name : names) {
        const auto readOld = [&](char* to, size_t size) { return getxattr(from.c_str(), name.c_str(), to, size); };
        const auto readNew = [&](char* to, size_t size) { return fgetxattr(fd, name.c_str(), to, size); };
        if (!ReadSized(readOld, &value)) {
            return -1;
        }
        const bool equal = ReadSized(readNew, &present) && present == value;
        if (!equal && fsetxattr(fd, name.c_str(), value.data(), value.size(), 0) != 0) {
            return -1;
        }
    }
    return 0;
}

int StepName(int fd, const std::string& to)
{
    const std::string open = "/proc/self/fd/" + std::to_string(fd);
    return linkat(AT_FDCWD, open.c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW);
}

int StepRename(const std::string& from, const std::string& to)
{
    return rename(from.c_str(), to.c_str());
}

int StepLink(const std::string& from, const std::string& to)
{
    return link(from.c_str(), to.c_str());
}

int StepDelete(const std::string& path)
{
    return unlink(path.c_str());
}
