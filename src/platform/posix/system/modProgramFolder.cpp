#include <filesystem>
#include <system_error>

#include "modFiles.h"

std::string ProgramFolder()
{
    // The system keeps the program's own path with all links resolved.
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string(".") : program.parent_path().string();
}
