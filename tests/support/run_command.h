#pragma once

#include <cstdlib>
#include <string>

#include <sys/wait.h>

#include "support/temp_folder.h"

/// What a program said, and how it ended.
struct Outcome {
    int Code = -1; ///< -1 when a signal ended it
    std::string Output{}, Errors{};
};

/// Runs the command line's program in a folder, with these words for a shell.
inline Outcome RunCommand(const TempFolder& folder, const std::string& words)
{
    const TempFolder said;
    const std::string line =
        "cd '" + folder.Path + "' && '" BWRT "' >'" + said / "out" + "' 2>'" + said / "err" + "' </dev/null " + words;
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Content(said / "out"), Content(said / "err")};
}
