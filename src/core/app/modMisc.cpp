#include "app/modMisc.h"

#include <cstddef>

#include "modFiles.h"

bool FileExists(const std::string& path)
{
    if (path.empty() || path.find('\0') != std::string::npos) {
        return false;
    }
    const size_t separator = path.rfind('/');
    const size_t nameStart = separator == std::string::npos ? 0 : separator + 1;
    const bool hidden = nameStart < path.size() && path[nameStart] == '.';
    return !hidden && IsPlainFile(path);
}
