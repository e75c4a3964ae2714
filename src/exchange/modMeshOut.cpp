#include "modMeshOut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "app/modMath.h"
#include "modNumbering.h"

namespace {

/// A corner of the file: what it names, and how many faces over the same vertices came before its own. Those need
/// vertices of their own, since other programs take two faces on the same vertices for one.
struct CornerKey {
    std::array<int16_t, 3> Numbers{}; ///< vertex, texture coordinate, normal
    int16_t Part = 0;
    int32_t Copy = 0;
    bool operator==(const CornerKey&) const = default;
};

struct CornerHash {
    size_t operator()(const CornerKey& key) const
    {
        uint64_t word = 0;
        for (const int16_t number : key.Numbers) {
            word = word << 16U | static_cast<uint16_t>(number);
        }
        word = word << 16U ^ static_cast<uint64_t>(key.Part) ^ static_cast<uint64_t>(key.Copy) << 40U;
        word *= 0x9E3779B97F4A7C15ULL;
        return word ^ word >> 32U;
    }
};

uint64_t VerticesOf(const MvmFace& face)
{
    std::array<int16_t, 3> sorted = face.Vertex;
    std::sort(sorted.begin(), sorted.end());
    return static_cast<uint64_t>(sorted[0]) << 32U | static_cast<uint64_t>(sorted[1]) << 16U |
           static_cast<uint64_t>(sorted[2]);
}

/// A normal as other programs take it: of length 1. What is no direction becomes that of the face.
Vec3 UnitNormal(const MvmMesh& mesh, const MvmFace& face, size_t corner)
{
    constexpr double near = 5e-4;
    if (mesh.Normals.Has(face.Normal[corner])) {
        const Vec3& normal = mesh.Normals[face.Normal[corner]];
        const double length = VecLength(normal);
        if (std::fabs(length - 1) <= near) {
            return normal;
        }
        const Vec3 unit = VecNormalize(normal);
        if (std::fabs(VecLength(unit) - 1) <= near) {
            return unit;
        }
    }
    const Vec3 across =
        FaceNormal(mesh.Vertices[face.Vertex[2]], mesh.Vertices[face.Vertex[1]], mesh.Vertices[face.Vertex[0]]);
    return std::fabs(VecLength(across) - 1) <= near ? across : Vec3{0, 1, 0};
}

ExchangeVertex CornerOf(const MvmMesh& mesh, const MvmFace& face, size_t corner, uint32_t salt, bool isSkinned)
{
    const int16_t number = face.Vertex[corner];
    const int16_t bone = isSkinned && mesh.VertexBones.Has(number) ? mesh.VertexBones[number] : int16_t{0};
    ExchangeVertex vertex;
    vertex.Place = mesh.Vertices[number];
    vertex.Normal = UnitNormal(mesh, face, corner);
    const bool hasPair = mesh.TexCoords.Has(face.TexCoord[corner]);
    const Vec2 pair = hasPair ? mesh.TexCoords[face.TexCoord[corner]] : Vec2{};
    vertex.TexCoord = {pair.U, 1 - pair.V};
    vertex.Number = ConfirmedNumber(number, salt);
    vertex.Numbers = {static_cast<float>(face.TexCoord[corner]), static_cast<float>(face.Normal[corner])};
    vertex.Bone = IsValidBone(bone) ? bone - 1 : -1;
    return vertex;
}

} // namespace

bool CanTravel(const MvmMesh& mesh, const MvmFace& face)
{
    return FaceCornersValid(mesh, face) && face.Vertex[0] != face.Vertex[1] && face.Vertex[1] != face.Vertex[2] &&
           face.Vertex[2] != face.Vertex[0];
}

void MeshToExchange(const MvmMesh& mesh, uint32_t salt, bool isSkinned, ExchangeMesh* result,
                    std::vector<int16_t>* materials, std::vector<int32_t>* left)
{
    std::unordered_map<int16_t, int16_t> parts;
    std::unordered_map<uint64_t, int32_t> seen;
    std::unordered_map<CornerKey, uint32_t, CornerHash> corners;
    corners.reserve(mesh.Vertices.Items.size() * 2);
    result->IsSkinned = isSkinned;
    for (int32_t index = 1; index <= mesh.FaceCount(); ++index) {
        const MvmFace& face = mesh.Faces[index];
        if (!CanTravel(mesh, face)) {
            left->push_back(index);
            continue;
        }
        const auto [found, isNew] = parts.emplace(face.Material, static_cast<int16_t>(parts.size()));
        if (isNew) {
            result->Parts.emplace_back();
            materials->push_back(face.Material);
        }
        const int32_t copy = seen[VerticesOf(face)]++;
        std::array<uint32_t, 3> triangle{};
        for (size_t corner = 0; corner < 3; ++corner) {
            const CornerKey key{{face.Vertex[corner], face.TexCoord[corner], face.Normal[corner]}, found->second, copy};
            const auto [place, added] = corners.emplace(key, static_cast<uint32_t>(result->Vertices.size()));
            if (added) {
                result->Vertices.push_back(CornerOf(mesh, face, corner, salt, isSkinned));
            }
            triangle[corner] = place->second;
        }
        result->Parts[static_cast<size_t>(found->second)].Triangles.push_back(triangle);
    }
}
