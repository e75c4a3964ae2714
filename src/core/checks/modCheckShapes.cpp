#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "app/modMvmDef.h"
#include "checks/modCheckModel.h"
#include "modCodePage.h"

namespace {

using Numbers = std::array<int16_t, 3>;

template <typename Entry>
bool AllInside(const Numbers& numbers, const Array1<Entry>& entries)
{
    return std::all_of(numbers.begin(), numbers.end(), [&](int16_t number) { return entries.Has(number); });
}

bool AllZero(const Numbers& numbers)
{
    return numbers == Numbers{};
}

bool HasWrongNumber(const MvmMesh& mesh, const MvmFace& face)
{
    // A mesh without texture coordinates or normals has none to name.
    const bool texCoords =
        AllInside(face.TexCoord, mesh.TexCoords) || (mesh.TexCoordCount() == 0 && AllZero(face.TexCoord));
    const bool normals = AllInside(face.Normal, mesh.Normals) || mesh.NormalCount() == 0;
    const bool material = face.Material == 0 || mesh.MeshMaterials.Has(face.Material);
    return !FaceCornersValid(mesh, face) || !texCoords || !normals || !material;
}

/// True when the corners do not span a plane: the height over the longest side is lost in the rounding of the corners.
bool IsDegenerate(const MvmMesh& mesh, const MvmFace& face)
{
    std::array<std::array<double, 3>, 2> sides{};
    std::array<double, 3> corner{};
    double size = 0;
    for (size_t k = 0; k < 3; ++k) {
        const Vec3& at = mesh.Vertices[face.Vertex[k]];
        const std::array<double, 3> place{static_cast<double>(at.X), static_cast<double>(at.Y),
                                          static_cast<double>(at.Z)};
        for (size_t axis = 0; axis < 3; ++axis) {
            size = std::max(size, std::fabs(place[axis]));
            if (k == 0) {
                corner[axis] = place[axis];
            } else {
                sides[k - 1][axis] = place[axis] - corner[axis];
            }
        }
    }
    const auto& [a, b] = sides;
    const double cross = std::hypot(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
    const double longest = std::max({std::hypot(a[0], a[1], a[2]), std::hypot(b[0], b[1], b[2]),
                                     std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2])});
    constexpr double rounding = 1.2e-7; // of a coordinate, relative
    return !(cross > longest * rounding * size);
}

void Push(Finding* finding, std::vector<Finding>* findings)
{
    if (finding->Count > 0) {
        findings->push_back(std::move(*finding));
    }
}

void CheckFaces(const MvmMesh& mesh, std::vector<Finding>* findings)
{
    const std::string name = Utf8FromCodePage(mesh.Name);
    Finding wrong{.Code = "face-number", .Grade = Severity::Error, .Count = 0, .Mesh = name};
    Finding degenerate{.Code = "face-degenerate", .Count = 0, .Mesh = name};
    Finding unused{.Code = "vertex-unused", .Count = 0, .Mesh = name};
    std::vector<bool> used(static_cast<size_t>(mesh.VertexCount()) + 1);
    for (int32_t index = 1; index <= mesh.FaceCount(); ++index) {
        const MvmFace& face = mesh.Faces[index];
        if (HasWrongNumber(mesh, face)) {
            AddPlace(index, &wrong.Faces, &wrong);
        }
        if (!FaceCornersValid(mesh, face)) {
            continue;
        }
        if (IsDegenerate(mesh, face)) {
            AddPlace(index, &degenerate.Faces, &degenerate);
        }
        for (const int16_t vertex : face.Vertex) {
            used[static_cast<size_t>(vertex)] = true;
        }
    }
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        if (!used[static_cast<size_t>(vertex)]) {
            AddPlace(vertex, &unused.Vertices, &unused);
        }
    }
    const std::string of = " of mesh " + QuotedName(mesh.Name);
    wrong.What = Counted(wrong.Count, "face", "faces") + of + " (" + FirstPlaces(wrong.Faces) + ") " +
                 Verb(wrong.Count, "names", "name") +
                 " vertices, texture coordinates, normals or materials that the mesh does not have.";
    wrong.Advice = "Export the mesh anew, or take these faces out.";
    degenerate.What = Counted(degenerate.Count, "face", "faces") + of + " (" + FirstPlaces(degenerate.Faces) + ") " +
                      Verb(degenerate.Count, "has", "have") +
                      " no area: two corners are one, or all three lie on a line.";
    degenerate.Advice = "Take such faces out in the modelling program; they only cost time and spoil normals.";
    unused.What = Counted(unused.Count, "vertex", "vertices") + of + " (" + FirstPlaces(unused.Vertices) + ") " +
                  Verb(unused.Count, "belongs to no face and is", "belong to no face and are") + " never seen.";
    unused.Advice = "Take loose vertices out in the modelling program before bones are assigned.";
    Push(&wrong, findings);
    Push(&degenerate, findings);
    Push(&unused, findings);
}

void CheckNormals(const MvmMesh& mesh, std::vector<Finding>* findings)
{
    const std::string advice = "Make new ones: Re-generate Normals in the window, or \"bwrt normals\".";
    if (mesh.FaceCount() > 0 && mesh.NormalCount() == 0) {
        findings->push_back({.Code = "normal-missing",
                             .Count = mesh.FaceCount(),
                             .Mesh = Utf8FromCodePage(mesh.Name),
                             .What = "The mesh " + QuotedName(mesh.Name) + " has no normals, so light cannot shade it.",
                             .Advice = advice});
        return;
    }
    constexpr double tolerance = 0.01; // three decimals of each coordinate
    Finding finding{.Code = "normal-length", .Count = 0, .Mesh = Utf8FromCodePage(mesh.Name)};
    std::vector<int32_t> numbers;
    for (int32_t index = 1; index <= mesh.NormalCount(); ++index) {
        const Vec3& normal = mesh.Normals[index];
        const double length =
            std::hypot(static_cast<double>(normal.X), static_cast<double>(normal.Y), static_cast<double>(normal.Z));
        if (!(std::fabs(length - 1) <= tolerance)) {
            AddPlace(index, &numbers, &finding);
        }
    }
    finding.What = Counted(finding.Count, "normal", "normals") + " of mesh " + QuotedName(mesh.Name) + " (" +
                   FirstPlaces(numbers) + ") " + Verb(finding.Count, "is", "are") +
                   " not of length 1, so light shades their faces wrong.";
    finding.Advice = advice;
    Push(&finding, findings);
}

} // namespace

void CheckShapes(std::vector<Finding>* findings)
{
    for (const MvmMesh& mesh : Meshes) {
        CheckFaces(mesh, findings);
        CheckNormals(mesh, findings);
    }
}
