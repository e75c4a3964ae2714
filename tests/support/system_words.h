#pragma once

#include <cerrno>
#include <string>

/// The system's words for what POSIX gives this number.
std::string SystemWords(int error);
/// Its words for a path through a folder that is not there.
std::string NoFolderWords();
