#pragma once

#include <cstdint>
#include <string>

// The active bone, and the commands that rewrite assignments.

/// Alias (while AliasesOn, if there is one) or name of a valid bone, UTF-8.
[[nodiscard]] std::string BoneLabel(int16_t bone);
/// Rebuilds both bone lists and makes no bone active.
void FillBoneLists();
/// Makes a bone active, selects its row, refreshes status and view.
void SetActiveBone(int16_t bone);
/// Writes the count of the active bone into the status bar.
void UpdateBoneStatus();
/// Vertices of the mesh that belong to the bone (0: to none). 0 for an invalid mesh.
[[nodiscard]] int32_t CountBoneVerts(int16_t mesh, int16_t bone);

/// Entries of VertexBones that equal `from` become `to`. Nothing for an invalid mesh.
void ReplaceBone(int16_t mesh, int16_t from, int16_t to);
/// All entries become 0. Nothing for an invalid mesh.
void UnassignAll(int16_t mesh);
/// Entries of a become b and entries of b become a. Nothing for an invalid mesh.
void SwapBones(int16_t mesh, int16_t a, int16_t b);
