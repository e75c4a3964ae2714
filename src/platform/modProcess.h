#pragma once

#include <string>
#include <vector>

/// True when standard error goes to a terminal.
[[nodiscard]] bool ErrorsGoToTerminal();

/// The file of a program whose path is given without the ending that the system's programs have.
[[nodiscard]] std::string ProgramFile(const std::string& path);
/// Runs a program with these arguments, waits for its end and gives its exit code; -1 when it cannot be started or was
/// ended from outside. A code of 127 can also mean that a library of it is missing.
[[nodiscard]] int RunProgram(const std::string& path, const std::vector<std::string>& arguments);

/// True when both paths lead to the same file, however they are written.
[[nodiscard]] bool IsSameFile(const std::string& a, const std::string& b);
