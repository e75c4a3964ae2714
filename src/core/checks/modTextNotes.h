#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "checks/modFinding.h"

/// What is found in the text of a model file while its lines are looked at in order.
struct TextNotes {
    std::vector<Finding> Findings{};
    std::map<std::string, size_t> Groups{};     ///< what makes findings one, to its place in Findings
    std::map<std::string_view, int> GroupsOf{}; ///< how many a code has
    std::array<size_t, 6> Digits{};             ///< by block kind, 1 + the place of that finding; 0 for none
    int64_t Line = 0;                           ///< the line at work
};

/// Adds the present line to the finding of this code and group. Gives it when it is new, for its texts, else nullptr.
/// Of too many groups the last ones are one finding, which has its texts.
Finding* NoteText(const char* code, Severity grade, std::string_view group, TextNotes* notes);

/// Adds `count` places on the present line to a finding.
void AddPlaces(int64_t count, int64_t line, Finding* finding);

/// Bytes of the file between double quotes, as UTF-8, in one line and not too long.
[[nodiscard]] std::string Quoted(std::string_view bytes);

/// Without the blanks, tabs and line feeds at both ends.
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// Takes the text up to the next separator off the front of *rest.
std::string_view TakeUpTo(char separator, std::string_view* rest);

/// Text behind the first word of something, or beside a brace, that is read by nothing. Braces in it are told of alone.
void NoteBehind(std::string_view text, std::string_view what, TextNotes* notes);
