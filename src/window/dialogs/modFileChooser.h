#pragma once

#include <string>

/// A chooser for one file. Texts are UTF-8, paths in the file system's encoding. Filter is "Name (*.ext)|*.ext|...";
/// StartIn is a folder or a file in it.
struct FileChooser {
    bool Save = false; ///< asks before an existing file is replaced and refuses a read-only one
    std::string Title{};
    std::string Filter{};
    std::string StartIn{};
    std::string FileName{};
};
/// Shows the chooser. False on Cancel; else *path is the chosen path.
bool ChooseFile(const FileChooser& chooser, std::string* path);
