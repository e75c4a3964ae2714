#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Files, by paths in the file system's form. Functions that can fail give false and put the system's words into *error.

/// True for a regular file (links are followed). Never fails.
[[nodiscard]] bool IsPlainFile(const std::string& path);
[[nodiscard]] bool IsFolder(const std::string& path);
/// True when something of that name exists and its owner may not write it, or this user may not.
[[nodiscard]] bool IsReadOnly(const std::string& path);

/// A regular file of less than 2 GB that is read from its start on. Closed with the end of its life.
struct OpenedFile {
    int Descriptor = -1;
    size_t Expected = 0; ///< its length in bytes when it was opened
    size_t Taken = 0;    ///< bytes read so far

    OpenedFile() = default;
    ~OpenedFile();
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;
};
/// Opens a file into a fresh *file. Anything but such a file at that path is refused.
bool OpenForReading(const std::string& path, OpenedFile* file, std::string* error);
/// Reads on until `size` bytes stand at `to` or the file ends; *count is how many there are.
bool ReadOn(OpenedFile* file, char* to, size_t size, size_t* count, std::string* error);

/// Reads a whole regular file of less than 2 GB. Anything else at that path is refused.
bool ReadFile(const std::string& path, std::string* bytes, std::string* error);

/// Puts `bytes` under the name `path`, whole or not at all: written to a new file beside it, flushed to the disk, closed,
/// then renamed over it. An existing file keeps its permissions, a link keeps pointing to it. Refuses to replace anything
/// but a regular file. After a failure the old file is as it was and nothing new lies beside it.
bool ReplaceFile(const std::string& path, std::string_view bytes, std::string* error);
/// Takes the next part of a file's content.
using PartWriter = std::function<void(std::string_view)>;
/// The same with content that comes in parts: `writeParts` is called once and hands them over in order. What it throws
/// passes through, with the old file as it was.
bool ReplaceFile(const std::string& path, const std::function<void(const PartWriter&)>& writeParts, std::string* error);

/// Makes `to` a second, complete copy of `from`, replacing an existing file.
bool CopyFileTo(const std::string& from, const std::string& to, std::string* error);
/// Makes `to` hold what `from` holds now, for a writer that will replace `from` and never change it in place: a second
/// name for the same file where the file system can, else a copy. An existing file or link of the name `to` is replaced;
/// nothing else is.
bool GuardFile(const std::string& from, const std::string& to, std::string* error);
bool DeleteFile(const std::string& path, std::string* error);

/// Names of the plain, not hidden files of a folder, in the order of the listing. Empty when it cannot be read.
[[nodiscard]] std::vector<std::string> ListFiles(const std::string& folder);
/// What FindFileAnyCase has read of one folder, so that many questions in a row read it once.
struct FolderNames {
    bool Listed = false;
    std::unordered_map<std::u32string, std::string> ByFoldedName;
};
/// The path of a plain file in `folder` (with a separator at its end) whose name equals `name` but for the case of its
/// letters (UTF-8); an exact match comes first. False when there is none, or when `name` names a hidden file. `names` is
/// empty for the first question about a folder.
bool FindFileAnyCase(const std::string& folder, const std::string& name, FolderNames* names, std::string* path);

/// The folder that holds the program, found through links, without a separator at its end.
[[nodiscard]] std::string ProgramFolder();
