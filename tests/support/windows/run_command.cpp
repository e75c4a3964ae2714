#include "support/run_command.h"

#include <algorithm>

#include "windows/modWindows.h"

namespace {

/// A file that a child inherits.
HANDLE OpenForChild(const std::string& path)
{
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

} // namespace

Outcome RunCommand(const TempFolder& folder, const std::string& words)
{
    const TempFolder said;
    std::string quoted = "\"" BWRT "\" " + words;
    std::replace(quoted.begin(), quoted.end(), '\'', '"');
    std::wstring line = WideText(quoted);
    Outcome outcome;
    {
        const OwnedHandle output(OpenForChild(said / "out"));
        const OwnedHandle errors(OpenForChild(said / "err"));
        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = output.Value;
        start.hStdError = errors.Value;
        PROCESS_INFORMATION child{};
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, SystemPath(folder.Path).c_str(),
                           &start, &child) == 0) {
            return outcome;
        }
        const OwnedHandle thread(child.hThread);
        const OwnedHandle process(child.hProcess);
        DWORD code = 0;
        if (WaitForSingleObject(process.Value, INFINITE) == WAIT_OBJECT_0 &&
            GetExitCodeProcess(process.Value, &code) != 0 && code <= INT32_MAX) {
            outcome.Code = static_cast<int>(code);
        }
    }
    outcome.Output = Content(said / "out");
    outcome.Errors = Content(said / "err");
    return outcome;
}
