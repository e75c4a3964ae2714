#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "modFiles.h"

/// Takes whole lines, each with a CR and perhaps an LF at its end, and where in the file they begin. False ends the
/// reading.
using LineTaker = std::function<bool(std::string_view lines, size_t position)>;

/// Reads a text file in pieces, so that memory does not grow with it. The end of the file ends its last line: a CR that
/// the file does not have stands there then. False when `take` ended it, and with *error set when a read failed.
bool ReadInPieces(OpenedFile* file, const LineTaker& take, std::string* error);
