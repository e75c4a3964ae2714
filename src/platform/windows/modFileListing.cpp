#include "modFileListing.h"

#include "modFiles.h"
#include "windows/modWindows.h"

std::vector<std::string> ListFiles(const std::string& folder)
{
    std::vector<std::string> names;
    const std::wstring place = SystemPath(folder);
    if (place.empty()) {
        return names;
    }
    WIN32_FIND_DATAW entry{};
    const FoundFiles listing(place + (place.ends_with(L'\\') ? L"*" : L"\\*"), &entry);
    for (bool more = listing.Any(); more; more = listing.Next(&entry)) {
        std::string name = Utf8Text(entry.cFileName);
        const bool hidden = (entry.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0 || name.starts_with('.');
        const bool folderInside = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool link = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        if (!hidden && !folderInside && (!link || IsPlainFile(folder + "\\" + name))) {
            names.push_back(std::move(name));
        }
    }
    return names;
}
