#include "modOverlays.h"

#include <vector>

#include "app/modMvmDef.h"
#include "modAssignmentColors.h"
#include "modFaceArrays.h"
#include "modGL.h"
#include "modMaterialState.h"
#include "modSurface.h"
#include "modViewFlags.h"

namespace {

struct LinePoint {
    Vec3 Color;
    Vec3 Position;
};

std::vector<LinePoint> normalLines;
std::vector<int32_t> lastNormalOfVertex; ///< number of the normal drawn last at each vertex in this pass

/// Alpha of what lies over the surface, 0 to 255.
int OverlayAlpha()
{
    return DisplayMode == 1 ? 255 : 127;
}

AssignmentColors PointColors()
{
    const int alpha = OverlayAlpha();
    return {ByteColor(0, 255, 0, alpha), ByteColor(255, 0, 0, 255), ByteColor(255, 255, 255, alpha)};
}

void SetSmooth(GLenum what, bool on)
{
    if (LineAA && on) {
        glEnable(what);
    } else {
        glDisable(what);
    }
}

void BlendByAlpha()
{
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
}

/// The end of a normal's line at `from`.
Vec3 NormalEnd(const Vec3& from, const Vec3& normal)
{
    constexpr float length = 0.05F;
    return {from.X + normal.X * length, from.Y + normal.Y * length, from.Z + normal.Z * length};
}

bool IsBoneShown(const MvmBone& bone)
{
    return bone.IsShadow == (EditTarget == 1);
}

float DrawnSizeOfBone(int32_t bone)
{
    return static_cast<float>(PointSize * (bone == ActiveBone ? 2.4 : 1.6) * static_cast<double>(PixelScale));
}

void SetBoneColor(int32_t bone)
{
    if (bone == ActiveBone) {
        glColor4ub(255, 127, 0, 255);
    } else {
        glColor4ub(255, 255, 0, static_cast<GLubyte>(OverlayAlpha()));
    }
}

/// Points and links in bone order. A batch of points goes on until a link or a change of size comes between.
void DrawBonesInOrder()
{
    bool inPoints = false;
    float size = 0;
    for (int32_t i = 1; i <= BoneCount(); ++i) {
        const MvmBone& bone = Bones[i];
        if (!IsBoneShown(bone)) {
            continue;
        }
        if (inPoints && DrawnSizeOfBone(i) != size) {
            glEnd();
            inPoints = false;
        }
        if (!inPoints) {
            size = DrawnSizeOfBone(i);
            glPointSize(size);
            glBegin(GL_POINTS);
            inPoints = true;
        }
        SetBoneColor(i);
        glVertex3fv(&bone.Position.X);
        if (IsValidBone(bone.LinkBone)) {
            glEnd();
            inPoints = false;
            glBegin(GL_LINES);
            glVertex3fv(&bone.Position.X);
            glVertex3fv(&Bones[bone.LinkBone].Position.X);
            glEnd();
        }
    }
    if (inPoints) {
        glEnd();
    }
}

} // namespace

