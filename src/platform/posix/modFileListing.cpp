#include "modFileListing.h"

#include <algorithm>
#include <cstddef>

#include "modCodePage.h"
#include "modFiles.h"
#include "modUtf8.h"
#include "posix/modOpenedFolder.h"

namespace {

std::u32string Folded(const std::string& name)
{
    std::u32string folded;
    for (size_t at = 0; at < name.size();) {
        char32_t character = 0;
        const size_t length = DecodeUtf8(std::string_view(name).substr(at), &character);
        // A malformed byte stays itself, outside the range of all characters.
        folded += length > 0 ? SmallLetter(character) : 0x110000U + static_cast<unsigned char>(name[at]);
        at += std::max<size_t>(length, 1);
    }
    return folded;
}

} // namespace

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

bool FindFileAnyCase(const std::string& folder, const std::string& name, FolderNames* names, std::string* path)
{
    if (name.empty() || name.starts_with('.') || name.find('/') != std::string::npos) {
        return false;
    }
    if (IsPlainFile(folder + name)) {
        *path = folder + name;
        return true;
    }
    if (!names->Listed) {
        names->Listed = true;
        for (std::string& candidate : ListFiles(folder.empty() ? "." : folder)) {
            std::u32string key = Folded(candidate);
            names->ByFoldedName.try_emplace(std::move(key), std::move(candidate));
        }
    }
    const auto found = names->ByFoldedName.find(Folded(name));
    if (found == names->ByFoldedName.end()) {
        return false;
    }
    *path = folder + found->second;
    return true;
}
