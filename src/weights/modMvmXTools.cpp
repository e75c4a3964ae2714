#include "weights/modMvmXTools.h"

#include <algorithm>
#include <array>
#include <vector>

#include "app/modMvmDef.h"
#include "platform/modDialogs.h"
#include "render/modMath.h"
#include "render/modRedraw.h"
#include "weights/modNear.h"

namespace {

constexpr float farthest = 1000000.0F;

/// A coordinate of a bone in the skin's space, rounded once.
float ToSkin(float position, float offset)
{
    return static_cast<float>((static_cast<double>(position) + offset) * SkinScale);
}

constexpr size_t blockSize = 64;
using FaceFloats = std::array<float, blockSize>;
using FaceDoubles = std::array<double, blockSize>;

/// Faces that are worked out together, one array for each number: the compiler takes several of them in one step.
struct FaceBlock {
    std::array<MvmFace*, blockSize> Faces{};
    std::array<std::array<FaceFloats, 3>, 3> Places{}; ///< by corner and axis
    FaceDoubles PullX{}, PullY{}, PullZ{};             ///< normal times area
    std::array<FaceFloats, 3> Cosines{};
    std::array<FaceDoubles, 3> Angles{}; ///< at the corners
};

/// Works out what the faces pull at their corners. Each edge is normalised once: the opposite direction only changes signs.
void MeasureFaces(FaceBlock* block)
{
    const auto& [places1, places2, places3] = block->Places;
    for (size_t i = 0; i < blockSize; ++i) {
        const Vec3 p1{places1[0][i], places1[1][i], places1[2][i]};
        const Vec3 p2{places2[0][i], places2[1][i], places2[2][i]};
        const Vec3 p3{places3[0][i], places3[1][i], places3[2][i]};
        const Vec3 normal = FaceNormal(p3, p2, p1);
        const auto area = static_cast<float>(TriangleArea(p3, p2, p1));
        block->PullX[i] = static_cast<double>(normal.X) * area;
        block->PullY[i] = static_cast<double>(normal.Y) * area;
        block->PullZ[i] = static_cast<double>(normal.Z) * area;
        const Vec3 e12 = VecNormalize(VecSub(p1, p2));
        const Vec3 e13 = VecNormalize(VecSub(p1, p3));
        const Vec3 e23 = VecNormalize(VecSub(p2, p3));
        block->Cosines[0][i] = static_cast<float>(VecDot(e12, e13));
        block->Cosines[1][i] = static_cast<float>(-VecDot(e12, e23));
        block->Cosines[2][i] = static_cast<float>(VecDot(e13, e23));
    }
    for (size_t corner = 0; corner < 3; ++corner) {
        std::transform(block->Cosines[corner].begin(), block->Cosines[corner].end(), block->Angles[corner].begin(),
                       ArcCos);
    }
}

/// Adds the faces of a block to the sums of their vertices, in their order.
void AddFaces(const FaceBlock& block, size_t count, std::vector<Vec3>* sums)
{
    for (size_t i = 0; i < count; ++i) {
        const auto& vertices = block.Faces[i]->Vertex;
        for (size_t corner = 0; corner < 3; ++corner) {
            // A vertex that the face names twice counts once, at its last corner.
            const int16_t vertex = vertices[corner];
            if ((corner < 2 && vertex == vertices[2]) || (corner == 0 && vertex == vertices[1])) {
                continue;
            }
            const double angle = block.Angles[corner][i];
            Vec3& sum = (*sums)[static_cast<size_t>(vertex) - 1];
            sum.X = static_cast<float>(sum.X + block.PullX[i] * angle);
            sum.Y = static_cast<float>(sum.Y + block.PullY[i] * angle);
            sum.Z = static_cast<float>(sum.Z + block.PullZ[i] * angle);
        }
    }
}

} // namespace

void AutoAssign(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    if (BoneCount() < 1) {
        ShowMessage(BoxIcon::Warning, "No boned found to assign.");
        return;
    }
    MvmMesh& skin = Meshes[mesh];
    if (!skin.IsSkin) {
        ShowMessage(BoxIcon::Warning, "Mesh is not a skin.");
        return;
    }
    std::vector<NearPoint> places;
    const int32_t last = std::min<int32_t>(BoneCount(), INT16_MAX);
    for (int32_t b = 1; b <= last; ++b) {
        const MvmBone& bone = Bones[b];
        if (!bone.IsShadow) {
            places.push_back({{ToSkin(bone.Position.X, SkinOffset.X), ToSkin(bone.Position.Y, SkinOffset.Y),
                               ToSkin(bone.Position.Z, SkinOffset.Z)},
                              b});
        }
    }
    const NearTree tree = BuildNear(std::move(places));
    int32_t nearest = 0;
    for (int32_t v = 1; v <= skin.VertexBones.Count(); ++v) {
        if (skin.VertexBones[v] == 0) {
            // Vertices that follow each other are mostly neighbours.
            nearest = NearestPoint(tree, skin.Vertices[v], farthest, nearest);
            skin.VertexBones[v] = static_cast<int16_t>(nearest);
        }
    }
    Redraw(true);
}

void RegenerateNormals(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    MvmMesh& shape = Meshes[mesh];
    std::vector<Vec3>& sums = shape.Normals.Items;
    sums.assign(shape.Vertices.Items.size(), Vec3{});
    FaceBlock block;
    size_t count = 0;
    // Face by face, each vertex meets its faces in their order.
    for (MvmFace& face : shape.Faces) {
        if (!FaceCornersValid(shape, face)) {
            continue;
        }
        for (size_t corner = 0; corner < 3; ++corner) {
            const Vec3& place = shape.Vertices[face.Vertex[corner]];
            block.Places[corner][0][count] = place.X;
            block.Places[corner][1][count] = place.Y;
            block.Places[corner][2][count] = place.Z;
        }
        block.Faces[count] = &face;
        face.Normal = face.Vertex;
        if (++count == blockSize) {
            MeasureFaces(&block);
            AddFaces(block, count, &sums);
            count = 0;
        }
    }
    MeasureFaces(&block);
    AddFaces(block, count, &sums);
    for (Vec3& sum : sums) {
        sum = VecNormalize(sum);
    }
}
