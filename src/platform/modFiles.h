#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// Files, by paths in the file system's encoding, which on Windows is UTF-8 for all of the program. Functions that can fail give false and put the system's words into
// *error.

enum class FileKind { None, Plain, Folder, Other };
/// What stands at a path; links are followed. Only a name that is not there gives None: it fails when the system cannot
/// tell.
bool KindOfFile(const std::string& path, FileKind* kind, std::string* error);
/// True for a plain file. Never fails.
[[nodiscard]] bool IsPlainFile(const std::string& path);
[[nodiscard]] bool IsFolder(const std::string& path);
/// True when something of that name exists and its owner may not write it, or this user may not.
[[nodiscard]] bool IsReadOnly(const std::string& path);

/// Where the name begins behind the last separator of the system.
[[nodiscard]] size_t NameStart(const std::string& path);
/// True for a path that listings leave out, whether something stands there or not.
[[nodiscard]] bool IsHidden(const std::string& path);

/// A plain file of less than 2 GB that is read from its start on. Closed with the end of its life.
struct OpenedFile {
    std::intptr_t Descriptor = -1; ///< the system's number for it
    size_t Expected = 0;           ///< its length in bytes when it was opened
    size_t Taken = 0;              ///< bytes read so far

    OpenedFile() = default;
    ~OpenedFile();
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;
};
/// Opens a file into a fresh *file. Anything but such a file at that path is refused.
bool OpenForReading(const std::string& path, OpenedFile* file, std::string* error);
/// Reads on until `size` bytes stand at `to` or the file ends; *count is how many there are.
bool ReadOn(OpenedFile* file, char* to, size_t size, size_t* count, std::string* error);
/// Reads a whole file.
bool ReadWhole(const std::string& path, std::string* bytes, std::string* error);

/// Takes the next part of a file's content.
using PartWriter = std::function<void(std::string_view)>;
/// Hands over the content of a file in parts, in order.
using PartMaker = std::function<void(const PartWriter&)>;

/// What a save leaves behind, nothing as a rule.
struct SaveRest {
    std::string Guard; ///< path of a copy of the old content; empty for none
    std::string Why;   ///< the system's words for why it could not be removed
    bool Torn = false; ///< the file could not be given its old content back: the copy holds it
};
/// Puts the content that `make` hands over under the name `path`, whole or not at all; what it throws passes through. A
/// new file is written beside the old one, flushed, and takes its name, owner, permissions and attributes. Where it
/// could not take them all, or where the folder takes no new file, the old one is written in place behind a complete
/// copy of it, and has its old content back after a failure. A link keeps pointing to its file. Refuses to write
/// anything but a plain file. With a name for a `guard`, the old content stands under it during the save where that is
/// possible; a file or link of that name is replaced, anything else left alone. Else a copy that is needed lies in the
/// folder for temporary files.
bool SaveWhole(const std::string& path, const std::string& guard, const PartMaker& make, SaveRest* rest,
               std::string* error);

/// The folder for temporary files, with a separator at its end.
[[nodiscard]] std::string TemporaryFolder();

/// The folder that holds the program, found through links, without a separator at its end.
[[nodiscard]] std::string ProgramFolder();
