#pragma once

#include <exception>
#include <functional>
#include <string>

#include "modFiles.h"

/// What an exception says to a user.
[[nodiscard]] std::string WordsOf(const std::exception& exception);

/// Runs an operation. An exception takes back what it changed and ends it with a stop box: `lead`, a line feed, and
/// what went wrong; then it gives false.
bool RunGuarded(const std::string& lead, const std::function<void()>& operation);

/// SaveWhole under the same guard; tells what went wrong, and of a copy that it had to leave, in message boxes.
/// `operation` is the name that the boxes give. True when the new content is complete.
bool SaveGuarded(const std::string& operation, const std::string& path, const std::string& guard,
                 const PartMaker& make);
