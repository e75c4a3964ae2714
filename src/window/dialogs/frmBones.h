#pragma once

#include <cstdint>

/// Lets the user choose a bone, ordinary or shadow, with the row `current` selected at first (0: "NONE"). Gives the
/// bone's index, 0 for "NONE", -1 for Cancel. Bones beyond 32,767 are not offered.
int16_t ChooseBone(int16_t current);
