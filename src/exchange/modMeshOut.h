#pragma once

#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"
#include "modExchangeModel.h"

/// Whether other programs can hold a face: it names three different vertices that are there.
[[nodiscard]] bool CanTravel(const MvmMesh& mesh, const MvmFace& face);

/// The corners and triangles of a mesh, numbered with `salt`; its vertices belong to bones (index into Bones less 1)
/// when it is skinned. Parts follow the first faces of their materials; `materials` holds the number into MeshMaterials
/// of each. Faces that name a vertex twice or one that is not there stay behind: `left` has their numbers.
void MeshToExchange(const MvmMesh& mesh, uint32_t salt, bool isSkinned, ExchangeMesh* result,
                    std::vector<int16_t>* materials, std::vector<int32_t>* left);
