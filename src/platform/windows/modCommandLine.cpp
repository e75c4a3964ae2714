#include "modCommandLine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <io.h>

#include "windows/modWindows.h"
// After the system's own header.
#include <shellapi.h>

namespace {

UINT outputBefore = 0;

/// Adds a word, or the files that fit it, in order: what a shell does on other systems.
void AddWord(const std::wstring& word, std::vector<std::string>* words)
{
    const size_t start = WideNameStart(word);
    std::vector<std::wstring> names;
    if (word.find_first_of(L"*?", start) != std::wstring::npos) {
        WIN32_FIND_DATAW entry{};
        const FoundFiles files(word, &entry);
        for (bool more = files.Any(); more; more = files.Next(&entry)) {
            if ((entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN)) == 0) {
                names.emplace_back(entry.cFileName);
            }
        }
    }
    std::sort(names.begin(), names.end());
    for (const std::wstring& name : names) {
        words->push_back(Utf8Text(word.substr(0, start) + name));
    }
    if (names.empty()) {
        words->push_back(Utf8Text(word));
    }
}

} // namespace

std::vector<std::string> CommandLineArguments(int /*argc*/, char** /*argv*/)
{
    std::vector<std::string> words;
    int count = 0;
    // The words that main gets have lost what the present code page does not have.
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 1; wide != nullptr && index < count; ++index) {
        AddWord(wide[index], &words);
    }
    LocalFree(wide);
    return words;
}

void PrepareOutput()
{
    (void)_setmode(_fileno(stdout), _O_BINARY);
    (void)_setmode(_fileno(stderr), _O_BINARY);
    outputBefore = GetConsoleOutputCP();
    if (outputBefore != 0) {
        (void)SetConsoleOutputCP(CP_UTF8);
        (void)std::atexit([] { (void)SetConsoleOutputCP(outputBefore); });
    }
    // For the line of the progress.
    HANDLE const errors = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(errors, &mode) != 0) {
        (void)SetConsoleMode(errors, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
}
