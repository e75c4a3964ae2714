#include "posix/modFileErrors.h"

#include <cerrno>
#include <system_error>

#include <sys/stat.h>

bool Fail(int number, std::string* error)
{
    *error = std::generic_category().message(number);
    return false;
}

bool FailPath(const std::string& path, std::string* error)
{
    return Fail(path.empty() ? ENOENT : EINVAL, error);
}

bool FailKind(mode_t mode, std::string* error)
{
    if (S_ISDIR(mode)) {
        return Fail(EISDIR, error);
    }
    *error = "Not a regular file";
    return false;
}

bool IsPath(const std::string& path)
{
    return !path.empty() && path.find('\0') == std::string::npos;
}
