#include "platform/modFileSteps.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

ssize_t StepWrite(int fd, const char* data, size_t size)
{
    // A file-size limit must come back as a failed write and not as the end of the program.
    static const auto before = std::signal(SIGXFSZ, SIG_IGN);
    (void)before;
    return write(fd, data, size);
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
