#include "modFiles.h"

#include <algorithm>
#include <utility>

bool ReadWhole(const std::string& path, std::string* bytes, std::string* error)
{
    OpenedFile file;
    if (!OpenForReading(path, &file, error)) {
        return false;
    }
    std::string content(file.Expected + 1, '\0'); // room to see the end without growing
    for (;;) {
        const size_t filled = file.Taken;
        size_t count = 0;
        if (!ReadOn(&file, content.data() + filled, content.size() - filled, &count, error)) {
            return false;
        }
        if (file.Taken < content.size()) {
            break;
        }
        // The file has grown meanwhile.
        content.resize(file.Taken + std::clamp<size_t>(file.Taken / 2, 4096, size_t{1} << 20));
    }
    content.resize(file.Taken);
    *bytes = std::move(content);
    return true;
}
