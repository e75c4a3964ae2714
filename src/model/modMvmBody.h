#pragma once

#include <string>
#include <string_view>

#include "app/modMvmDef.h"

// What the lines of a model file do to the scene. Used by the reader.

enum class BlockKind { None, FileInfo, Bone, Material, Mesh, Instance };

/// Texts that keep their memory from line to line.
struct LineScratch {
    std::string Stripped;
    std::string Numbers;
};

/// A line outside a block: a known keyword sets *kind and, but for file info, adds a record with the name behind it.
void ReadHeaderLine(std::string_view line, BlockKind* kind);

/// A line inside a block, by its key, applied to the last record of that kind. On a failure *failure says what is wrong;
/// the line's entry may have been added with what was read of it.
bool ReadBodyLine(std::string_view line, BlockKind kind, LineScratch* scratch, const char** failure);

/// A key (any case) and a value of a mesh, by the general rules. Fails like ReadBodyLine.
bool ReadMeshLine(std::string_view key, std::string_view value, MvmMesh* mesh, std::string* scratch,
                  const char** failure);

/// Adds a vertex and, in a skin, its unassigned bone and its joint number 0.
void AddVertex(const Vec3& position, MvmMesh* mesh);

/// Gives back the memory that the arrays of a mesh hold beyond their entries.
void TrimMesh(MvmMesh* mesh);
/// The same for the whole scene.
void TrimScene();