void DrawVertices(int16_t mesh, bool depthStands)
{
    if (!IsValidMesh(mesh) || !Meshes[mesh].IsSkin) {
        return;
    }
    const MvmMesh& drawn = Meshes[mesh];
    BindMaterial(0);
    glDisable(GL_LIGHTING);
    if (ViewCullVerts) {
        if (ViewWire || !depthStands) {
            glClear(GL_DEPTH_BUFFER_BIT);
            DrawDepthOnly(mesh);
        }
        glEnable(GL_DEPTH_TEST);
        glDepthMask(GL_FALSE);
    } else {
        glDisable(GL_DEPTH_TEST);
    }
    glPointSize(static_cast<float>(PointSize) * PixelScale);
    SetSmooth(GL_POINT_SMOOTH, true);
    BlendByAlpha();
    if (drawn.VertexCount() > 0) {
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        glVertexPointer(3, GL_FLOAT, sizeof(Vec3), drawn.Vertices.Items.data());
        glColorPointer(4, GL_FLOAT, 0, ColorsOfVertices(drawn, PointColors()).data());
        glDrawArrays(GL_POINTS, 0, drawn.VertexCount());
        glDisableClientState(GL_COLOR_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
    }
    glDisable(GL_BLEND);
    SetSmooth(GL_POINT_SMOOTH, false);
    if (ViewCullVerts) {
        glDepthMask(GL_TRUE);
    } else {
        glEnable(GL_DEPTH_TEST);
    }
}

void DrawIsolines(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    glDisable(GL_POLYGON_OFFSET_FILL);
    BindMaterial(0);
    glLineWidth(PixelScale);
    glDisable(GL_LIGHTING);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    BlendByAlpha();
    SetSmooth(GL_LINE_SMOOTH, true);
    glDepthMask(GL_FALSE);
    glColor4f(1, 1, 1, 0.25F);
    DrawPlainFaces(Meshes[mesh]);
    glDepthMask(GL_TRUE);
    SetSmooth(GL_LINE_SMOOTH, false);
    glDisable(GL_BLEND);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEnable(GL_POLYGON_OFFSET_FILL);
}

void DrawNormals(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    const MvmMesh& drawn = Meshes[mesh];
    glDisable(GL_LIGHTING);
    if (LineAA) {
        BlendByAlpha();
        glEnable(GL_LINE_SMOOTH);
    }
    constexpr int32_t noNormalYet = INT32_MIN;
    normalLines.clear();
    lastNormalOfVertex.assign(drawn.Vertices.Items.size(), noNormalYet);
    for (const MvmFace& face : drawn.Faces) {
        if (!FaceCornersValid(drawn, face)) {
            continue;
        }
        for (size_t k = 0; k < 3; ++k) {
            // The same line once more would lose each of its pixels to the first, which has written their depths.
            int32_t& last = lastNormalOfVertex[static_cast<size_t>(face.Vertex[k]) - 1];
            if (last == face.Normal[k]) {
                continue;
            }
            last = face.Normal[k];
            const Vec3& from = drawn.Vertices[face.Vertex[k]];
            const Vec3 normal = drawn.Normals.Has(face.Normal[k]) ? drawn.Normals[face.Normal[k]] : Vec3{};
            const Vec3 color{normal.X * 0.5F + 0.5F, normal.Z * 0.5F + 0.5F, normal.Y * 0.5F + 0.5F};
            normalLines.push_back({color, from});
            normalLines.push_back({color, NormalEnd(from, normal)});
        }
    }
    if (!normalLines.empty()) {
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(3, GL_FLOAT, sizeof(LinePoint), &normalLines.front().Color);
        glVertexPointer(3, GL_FLOAT, sizeof(LinePoint), &normalLines.front().Position);
        glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(normalLines.size()));
        glDisableClientState(GL_COLOR_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
    }
    if (LineAA) {
        glDisable(GL_BLEND);
        glDisable(GL_LINE_SMOOTH);
    }
}

void DrawBones()
{
    BindMaterial(0);
    glDisable(GL_LIGHTING);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_DEPTH_TEST);
    SetSmooth(GL_POINT_SMOOTH, true);
    SetSmooth(GL_LINE_SMOOTH, true);
    glLineWidth(1.5F * PixelScale);
    BlendByAlpha();
    glPushMatrix();
    glScalef(SkinScale, SkinScale, SkinScale);
    glTranslatef(SkinOffset.X, SkinOffset.Y, SkinOffset.Z);
    DrawBonesInOrder();
    glPopMatrix();
    glPointSize(1);
    glLineWidth(PixelScale);
    glDisable(GL_BLEND);
    SetSmooth(GL_POINT_SMOOTH, false);
    SetSmooth(GL_LINE_SMOOTH, false);
    glEnable(GL_DEPTH_TEST);
}
