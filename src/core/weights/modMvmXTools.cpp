#include "weights/modMvmXTools.h"

#include <algorithm>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modMath.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "weights/modPointTree.h"

namespace {

constexpr float farthest = 1000000.0F;

float ToSkin(float position, float offset)
{
    return static_cast<float>((static_cast<double>(position) + offset) * SkinScale);
}

/// The angle of a face at its corner `k`, in radians.
double AngleAt(const MvmMesh& shape, const MvmFace& face, size_t k)
{
    const Vec3& here = shape.Vertices[face.Vertex[k]];
    // The lower of the other two corners comes first.
    const Vec3& first = shape.Vertices[face.Vertex[k == 0 ? 1 : 0]];
    const Vec3& second = shape.Vertices[face.Vertex[k == 2 ? 1 : 2]];
    return VecAngle(VecSub(here, first), VecSub(here, second));
}

/// Adds a face to the sums of its vertices.
void AddFace(const MvmMesh& shape, const MvmFace& face, std::vector<Vec3>* sums)
{
    const Vec3& p1 = shape.Vertices[face.Vertex[0]];
    const Vec3& p2 = shape.Vertices[face.Vertex[1]];
    const Vec3& p3 = shape.Vertices[face.Vertex[2]];
    const Vec3 normal = FaceNormal(p3, p2, p1);
    const auto area = static_cast<float>(TriangleArea(p3, p2, p1));
    for (size_t k = 0; k < 3; ++k) {
        // A vertex that the face names twice counts once, at its last corner.
        const int16_t vertex = face.Vertex[k];
        if ((k < 2 && vertex == face.Vertex[2]) || (k == 0 && vertex == face.Vertex[1])) {
            continue;
        }
        const double angle = AngleAt(shape, face, k);
        Vec3& sum = (*sums)[static_cast<size_t>(vertex) - 1];
        sum.X = static_cast<float>(sum.X + static_cast<double>(normal.X) * area * angle);
        sum.Y = static_cast<float>(sum.Y + static_cast<double>(normal.Y) * area * angle);
        sum.Z = static_cast<float>(sum.Z + static_cast<double>(normal.Z) * area * angle);
    }
}

} // namespace

bool MayAssign(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return false;
    }
    if (BoneCount() < 1) {
        ShowMessage(BoxIcon::Warning, "No boned found to assign.");
        return false;
    }
    if (!Meshes[mesh].IsSkin) {
        ShowMessage(BoxIcon::Warning, "Mesh is not a skin.");
        return false;
    }
    return true;
}

Vec3 JointInSkin(const MvmBone& bone)
{
    return {ToSkin(bone.Position.X, SkinOffset.X), ToSkin(bone.Position.Y, SkinOffset.Y),
            ToSkin(bone.Position.Z, SkinOffset.Z)};
}

void AutoAssign(int16_t mesh)
{
    if (!MayAssign(mesh)) {
        return;
    }
    MvmMesh& skin = Meshes[mesh];
    std::vector<TreeNode> places;
    const int32_t last = std::min<int32_t>(BoneCount(), INT16_MAX);
    for (int32_t b = 1; b <= last; ++b) {
        const MvmBone& bone = Bones[b];
        if (!bone.IsShadow) {
            places.push_back({.At = PlaceOf(JointInSkin(bone)), .Index = b});
        }
    }
    const PointTree tree = BuildPointTree(std::move(places));
    Touch(ScenePart::Assignments, mesh);
    for (int32_t v = 1; v <= skin.VertexBones.Count(); ++v) {
        if (skin.VertexBones[v] == 0) {
            skin.VertexBones[v] = static_cast<int16_t>(NearestPoint(tree, PlaceOf(skin.Vertices[v]), farthest));
        }
    }
    Redraw(true);
}

void RegenerateNormals(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    Touch(ScenePart::Normals, mesh);
    MvmMesh& shape = Meshes[mesh];
    std::vector<Vec3>& sums = shape.Normals.Items;
    sums.assign(shape.Vertices.Items.size(), Vec3{});
    // Face by face, each vertex meets its faces in their order.
    for (MvmFace& face : shape.Faces) {
        if (FaceCornersValid(shape, face)) {
            AddFace(shape, face, &sums);
        }
        face.Normal = face.Vertex;
    }
    for (Vec3& sum : sums) {
        sum = VecNormalize(sum);
    }
}
