#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/modMvmDef.h"
#include "modExchangeModel.h"

/// What the file form of a mesh does not hold: order of faces, faces left behind, entries that no face names, the last
/// bits of turned texture coordinates and of normals that are not of length 1. Bytes for MeshFromRest.
[[nodiscard]] std::string RestOfMesh(const MvmMesh& mesh, const ExchangeMesh& exchanged, uint32_t salt,
                                     const std::vector<int16_t>& materials, const std::vector<int32_t>& left);

/// Gives `mesh` the arrays of the mesh whose file form and rest these are, bit for bit. `bones` holds the number into
/// Bones of each exchanged bone. False, with `mesh` as it was, when they do not fit each other.
bool MeshFromRest(const std::string& rest, const ExchangeMesh& exchanged, uint32_t salt,
                  const std::vector<int16_t>& bones, MvmMesh* mesh);
