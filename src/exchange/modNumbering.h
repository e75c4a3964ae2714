#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

// Vertices carry their numbers through other programs, each with a second number that is made from the first and from
// the mesh. Whatever is worked out between two vertices, or comes from another mesh, is not confirmed by it. Both are
// whole and small enough for a float to hold exactly, also as 1 minus themselves, which is what programs that count
// texture coordinates from the bottom make of them.

/// What makes the numbers of a mesh its own, below 2^22. A mesh whose faces name other vertices has another one, so that
/// a file does not speak of vertices that were numbered anew since.
[[nodiscard]] uint32_t NumberSalt(const MvmMesh& mesh, int32_t meshIndex);
/// The number of a vertex, 1 to 2^20, with what confirms it.
[[nodiscard]] Vec2 ConfirmedNumber(int32_t number, uint32_t salt);
/// True when both could be such numbers; *salt is then that of the mesh that they are from.
[[nodiscard]] bool SaltOf(const Vec2& numbers, uint32_t* salt);
/// The vertex number, 0 when it is not confirmed.
[[nodiscard]] int32_t NumberFrom(const Vec2& numbers, uint32_t salt);
