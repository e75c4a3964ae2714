#pragma once

#include <cstdint>
#include <string>

#include "app/modArray.h"

/// One line of an alias file; texts are bytes of the code page.
struct BoneAliasEntry {
    std::string Bone{}, Alias{}, Link{}, Mirror{};
    float Number = 0;
};

struct BoneAliasFile {
    std::string Path{}; ///< in the encoding of the file system
    std::string Name{}; ///< name of the mesh that it serves, bytes of the code page
    Array1<BoneAliasEntry> Entries{};
    [[nodiscard]] int16_t EntryCount() const { return static_cast<int16_t>(Entries.Count()); }
};

inline Array1<BoneAliasFile> AliasFiles;
[[nodiscard]] inline int16_t AliasFileCount()
{
    return static_cast<int16_t>(AliasFiles.Count());
}

/// Reads all alias files of the folder `alias` beside the program. Problems go to a message or the Info Log.
void LoadAlias();
/// Applies the files of the current skin and shadow to the bones. Does not look at AliasesOn. The caller refills the
/// lists.
void ApplyAliases();
/// Writes the entries of one file into the bones.
void ApplyAlias(int16_t file);
/// Takes labels, links and mirror partners out of all bones.
void ClearBoneAliases();
void FreeAliases();
