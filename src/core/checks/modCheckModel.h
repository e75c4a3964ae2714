#pragma once

#include <string>
#include <vector>

#include "checks/modFinding.h"

// What the scene tells of a model that was just loaded. Each appends what it finds.

/// Vertices without a bone or with one that the next load or save takes away; bones whose numbers do not tell them
/// apart.
void CheckAssignments(std::vector<Finding>* findings);
/// Faces, normals and vertices of all meshes.
void CheckShapes(std::vector<Finding>* findings);
/// Roles, instances, materials, names and counts.
void CheckRecords(std::vector<Finding>* findings);
/// Vertices of skin and shadow that were probably given to their bones by a slip of the hand.
void CheckHints(std::vector<Finding>* findings);

/// `count` with the word in its right form.
[[nodiscard]] std::string Counted(int64_t count, const char* one, const char* several);
/// The form of a verb for that many.
[[nodiscard]] inline std::string Verb(int64_t count, const char* one, const char* several)
{
    return count == 1 ? one : several;
}
/// The name of a record, UTF-8, in double quotes; control characters become "?".
[[nodiscard]] std::string QuotedName(const std::string& name);
/// Adds one to a finding's count, and the number to a list of places while there is room.
template <typename Number>
void AddPlace(int64_t number, std::vector<Number>* places, Finding* finding)
{
    ++finding->Count;
    if (places->size() < MostPlaces) {
        places->push_back(static_cast<Number>(number));
    }
}
