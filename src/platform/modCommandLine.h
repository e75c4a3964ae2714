#pragma once

#include <string>
#include <vector>

/// The words behind the program's name, of what main was given; patterns of files are those files where the shell
/// leaves them to the program.
[[nodiscard]] std::vector<std::string> CommandLineArguments(int argc, char** argv);

/// Makes standard output and standard error take UTF-8 text as it is. Call it before the first use of either.
void PrepareOutput();
