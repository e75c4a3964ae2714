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

/// The angles of a face at its corners. Each edge is normalised once: the opposite direction only changes signs.
std::array<double, 3> FaceAngles(const Vec3& p1, const Vec3& p2, const Vec3& p3)
{
    const Vec3 e12 = VecNormalize(VecSub(p1, p2));
    const Vec3 e13 = VecNormalize(VecSub(p1, p3));
    const Vec3 e23 = VecNormalize(VecSub(p2, p3));
    return {ArcCos(static_cast<float>(VecDot(e12, e13))), ArcCos(static_cast<float>(-VecDot(e12, e23))),
            ArcCos(static_cast<float>(VecDot(e13, e23)))};
}

void AddWeighted(Vec3* sum, const Vec3& normal, float area, double angle)
{
    sum->X = static_cast<float>(sum->X + static_cast<double>(normal.X) * area * angle);
    sum->Y = static_cast<float>(sum->Y + static_cast<double>(normal.Y) * area * angle);
    sum->Z = static_cast<float>(sum->Z + static_cast<double>(normal.Z) * area * angle);
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
    std::vector<Vec3> sums(shape.Vertices.Items.size());
    // Face by face, each vertex meets its faces in their order.
    for (MvmFace& face : shape.Faces) {
        if (!FaceCornersValid(shape, face)) {
            continue;
        }
        const auto& [v1, v2, v3] = face.Vertex;
        const Vec3& p1 = shape.Vertices[v1];
        const Vec3& p2 = shape.Vertices[v2];
        const Vec3& p3 = shape.Vertices[v3];
        const Vec3 normal = FaceNormal(p3, p2, p1);
        const auto area = static_cast<float>(TriangleArea(p3, p2, p1));
        const std::array<double, 3> angles = FaceAngles(p1, p2, p3);
        for (size_t corner = 0; corner < 3; ++corner) {
            // A vertex that the face names twice counts once, at its last corner.
            const int16_t vertex = face.Vertex[corner];
            if (std::find(face.Vertex.begin() + static_cast<ptrdiff_t>(corner) + 1, face.Vertex.end(), vertex) ==
                face.Vertex.end()) {
                AddWeighted(&sums[static_cast<size_t>(vertex) - 1], normal, area, angles[corner]);
            }
        }
        face.Normal = face.Vertex;
    }
    for (Vec3& sum : sums) {
        sum = VecNormalize(sum);
    }
    shape.Normals.Items = std::move(sums);
}
