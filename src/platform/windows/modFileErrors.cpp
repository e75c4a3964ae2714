#include "windows/modFileErrors.h"

bool Fail(DWORD number, std::string* error)
{
    wchar_t* words = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, number, 0, reinterpret_cast<wchar_t*>(&words), 0, nullptr);
    *error = length > 0 ? Utf8Text({words, length}) : std::string();
    LocalFree(words);
    error->resize(error->find_last_not_of(" \r\n") + 1);
    if (error->empty()) {
        *error = "System error " + std::to_string(number);
    }
    return false;
}

bool FailPath(const std::string& path, std::string* error)
{
    return Fail(path.empty() ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_NAME, error);
}

bool FailKind(bool isFolder, std::string* error)
{
    *error = isFolder ? "Is a directory" : "Not a regular file";
    return false;
}

bool IsMissing(DWORD number)
{
    return number == ERROR_FILE_NOT_FOUND || number == ERROR_PATH_NOT_FOUND;
}
