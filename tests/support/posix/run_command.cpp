#include "support/run_command.h"

#include <cstdlib>

#include <sys/wait.h>

Outcome RunCommand(const TempFolder& folder, const std::string& words)
{
    const TempFolder said;
    const std::string line =
        "cd '" + folder.Path + "' && '" BWRT "' >'" + said / "out" + "' 2>'" + said / "err" + "' </dev/null " + words;
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Content(said / "out"), Content(said / "err")};
}
