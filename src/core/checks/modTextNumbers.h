#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "checks/modTextBody.h"

// The numbers behind a key: what a load makes of them, and a save.

/// The key at work, for the texts of findings.
struct TextKey {
    std::string_view Key;
    BlockKind Kind;
};

/// "(a,b,...)" of `count` numbers and, in a skin's vertex, the joint number behind it.
void CheckTuple(const TextKey& key, std::string_view value, size_t count, bool joint, TextNotes* notes);
/// The ten numbers of a face.
void CheckFace(const TextKey& key, std::string_view value, const TextBlock& block, TextNotes* notes);
/// A number alone.
void CheckNumber(const TextKey& key, std::string_view value, TextNotes* notes);

/// Adds numbers of such a block on the present line whose digits a save changes.
void NoteDigits(int64_t count, BlockKind kind, TextNotes* notes);
