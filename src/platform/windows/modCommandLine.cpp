#include "modCommandLine.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <io.h>

#include "windows/modWindows.h"
// After the system's own header.
#include <shellapi.h>

namespace {

UINT outputBefore = 0;

} // namespace

std::vector<std::string> CommandLineArguments(int /*argc*/, char** /*argv*/)
{
    std::vector<std::string> words;
    int count = 0;
    // The words that main gets have lost what the present code page does not have.
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 1; wide != nullptr && index < count; ++index) {
        words.push_back(Utf8Text(wide[index]));
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
