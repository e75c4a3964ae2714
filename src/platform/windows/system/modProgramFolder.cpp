#include "modFiles.h"
#include "windows/modWindows.h"

std::string ProgramFolder()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            return ".";
        }
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(path.size() * 2);
    }
    return Utf8Text(path.substr(0, path.find_last_of(L'\\')));
}
