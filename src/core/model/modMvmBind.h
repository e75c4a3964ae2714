#pragma once

#include <cstdint>
#include <string>

// What the names of a model say: shadow bones, roles, materials, bones by joint number, instances.

/// Marks the bones of the shadow skeleton by their names.
void MarkShadowBones();

/// For each mesh: finds the materials of its list, works out its role, and binds the vertices of a skin to bones by
/// joint number. Of equal names or numbers the last one counts.
void VerifyMeshes();

/// Binds the skin: role, MakeSkin, SkinOffset and SkinScale from the first instance of the mesh. Warns when there is
/// none. 0 unbinds.
void SelectSkinMesh(int16_t mesh);
/// Binds the shadow in the same way, without offset and scale.
void SelectShadowMesh(int16_t mesh);
/// Renames a valid mesh and all instances that place it. `name` is UTF-8 as typed; it is cut at a line end, and
/// characters outside the code page become "?". Says in the Info Log when the format cannot keep the name.
void RenameMesh(int16_t mesh, const std::string& name);
