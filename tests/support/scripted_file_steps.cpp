#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/modFileSteps.h"
#include "support/scripted.h"

namespace {

/// Counts a step and says whether it must fail.
bool Fails()
{
    ++scripted::Steps;
    const bool fails = scripted::FailAt > 0 && (scripted::FailAfter ? scripted::Steps >= scripted::FailAt
                                                                    : scripted::Steps == scripted::FailAt);
    if (fails) {
        errno = scripted::FailError != 0 ? scripted::FailError : ENOSPC;
    }
    return fails;
}

} // namespace

int StepOpenRead(const std::string& path)
{
    return Fails() ? -1 : open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

ssize_t StepRead(int fd, char* data, size_t size)
{
    return Fails() ? -1 : read(fd, data, size);
}

int StepOpenNew(const std::string& path, mode_t mode)
{
    return Fails() ? -1 : open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
}

ssize_t StepWrite(int fd, const char* data, size_t size)
{
    if (Fails()) {
        // A disk that fills up takes a part first.
        const ssize_t taken = write(fd, data, size / 2);
        (void)taken;
        errno = scripted::FailError != 0 ? scripted::FailError : ENOSPC;
        return -1;
    }
    return write(fd, data, size);
}

int StepSync(int fd)
{
    return Fails() ? -1 : fsync(fd);
}

int StepClose(int fd)
{
    const bool fails = Fails();
    const int error = errno;
    const int result = close(fd);
    errno = fails ? error : errno;
    return fails ? -1 : result;
}

int StepSetMode(int fd, mode_t mode)
{
    return Fails() ? -1 : fchmod(fd, mode);
}

int StepRename(const std::string& from, const std::string& to)
{
    return Fails() ? -1 : rename(from.c_str(), to.c_str());
}

int StepLink(const std::string& from, const std::string& to)
{
    if (Fails()) {
        return -1;
    }
    if (scripted::NoLinks) {
        errno = EPERM;
        return -1;
    }
    return link(from.c_str(), to.c_str());
}

int StepDelete(const std::string& path)
{
    return Fails() ? -1 : unlink(path.c_str());
}
