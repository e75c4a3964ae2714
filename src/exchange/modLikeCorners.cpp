#include "modLikeCorners.h"

#include <algorithm>
#include <cmath>

#include "app/modMath.h"
#include "modNumbering.h"

namespace {

/// What is asked of the model's mesh for corners without a number.
struct OldMesh {
    const LikePair& Pair;
    PointTree Tree{};
    double Near = 0;
    std::vector<std::vector<std::array<int32_t, 2>>> Uses{}; ///< of each vertex: faces, and which corner of each
    std::vector<char> IsUsed{};                              ///< by face: a triangle of the file is it
};

OldMesh OldMeshOf(const LikePair& pair)
{
    constexpr double part = 1e-5;
    OldMesh old{.Pair = pair};
    old.Near = part * pair.Extent;
    old.Tree = TreeOfVertices(pair.Model);
    old.Uses.resize(pair.Model.Vertices.Items.size() + 1);
    old.IsUsed.resize(pair.Model.Faces.Items.size() + 1);
    for (int32_t face = 1; face <= pair.Model.FaceCount(); ++face) {
        if (!FaceCornersValid(pair.Model, pair.Model.Faces[face])) {
            continue;
        }
        for (int32_t k = 0; k < 3; ++k) {
            const int16_t vertex = pair.Model.Faces[face].Vertex[static_cast<size_t>(k)];
            old.Uses[static_cast<size_t>(vertex)].push_back({face, k});
        }
    }
    return old;
}

bool IsSameBone(const LikePair& pair, const ExchangeVertex& corner, int32_t vertex)
{
    if (!pair.HasBones || !pair.Model.VertexBones.Has(vertex)) {
        return true;
    }
    const int16_t bone = pair.Model.VertexBones[vertex];
    const int16_t own = corner.Bone < 0 ? int16_t{0} : pair.Bones[static_cast<size_t>(corner.Bone)];
    return own == (IsValidBone(bone) ? bone : int16_t{0});
}

bool IsAt(const OldMesh& old, const ExchangeVertex& corner, int32_t vertex)
{
    return VecDistance(corner.Place, old.Pair.Model.Vertices[vertex]) <= old.Near;
}

/// The vertices of the model at a corner's place.
std::vector<int32_t> VerticesAt(const OldMesh& old, const ExchangeVertex& corner)
{
    std::vector<int32_t> found;
    const double reach = old.Near > 0 ? old.Near : 1e-30;
    (void)HighestInside(old.Tree, BoxAround(PlaceOf(corner.Place), reach * 1.01), [&](const TreeNode& node) {
        if (IsAt(old, corner, node.Index)) {
            found.push_back(node.Index);
        }
        return false; // all are wanted
    });
    return found;
}

using Candidates = std::array<std::vector<int32_t>, 3>;

/// True when the model's face, beginning with `first`, is the triangle, whose vertices are known by `numbers`, 0 for
/// those that are not.
bool IsFace(const OldMesh& old, const std::array<uint32_t, 3>& triangle, const std::array<int32_t, 3>& numbers,
            const MvmFace& face, size_t first)
{
    for (size_t k = 0; k < 3; ++k) {
        const ExchangeVertex& corner = old.Pair.File.Vertices[triangle[k]];
        const size_t own = (first + k) % 3;
        const int16_t vertex = face.Vertex[own];
        if (!(numbers[k] != 0 ? numbers[k] == vertex : IsAt(old, corner, vertex)) ||
            !IsSameBone(old.Pair, corner, vertex)) {
            return false;
        }
        const int16_t number = face.TexCoord[own];
        if (old.Pair.Model.TexCoords.Has(number) &&
            !AreSamePairs(old.Pair.Model.TexCoords[number], {corner.TexCoord.U, 1 - corner.TexCoord.V})) {
            return false;
        }
    }
    return true;
}

bool FindWholeFace(OldMesh* old, const std::array<uint32_t, 3>& triangle, const Candidates& candidates,
                   std::array<int32_t, 3>* numbers)
{
    for (const int32_t vertex : candidates[0]) {
        for (const auto& [face, corner] : old->Uses[static_cast<size_t>(vertex)]) {
            const auto first = static_cast<size_t>(corner);
            const MvmFace& own = old->Pair.Model.Faces[face];
            if (old->IsUsed[static_cast<size_t>(face)] != 0 || !IsFace(*old, triangle, *numbers, own, first)) {
                continue;
            }
            old->IsUsed[static_cast<size_t>(face)] = 1;
            for (size_t k = 0; k < 3; ++k) {
                (*numbers)[k] = own.Vertex[(first + k) % 3];
            }
            return true;
        }
    }
    return false;
}

int32_t NearestOf(const OldMesh& old, const ExchangeVertex& corner, const std::vector<int32_t>& candidates)
{
    const auto rank = [&](int32_t vertex) {
        return std::pair(IsSameBone(old.Pair, corner, vertex) ? 0 : 1,
                         VecDistance(corner.Place, old.Pair.Model.Vertices[vertex]));
    };
    const auto best =
        std::min_element(candidates.begin(), candidates.end(), [&](int32_t a, int32_t b) { return rank(a) < rank(b); });
    return best == candidates.end() ? 0 : *best;
}

} // namespace

