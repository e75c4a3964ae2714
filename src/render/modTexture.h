#pragma once

#include <cstdint>
#include <string>

#include "app/modArray.h"

/// An entry of the texture table.
struct MvmTexture {
    uint32_t GLTexture = 0;
    bool HasOpacity = false; ///< an opacity map was merged in: draw with the alpha test
};

inline Array1<MvmTexture> Textures;
[[nodiscard]] inline int32_t TextureCount()
{
    return Textures.Count();
}

/// Loads the textures of all materials. `path` is the model file or its folder with a separator at its end. Problems go
/// to the Info Log.
void LoadTextures(const std::string& path);
/// Reads a colour map and, unless its path is empty, an opacity map; gives the number of the new entry, 0 for none.
int16_t LoadTexture(const std::string& colorFile, const std::string& opacityFile);
/// Binds the texture with the present filters, or switches texturing off for an invalid number or while ViewTextures is
/// false.
void BindTexture(int16_t index);
[[nodiscard]] bool IsValidTexture(int32_t index);
/// Empties the table and frees its GL textures.
void FreeTextures();
