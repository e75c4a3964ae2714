#include "modFaceArrays.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "modGL.h"
#include "modGLTexture.h"
#include "modMaterialState.h"

namespace {

/// One corner of a face as it goes to GL.
struct Corner {
    Vec2 TexCoord;
    Vec3 Normal;
    Vec3 Vertex;
};

/// A stretch of corners that share one state.
struct Run {
    MaterialState State;
    GLint First = 0;
    GLsizei Count = 0;
};

std::vector<Corner> corners;
std::vector<Run> runs;
std::vector<uint16_t> triangleVertices;

/// The states of a mesh's materials, by number; entry 0 stands for every number that has none.
std::vector<MaterialState> StatesOfMesh(const MvmMesh& mesh)
{
    std::vector<MaterialState> states{StateOfMaterial(0)};
    states.reserve(mesh.MeshMaterials.Items.size() + 1);
    for (const MvmMeshMaterial& material : mesh.MeshMaterials) {
        states.push_back(StateOfMaterial(material.Index));
    }
    return states;
}

void AddFace(const MvmMesh& mesh, const MvmFace& face)
{
    for (size_t k = 0; k < 3; ++k) {
        Corner& corner = corners.emplace_back();
        corner.Vertex = mesh.Vertices[face.Vertex[k]];
        if (mesh.Normals.Has(face.Normal[k])) {
            corner.Normal = mesh.Normals[face.Normal[k]];
        }
        if (mesh.TexCoords.Has(face.TexCoord[k])) {
            corner.TexCoord = mesh.TexCoords[face.TexCoord[k]];
        }
    }
}

void CollectRuns(const MvmMesh& mesh)
{
    const std::vector<MaterialState> states = StatesOfMesh(mesh);
    corners.clear();
    runs.clear();
    for (const MvmFace& face : mesh.Faces) {
        if (!FaceCornersValid(mesh, face)) {
            continue;
        }
        const MaterialState& state =
            states[mesh.MeshMaterials.Has(face.Material) ? static_cast<size_t>(face.Material) : 0];
        if (runs.empty() || runs.back().State != state) {
            runs.push_back({.State = state, .First = static_cast<GLint>(corners.size())});
        }
        AddFace(mesh, face);
        runs.back().Count += 3;
    }
}

} // namespace

void DrawFaces(const MvmMesh& mesh)
{
    CollectRuns(mesh);
    if (runs.empty()) {
        return;
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(2, GL_FLOAT, sizeof(Corner), &corners.front().TexCoord);
    glNormalPointer(GL_FLOAT, sizeof(Corner), &corners.front().Normal);
    glVertexPointer(3, GL_FLOAT, sizeof(Corner), &corners.front().Vertex);
    const MaterialState* before = nullptr;
    for (const Run& run : runs) {
        if (before != nullptr && before->Kind == run.State.Kind) {
            BindTexture(run.State.Texture);
        } else {
            ApplyMaterialState(run.State);
        }
        before = &run.State;
        glDrawArrays(GL_TRIANGLES, run.First, run.Count);
    }
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

void DrawPlainFaces(const MvmMesh& mesh)
{
    triangleVertices.clear();
    for (const MvmFace& face : mesh.Faces) {
        if (FaceCornersValid(mesh, face)) {
            for (const int16_t vertex : face.Vertex) {
                triangleVertices.push_back(static_cast<uint16_t>(vertex - 1));
            }
        }
    }
    if (triangleVertices.empty()) {
        return;
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vec3), mesh.Vertices.Items.data());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(triangleVertices.size()), GL_UNSIGNED_SHORT,
                   triangleVertices.data());
    glDisableClientState(GL_VERTEX_ARRAY);
}
