#include "modImportProcess.h"

#include <cstddef>

#include "modFiles.h"
#include "modProcess.h"

bool RunImporter(const std::string& program, const std::string& file, std::string* glb, std::string* messages,
                 std::string* error)
{
#if defined(__SANITIZE_ADDRESS__)
    constexpr size_t memory = 0; // the sanitizer takes terabytes of addresses
#else
    constexpr size_t memory = size_t{2} << 30;
#endif
    constexpr ProgramLimits limits{
        .Memory = memory, .Seconds = 60, .Output = size_t{1} << 30, .Errors = size_t{1} << 16};
    constexpr int notFound = 127;
    const std::string path = ProgramFile(program);
    if (!IsPlainFile(path)) {
        *error = "This build reads no format but glTF: there is no \"" + path + "\".";
        return false;
    }
    ProgramEnd end;
    if (!RunLimited(path, {file}, limits, &end, error)) {
        return false;
    }
    while (!end.Errors.empty() && end.Errors.back() == '\n') {
        end.Errors.pop_back();
    }
    if (end.Code == 0) {
        *glb = std::move(end.Output);
        *messages = std::move(end.Errors);
        return true;
    }
    if (end.Code == notFound) {
        *error = "The program that reads other formats cannot start: it needs the library Assimp (on Debian and Ubuntu "
                 "the package libassimp5).";
    } else if (end.Stopped) {
        *error = "The file was given up: it takes more than a minute to read, or more than a gigabyte to hold.";
    } else if (end.Code < 0) {
        *error = "The file is damaged, or takes more than two gigabytes of memory to read.";
    } else {
        *error = end.Errors.empty() ? "The file cannot be read." : end.Errors;
    }
    return false;
}
