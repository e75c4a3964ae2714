#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"

// Vertices of a mesh that stand at one place count as one where it is asked who is whose neighbour: seams of texture
// coordinates double them.

/// For each vertex the lowest one at its place; entry 0 is not used.
[[nodiscard]] std::vector<int32_t> PlacesOf(const MvmMesh& mesh);
/// Pairs of a place and a vertex of another place that share a face, ordered, each once.
[[nodiscard]] std::vector<std::pair<int32_t, int32_t>> NeighboursOf(const MvmMesh& mesh,
                                                                    const std::vector<int32_t>& places);
