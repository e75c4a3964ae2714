#include "render/modFaceArrays.h"

#include <algorithm>
#include <array>

#include <GL/gl.h>

#include "render/modFaceOrder.h"
#include "render/modMvmDraw.h"
#include "render/modTexture.h"
#include "render/modViewFlags.h"

namespace {

using CornerNumbers = std::array<int16_t, 3>; ///< vertex, normal, texture coordinate

std::vector<uint16_t> triangleVertices;
std::vector<LookedFace> faces; ///< in the order in which they are drawn
FaceBatches batches;
std::vector<CornerNumbers> cornerNumbers; ///< what each entry of batches.Corners was made of
std::vector<uint32_t> lastCornerOfVertex; ///< hint: the corner made last for a vertex number, in any run or pass

Corner MakeCorner(const MvmMesh& mesh, const CornerNumbers& numbers)
{
    Corner corner;
    corner.Vertex = mesh.Vertices[numbers[0]];
    if (mesh.Normals.Has(numbers[1])) {
        corner.Normal = mesh.Normals[numbers[1]];
    }
    if (mesh.TexCoords.Has(numbers[2])) {
        corner.TexCoord = mesh.TexCoords[numbers[2]];
    }
    return corner;
}

/// The place of a corner with these numbers; made when the present run, which began at `runStart`, has none at hand.
/// Corners are shared inside a run only, so that the batch of a short run spans few of them.
uint32_t PlaceOfCorner(const MvmMesh& mesh, const CornerNumbers& numbers, size_t runStart)
{
    uint32_t& hint = lastCornerOfVertex[static_cast<size_t>(numbers[0])];
    if (hint >= runStart && hint < cornerNumbers.size() && cornerNumbers[hint] == numbers) {
        return hint;
    }
    hint = static_cast<uint32_t>(cornerNumbers.size());
    cornerNumbers.push_back(numbers);
    batches.Corners.push_back(MakeCorner(mesh, numbers));
    return hint;
}

/// The looks of a mesh's materials, by number; entry 0 stands for every number that has none.
std::vector<Look> LooksOfMesh(const MvmMesh& mesh)
{
    std::vector<Look> looks{LookOf(0)};
    looks.reserve(mesh.MeshMaterials.Items.size() + 1);
    for (const MvmMeshMaterial& material : mesh.MeshMaterials) {
        looks.push_back(LookOf(material.Index));
    }
    return looks;
}

/// True when the look's texture takes part in the alpha test.
bool HasOpacity(const Look& look)
{
    return Textures.Has(look.Texture) && Textures[look.Texture].HasOpacity;
}

/// Calls use(face, look) for each drawable face of the choice, in face order.
template <typename Use>
void ForEachFace(const MvmMesh& mesh, FaceChoice choice, Use use)
{
    const std::vector<Look> looks = LooksOfMesh(mesh);
    for (const MvmFace& face : mesh.Faces) {
        const Look& look = looks[mesh.MeshMaterials.Has(face.Material) ? static_cast<size_t>(face.Material) : 0];
        const bool chosen = choice == FaceChoice::All || HasOpacity(look) == (choice == FaceChoice::WithOpacity);
        if (chosen && FaceCornersValid(mesh, face)) {
            use(face, look);
        }
    }
}

} // namespace

void DrawPlainTriangles(const MvmMesh& mesh, FaceChoice choice, const std::vector<Color4>* tints)
{
    triangleVertices.clear();
    triangleVertices.reserve(mesh.Faces.Items.size() * 3);
    const auto isClear = [tints](int16_t vertex) { return (*tints)[static_cast<size_t>(vertex) - 1][3] == 0; };
    ForEachFace(mesh, choice, [&](const MvmFace& face, const Look&) {
        if (tints != nullptr && std::all_of(face.Vertex.begin(), face.Vertex.end(), isClear)) {
            return;
        }
        for (const int16_t vertex : face.Vertex) {
            triangleVertices.push_back(static_cast<uint16_t>(vertex - 1));
        }
    });
    if (triangleVertices.empty()) {
        return;
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vec3), mesh.Vertices.Items.data());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(triangleVertices.size()), GL_UNSIGNED_SHORT,
                   triangleVertices.data());
    glDisableClientState(GL_VERTEX_ARRAY);
}

const FaceBatches& CollectRuns(const MvmMesh& mesh, FaceChoice choice)
{
    faces.clear();
    ForEachFace(mesh, choice, [](const MvmFace& face, const Look& look) { faces.push_back({&face, look}); });
    batches.Last = faces.empty() ? std::nullopt : std::optional(faces.back().Shared);
    OrderFaces(mesh, !ViewWire, &faces);
    batches.Corners.clear();
    batches.Indices.clear();
    batches.Runs.clear();
    cornerNumbers.clear();
    lastCornerOfVertex.resize(INT16_MAX + 1);
    size_t runStart = 0;
    for (const LookedFace& looked : faces) {
        if (batches.Runs.empty() || batches.Runs.back().Shared != looked.Shared) {
            batches.Runs.push_back({looked.Shared, batches.Indices.size(), 0});
            runStart = cornerNumbers.size();
        }
        const MvmFace& face = *looked.Face;
        for (size_t k = 0; k < 3; ++k) {
            const CornerNumbers numbers{face.Vertex[k], face.Normal[k], face.TexCoord[k]};
            batches.Indices.push_back(PlaceOfCorner(mesh, numbers, runStart));
        }
        batches.Runs.back().IndexCount += 3;
    }
    faces.clear();
    return batches;
}

void DrawRuns(const FaceBatches& drawn)
{
    if (!drawn.Last) {
        return;
    }
    if (drawn.Runs.empty()) {
        ApplyLook(*drawn.Last, nullptr);
        return;
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(2, GL_FLOAT, sizeof(Corner), &drawn.Corners.front().TexCoord);
    glNormalPointer(GL_FLOAT, sizeof(Corner), &drawn.Corners.front().Normal);
    glVertexPointer(3, GL_FLOAT, sizeof(Corner), &drawn.Corners.front().Vertex);
    const Look* previous = nullptr;
    for (const FaceRun& run : drawn.Runs) {
        ApplyLook(run.Shared, previous);
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(run.IndexCount), GL_UNSIGNED_INT,
                       &drawn.Indices[run.FirstIndex]);
        previous = &run.Shared;
    }
    ApplyLook(*drawn.Last, previous);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}
