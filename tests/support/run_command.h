#pragma once

#include <string>

#include "support/temp_folder.h"

/// What a program said, and how it ended.
struct Outcome {
    int Code = -1; ///< -1 when a signal ended it
    std::string Output{}, Errors{};
};

/// Runs the command line's program in a folder, with these words for a shell. Where there is no shell of POSIX, single
/// quotes hold a word together and nothing else is more than itself.
Outcome RunCommand(const TempFolder& folder, const std::string& words);
