#pragma once

#include <string>
#include <unordered_map>
#include <vector>

/// Names of the plain, not hidden files of a folder, in the order of the listing. Empty when it cannot be read.
[[nodiscard]] std::vector<std::string> ListFiles(const std::string& folder);

/// What FindFileAnyCase has read of one folder, so that many questions in a row read it once.
struct FolderNames {
    bool Listed = false;
    std::unordered_map<std::u32string, std::string> ByFoldedName;
};
/// The path of a plain file in `folder` (with a separator at its end) whose name equals `name` but for the case of its
/// letters (UTF-8); an exact match comes first. False when there is none, or when `name` names a hidden file. `names`
/// is empty for the first question about a folder.
bool FindFileAnyCase(const std::string& folder, const std::string& name, FolderNames* names, std::string* path);
