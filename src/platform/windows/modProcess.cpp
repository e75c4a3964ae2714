#include "modProcess.h"

#include "windows/modWindows.h"

namespace {

/// A word as a program of this system reads it back from its command line: backslashes count double before a quote.
std::wstring Quoted(const std::wstring& word)
{
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t letter : word) {
        if (letter == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(backslashes, L'\\') + L"\"";
}

} // namespace

bool ErrorsGoToTerminal()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0 &&
           (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::string ProgramFile(const std::string& path)
{
    return path + ".exe";
}

int RunProgram(const std::string& path, const std::vector<std::string>& arguments)
{
    const std::wstring program = SystemPath(path);
    std::wstring line = Quoted(program);
    for (const std::string& argument : arguments) {
        line += L" " + Quoted(WideText(argument));
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION child{};
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child) ==
        0) {
        return -1;
    }
    const OwnedHandle thread(child.hThread);
    const OwnedHandle process(child.hProcess);
    DWORD code = 0;
    if (WaitForSingleObject(process.Value, INFINITE) != WAIT_OBJECT_0 ||
        GetExitCodeProcess(process.Value, &code) == 0) {
        return -1;
    }
    constexpr DWORD noLibrary = 0xC0000135;
    constexpr int notFound = 127;
    return code == noLibrary ? notFound : code > INT32_MAX ? -1 : static_cast<int>(code);
}

bool RunLimited(const std::string& /*path*/, const std::vector<std::string>& /*arguments*/,
                const ProgramLimits& /*limits*/, ProgramEnd* /*end*/, std::string* error)
{
    *error = "This is not available on Windows.";
    return false;
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    BY_HANDLE_FILE_INFORMATION first{};
    BY_HANDLE_FILE_INFORMATION second{};
    const std::wstring paths[] = {SystemPath(a), SystemPath(b)};
    return !paths[0].empty() && !paths[1].empty() && Status(paths[0], &first) && Status(paths[1], &second) &&
           IsSame(first, second);
}
