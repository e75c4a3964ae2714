#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "app/modMvmDef.h"

// What the lines of a model file do to the scene. Used by the reader.

enum class BlockKind { None, FileInfo, Bone, Material, Mesh, Instance };

/// A line outside a block: a known keyword sets *kind and, but for file info, adds a record with the name behind it.
void ReadHeaderLine(std::string_view line, BlockKind* kind);

/// A line inside a block, by its key, applied to the last record of that kind. On a failure *failure says what is
/// wrong; the line's entry may have been added with what was read of it.
bool ReadBodyLine(std::string_view line, BlockKind kind, const char** failure);

/// Adds a vertex and, in a skin, its unassigned bone and its joint number.
void AddVertex(const Vec3& position, int16_t joint, MvmMesh* mesh);
