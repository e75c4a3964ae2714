#include "windows/modWindows.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::wstring_view longStart = LR"(\\?\)";
constexpr std::wstring_view deviceStart = LR"(\\.\)";

/// A name of ASCII letters in capitals.
std::wstring Capitals(std::wstring_view name)
{
    std::wstring capitals(name);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), [](wchar_t letter) {
        return letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
    });
    return capitals;
}

} // namespace

std::wstring WideText(std::string_view text)
{
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    wide.resize(
        static_cast<size_t>(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), size)));
    return wide;
}

std::string Utf8Text(std::wstring_view text)
{
    const int size = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(),
                                                         static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

std::wstring SystemPath(const std::string& path)
{
    const std::wstring given = path.find('\0') == std::string::npos ? WideText(path) : std::wstring();
    if (given.empty() || given.starts_with(longStart)) {
        return given;
    }
    std::wstring full(given.size() + MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        const bool fits = length < full.size();
        full.resize(length);
        if (fits) {
            break;
        }
    }
    constexpr size_t longest = 200; // leaves room for what a save puts behind the name
    if (full.size() < longest || full.starts_with(deviceStart)) {
        return full;
    }
    return std::wstring(longStart) + (full.starts_with(LR"(\\)") ? L"UNC" + full.substr(1) : full);
}

size_t WideNameStart(const std::wstring& systemPath)
{
    return systemPath.find_last_of(L"\\/") + 1;
}

bool IsDevice(const std::wstring& systemPath)
{
    if (systemPath.starts_with(deviceStart)) {
        return true;
    }
    std::wstring name = Capitals(systemPath.substr(WideNameStart(systemPath)));
    name.resize(std::min(name.find_first_of(L".:"), name.size()));
    name.resize(name.find_last_not_of(L' ') + 1);
    constexpr std::array<std::wstring_view, 6> names = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
    const bool numbered = name.size() == 4 && (name.starts_with(L"COM") || name.starts_with(L"LPT")) &&
                          std::wstring_view(L"123456789\u00B9\u00B2\u00B3").find(name[3]) != std::wstring_view::npos;
    return numbered || std::find(names.begin(), names.end(), name) != names.end();
}

bool Status(const std::wstring& systemPath, BY_HANDLE_FILE_INFORMATION* status)
{
    // Folders open with this flag alone.
    const OwnedHandle file(CreateFileW(systemPath.c_str(), FILE_READ_ATTRIBUTES,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return file && GetFileInformationByHandle(file.Value, status) != 0;
}

bool IsSame(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b)
{
    return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
           a.nFileIndexLow == b.nFileIndexLow;
}
