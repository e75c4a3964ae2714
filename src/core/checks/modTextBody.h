#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "checks/modTextNotes.h"
#include "model/modMvmLines.h"

/// The block that lines belong to.
struct TextBlock {
    BlockKind Kind = BlockKind::None;
    bool IsSkin = false;
    int32_t MeshMaterials = 0; ///< "m" lines so far
    uint32_t KeysSeen = 0;     ///< by place in the table of keys
};

/// A block of that kind in a sentence.
[[nodiscard]] std::string BlockWords(BlockKind kind);

/// A line inside a block.
void CheckBodyLine(std::string_view line, TextBlock* block, TextNotes* notes);
