#include "modAssimpFiles.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include <assimp/MemoryIOWrapper.h>

#include "modFiles.h"

/// The path of a file of the folder; empty for a name that leads out of it.
std::string FolderFiles::PathOf(const char* file) const
{
    std::string name = file;
    std::replace(name.begin(), name.end(), '\\', '/');
    for (size_t start = 0; start <= name.size();) {
        const size_t end = std::min(name.find('/', start), name.size());
        const std::string_view part = std::string_view(name).substr(start, end - start);
        if (part.empty() || part == ".." || part.find(':') != std::string_view::npos) {
            return {};
        }
        start = end + 1;
    }
    return Folder + name;
}

bool FolderFiles::Exists(const char* file) const
{
    return IsPlainFile(PathOf(file));
}

Assimp::IOStream* FolderFiles::Open(const char* file, const char* mode)
{
    const std::string path = PathOf(file);
    std::string bytes;
    std::string ignored;
    if (path.empty() || mode == nullptr || *mode != 'r' || !ReadWhole(path, &bytes, &ignored)) {
        return nullptr;
    }
    auto* const copy = new uint8_t[bytes.size() + 1];
    std::copy(bytes.begin(), bytes.end(), copy);
    return new Assimp::MemoryIOStream(copy, bytes.size(), true);
}

void FolderFiles::Close(Assimp::IOStream* stream)
{
    delete stream;
}
