#pragma once

#include <string>

inline bool NoSleep = false;

/// Runs one line of the command console (UTF-8, not empty); the answer goes to the Info Log, which is shown.
void RunCommand(const std::string& input);