PointTree TreeOfVertices(const MvmMesh& mesh)
{
    std::vector<TreeNode> nodes;
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        nodes.push_back({PlaceOf(mesh.Vertices[vertex]), vertex, 0});
    }
    return BuildPointTree(std::move(nodes));
}

double ExtentOf(const MvmMesh& mesh)
{
    double largest = 0;
    for (const Vec3& place : mesh.Vertices) {
        largest = std::max({largest, std::fabs(static_cast<double>(place.X)), std::fabs(static_cast<double>(place.Y)),
                            std::fabs(static_cast<double>(place.Z))});
    }
    return largest;
}

bool AreSamePairs(const Vec2& a, const Vec2& b)
{
    constexpr double near = 1e-6;
    const auto same = [](float x, float y) {
        return std::fabs(static_cast<double>(x) - y) <= near * std::max(1.0, std::fabs(static_cast<double>(x)));
    };
    return same(a.U, b.U) && same(a.V, b.V);
}

CornerNumbers OldVertices(const LikePair& pair)
{
    CornerNumbers numbers;
    size_t unknown = 0;
    for (const ExchangePart& part : pair.File.Parts) {
        for (const auto& triangle : part.Triangles) {
            std::array<int32_t, 3>& own = numbers.emplace_back();
            for (size_t k = 0; k < 3; ++k) {
                const int32_t number = NumberFrom(pair.File.Vertices[triangle[k]].Number, pair.Salt);
                own[k] = pair.Model.Vertices.Has(number) ? number : 0;
                unknown += own[k] == 0 ? 1 : 0;
            }
        }
    }
    if (unknown == 0) {
        return numbers;
    }
    OldMesh old = OldMeshOf(pair);
    size_t index = 0;
    for (const ExchangePart& part : pair.File.Parts) {
        for (const auto& triangle : part.Triangles) {
            std::array<int32_t, 3>& own = numbers[index++];
            if (own[0] != 0 && own[1] != 0 && own[2] != 0) {
                continue;
            }
            Candidates candidates;
            for (size_t k = 0; k < 3; ++k) {
                candidates[k] =
                    own[k] != 0 ? std::vector<int32_t>{own[k]} : VerticesAt(old, pair.File.Vertices[triangle[k]]);
            }
            if (FindWholeFace(&old, triangle, candidates, &own)) {
                continue;
            }
            for (size_t k = 0; k < 3; ++k) {
                if (own[k] == 0) {
                    own[k] = NearestOf(old, pair.File.Vertices[triangle[k]], candidates[k]);
                }
            }
        }
    }
    return numbers;
}
