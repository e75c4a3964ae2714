#pragma once

#include <cstdint>
#include <vector>

/// A vertex that is probably assigned by mistake.
struct Slip {
    int32_t Vertex = 0;
    int16_t Bone = 0;
    int16_t Among = 0; ///< the bone that most of its neighbours have, the lowest of several
};

/// The vertices of a mesh, in order, that have a bone while all their neighbours over faces have others. Vertices at
/// one place count as one: they share their neighbours and are none to each other. Empty for an invalid mesh.
[[nodiscard]] std::vector<Slip> FindSlips(int16_t mesh);
/// The next vertex behind `vertex` without a bone, from the first one again behind the last; 0 when all have one.
[[nodiscard]] int32_t NextUnassigned(int16_t mesh, int32_t vertex);
