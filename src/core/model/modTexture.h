#pragma once

#include <cstdint>
#include <string>

#include "app/modMvmDef.h"
#include "modFileListing.h"

inline bool TexturesWanted = true; ///< a load of a model takes its pictures too

/// Finds the file of a map: the path as the model gives it, with either separator, then its name in the model's folder,
/// at last in any case of letters. Gives empty text and logs a line when there is none; empty text for an empty name.
/// `folder` ends with a separator; `names` is empty for the first question about it.
[[nodiscard]] std::string FindMap(const std::string& map, const std::string& folder, FolderNames* names);
/// Makes a texture from the maps of a material, looked for in `folder` too, which ends with a separator. *texture is
/// its number, 0 for one that cannot be used; false when there is no colour map to be found. Problems go to the Info
/// Log. `names` is empty for the first question about a folder.
bool LoadMaterialTexture(const MvmMaterial& material, const std::string& folder, FolderNames* names, int16_t* texture);
/// Loads the textures of all materials into the texture table. `path` is the model file or its folder with a separator
/// at its end. Problems go to the Info Log.
void LoadTextures(const std::string& path);
/// Reads a colour map and, unless its path is empty, an opacity map; gives the number of the new entry, 0 for none.
int16_t LoadTexture(const std::string& colorFile, const std::string& opacityFile);
