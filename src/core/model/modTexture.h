#pragma once

#include <cstdint>
#include <string>

/// Loads the textures of all materials into the texture table. `path` is the model file or its folder with a separator
/// at its end. Problems go to the Info Log.
void LoadTextures(const std::string& path);
/// Reads a colour map and, unless its path is empty, an opacity map; gives the number of the new entry, 0 for none.
int16_t LoadTexture(const std::string& colorFile, const std::string& opacityFile);
