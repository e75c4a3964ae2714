#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "checks/modTextBody.h"
#include "checks/modTextNotes.h"

/// What stands before a "{" outside a block.
enum class Before { Nothing, Header, BrokenHeader, Text };

/// A check under way.
struct TextCheck {
    TextNotes Notes{};
    TextBlock Block{};
    bool Open = false;    ///< inside a block
    bool Unknown = false; ///< which is of no known kind
    Before Last = Before::Nothing;
    std::string Text{}; ///< the line of text that may be the header of an unknown block
    int64_t TextLine = 0;
    int64_t LastLine = 0;  ///< that is not empty
    int64_t LineFeeds = 0; ///< that end no line
    bool HasLineEnds = false;
};

/// A line outside a block, which may open one.
void CheckOutside(std::string_view line, TextCheck* check);

/// Ends the wait of a line of text for a "{" that would make it the header of an unknown block.
void DropText(TextCheck* check);
