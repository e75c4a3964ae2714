#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "app/modMvmDef.h"
#include "render/modMaterialLook.h"

// The faces of a mesh as vertex arrays. They are built anew for each pass, in memory that is reused, so they always show
// the scene as it stands. Faces with a vertex number outside the mesh are left out; a normal or texture coordinate
// outside its array is (0, 0, 0) or (0, 0).

/// Which drawable faces a pass takes: all, those whose texture takes part in the alpha test, or the rest.
enum class FaceChoice : uint8_t { All, WithOpacity, WithoutOpacity };

/// Points the vertex array at the mesh's vertices and draws the chosen faces in one batch, positions only. `tints`, one
/// colour for each vertex, leaves out the faces whose corners all have alpha 0, of which an alpha test keeps nothing.
void DrawPlainTriangles(const MvmMesh& mesh, FaceChoice choice = FaceChoice::All,
                        const std::vector<Color4>* tints = nullptr);

/// One corner of a face as it goes to GL.
struct Corner {
    Vec2 TexCoord;
    Vec3 Normal;
    Vec3 Vertex;
};

/// A stretch of faces that share one look.
struct FaceRun {
    Look Shared;
    size_t FirstIndex = 0; ///< into FaceBatches::Indices
    size_t IndexCount = 0;
};

struct FaceBatches {
    std::vector<Corner> Corners;
    std::vector<uint32_t> Indices; ///< into Corners, three for each face
    std::vector<FaceRun> Runs;
    std::optional<Look> Last; ///< of the last face, also when GL would drop it: its state holds for what comes after
};

/// The chosen faces as runs of equal look, ordered as OrderFaces tells. Valid until the next call.
[[nodiscard]] const FaceBatches& CollectRuns(const MvmMesh& mesh, FaceChoice choice);
/// Draws all runs in order; each is preceded by its look's state, and the look of the last face stays in force.
void DrawRuns(const FaceBatches& batches);
