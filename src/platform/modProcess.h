#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// True when standard error goes to a terminal.
[[nodiscard]] bool ErrorsGoToTerminal();

/// The file of a program whose path is given without the ending that the system's programs have.
[[nodiscard]] std::string ProgramFile(const std::string& path);
/// Runs a program with these arguments, waits for its end and gives its exit code; -1 when it cannot be started or was
/// ended from outside. A code of 127 can also mean that a library of it is missing.
[[nodiscard]] int RunProgram(const std::string& path, const std::vector<std::string>& arguments);

/// What a program gets at most; 0 for as much as it wants of memory and time.
struct ProgramLimits {
    size_t Memory = 0;    ///< bytes of its address space
    unsigned Seconds = 0; ///< of the processor's time
    size_t Output = 0;    ///< bytes; it is ended when it writes more
    size_t Errors = 0;    ///< bytes; what is more is dropped
};
/// How a program ended.
struct ProgramEnd {
    int Code = -1;        ///< exit code; -1 when it was ended from outside
    bool Stopped = false; ///< by a limit of time or of output, or by someone
    std::string Output{};
    std::string Errors{};
};
/// Runs a program that may be at the mercy of a bad file: it has nothing to read at its standard input, can write no
/// file, and gets no more than the limits. Waits for its end. False, with *error, when there can be none here; a
/// program that does not start ends with 127.
bool RunLimited(const std::string& path, const std::vector<std::string>& arguments, const ProgramLimits& limits,
                ProgramEnd* end, std::string* error);

/// True when both paths lead to the same file, however they are written.
[[nodiscard]] bool IsSameFile(const std::string& a, const std::string& b);
