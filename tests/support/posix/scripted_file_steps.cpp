#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "posix/modFileSteps.h"
#include "support/scripted.h"
#include "support/system_words.h"

// The program's own steps under names of their own; what they include stands above.
namespace own {
#include "posix/system/modFileSteps.cpp" // NOLINT(bugprone-suspicious-include)
}

namespace {

/// Counts a step and says whether it must fail.
bool Fails(const char* step)
{
    ++scripted::Steps;
    const bool counted = scripted::FailAt > 0 && (scripted::FailAfter ? scripted::Steps >= scripted::FailAt
                                                                      : scripted::Steps == scripted::FailAt);
    const bool missing = scripted::MissingSteps.contains(step);
    if (counted || missing) {
        errno = missing ? EPERM : scripted::FailError != 0 ? scripted::FailError : ENOSPC;
    }
    return counted || missing;
}

template <typename Function, typename... Arguments>
auto Run(const char* name, const Function& step, const Arguments&... arguments) -> decltype(step(arguments...))
{
    return Fails(name) ? -1 : step(arguments...);
}

} // namespace

std::string SystemWords(int error)
{
    return std::generic_category().message(error);
}

std::string NoFolderWords()
{
    return SystemWords(ENOENT);
}

#define STEP(result, name, parameters, ...)                                                                            \
    result name parameters                                                                                             \
    {                                                                                                                  \
        return Run(#name, own::name, __VA_ARGS__);                                                                     \
    }
STEP(int, StepOpenRead, (const std::string& path), path)
STEP(ssize_t, StepRead, (int fd, char* data, size_t size), fd, data, size)
STEP(int, StepOpenNew, (const std::string& path, mode_t mode), path, mode)
STEP(int, StepOpenUnnamed, (const std::string& folder, mode_t mode), folder, mode)
STEP(int, StepOpenWrite, (const std::string& path), path)
STEP(int, StepTruncate, (int fd, size_t size), fd, size)
STEP(int, StepSync, (int fd), fd)
STEP(int, StepSetMode, (int fd, mode_t mode), fd, mode)
STEP(int, StepSetOwner, (int fd, uid_t owner, gid_t group), fd, owner, group)
STEP(int, StepCopyAttributes, (const std::string& from, int fd), from, fd)
STEP(int, StepName, (int fd, const std::string& to), fd, to)
STEP(int, StepRename, (const std::string& from, const std::string& to), from, to)
STEP(int, StepLink, (const std::string& from, const std::string& to), from, to)
STEP(int, StepDelete, (const std::string& path), path)
#undef STEP

ssize_t StepWrite(int fd, const char* data, size_t size)
{
    if (!Fails("StepWrite")) {
        return own::StepWrite(fd, data, size);
    }
    const int error = errno;
    own::StepWrite(fd, data, size / 2); // a disk that fills up takes a part first
    errno = error;
    return -1;
}

int StepClose(int fd)
{
    const int result = own::StepClose(fd);
    return Fails("StepClose") ? -1 : result;
}
