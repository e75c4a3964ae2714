#pragma once

#include <cstdint>
#include <string>

#include "app/modMvmDef.h"

inline constexpr int32_t LargestCount = 32767; ///< the most entries that an array of a mesh has

/// How the vertices of a made mesh lie.
enum class Shape {
    Creature, ///< a closed, bumpy tube, symmetric about X = 0, as a real skin is
    OnePlace, ///< all vertices at one point
    OneLine,  ///< all on one line along Y
    OnePlane, ///< all on the plane X = 0.001
    Strange,  ///< the tube, with every third vertex at places that are infinite or no number
};

/// A skin of LargestCount vertices, normals, texture coordinates and faces over `materials` materials. Faces of one
/// material stand together when `sorted`, else the materials take turns. The first half of the vertices (X <= 0)
/// carries bones 1 to `bones`.
[[nodiscard]] MvmMesh LargestMesh(Shape shape, int32_t bones, int32_t materials, bool sorted);

/// Fills the scene with `meshes` of them, `bones` bones, `materials` materials and an instance for each mesh, and
/// selects the first as the skin.
void FillScene(int32_t meshes, int32_t bones, int32_t materials, bool sorted, Shape shape = Shape::Creature);

/// The geometry of the scene as an OBJ file.
[[nodiscard]] std::string SceneAsObj();

/// Writes text to a file in the folder for temporary files and gives its path.
std::string TemporaryFile(const std::string& name, const std::string& text);
/// Removes all files that TemporaryFile made.
void RemoveFiles();
