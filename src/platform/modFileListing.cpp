#include "modFileListing.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "modCodePage.h"
#include "modFiles.h"
#include "modUtf8.h"

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

bool FindFileAnyCase(const std::string& folder, const std::string& name, FolderNames* names, std::string* path)
{
    if (name.empty() || IsHidden(folder + name) || NameStart(name) != 0) {
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
