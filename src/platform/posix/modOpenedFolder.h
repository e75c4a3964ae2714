#pragma once

#include <memory>
#include <string>

#include <dirent.h>

struct FolderCloser {
    void operator()(DIR* folder) const { (void)closedir(folder); }
};
/// A folder that is being listed; null for one that cannot be. Closed with the end of its life.
using OpenedFolder = std::unique_ptr<DIR, FolderCloser>;

inline OpenedFolder OpenFolder(const std::string& path)
{
    return OpenedFolder(opendir(path.c_str()));
}
