#pragma once

#include <cstdint>

/// Lets the user choose a mesh, with the row `current` selected at first (0: "NONE"). Gives the mesh's index, 0 for
/// "NONE", -1 for Cancel. Meshes beyond 32,767 are not offered.
int16_t ChooseMesh(int16_t current);
