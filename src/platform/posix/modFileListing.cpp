#include "modFileListing.h"

#include <utility>

#include "modFiles.h"
#include "posix/modOpenedFolder.h"

std::vector<std::string> ListFiles(const std::string& folder)
{
    std::vector<std::string> names;
    const OpenedFolder listing = OpenFolder(folder);
    if (listing == nullptr) {
        return names;
    }
    const std::string start = folder.ends_with('/') ? folder : folder + "/";
    while (const dirent* entry = readdir(listing.get())) {
        std::string name = entry->d_name;
        if (!name.starts_with('.') && IsPlainFile(start + name)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}
