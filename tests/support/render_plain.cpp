#include "support/render_plain.h"

#include <algorithm>
#include <array>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modGLState.h"
#include "modMaterialState.h"
#include "modMvmDraw.h"
#include "modOpenGL.h"
#include "modViewFlags.h"

namespace {

using Rgba = std::array<GLubyte, 4>;

void Switch(GLenum what, bool on)
{
    (on ? glEnable : glDisable)(what);
}

/// Blending by alpha, with smooth points and lines if they are wanted.
void Blend(bool on)
{
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    Switch(GL_BLEND, on);
    Switch(GL_POINT_SMOOTH, on && LineAA);
    Switch(GL_LINE_SMOOTH, on && LineAA);
}

void RestMaterial()
{
    BindMaterial(0);
    glDisable(GL_LIGHTING);
}

template <typename T>
T At(const Array1<T>& array, int32_t number)
{
    return array.Has(number) ? array[number] : T{};
}

/// Sends the faces that have all their vertices one by one, each with its material if that is wanted.
template <typename Corner>
void EachFace(const MvmMesh& mesh, GLenum kind, bool materials, Corner corner)
{
    for (const MvmFace& face : mesh.Faces) {
        if (!std::ranges::all_of(face.Vertex, [&mesh](int16_t vertex) { return mesh.Vertices.Has(vertex); })) {
            continue;
        }
        if (materials) {
            BindMaterial(At(mesh.MeshMaterials, face.Material).Index);
        }
        glBegin(kind);
        for (size_t k = 0; k < 3; ++k) {
            corner(face, k, mesh.Vertices[face.Vertex[k]]);
        }
        glEnd();
    }
}

} // namespace

void plain::Surface(const MvmMesh& mesh, bool materials)
{
    EachFace(mesh, GL_TRIANGLES, materials, [&mesh](const MvmFace& face, size_t k, const Vec3& vertex) {
        const Vec2 place = At(mesh.TexCoords, face.TexCoord[k]);
        const Vec3 normal = At(mesh.Normals, face.Normal[k]);
        glTexCoord2fv(&place.U);
        glNormal3fv(&normal.X);
        glVertex3fv(&vertex.X);
    });
}

namespace {

/// Sends the colour of a vertex: of those without a bone, of the active bone, of others.
void SendColor(const MvmMesh& mesh, int32_t vertex, const std::array<Rgba, 3>& colors)
{
    const int16_t bone = mesh.VertexBones[vertex];
    glColor4ubv(colors[bone < 1 ? 0 : bone == ActiveBone ? 1 : 2].data());
}

void Assignments(const MvmMesh& mesh)
{
    const std::array<Rgba, 3> tint{{{0, 255, 0, 127}, {255, 0, 0, 127}, {255, 0, 0, 0}}};
    const std::array<Rgba, 3> shade{{{0, 0, 127, 127}, {0, 224, 255, 127}, {0, 0, 255, 127}}};
    RestMaterial();
    glAlphaFunc(GL_GREATER, 0.01F);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_ALPHA_TEST);
    if (mesh.IsSkin) {
        EachFace(mesh, GL_TRIANGLES, false, [&](const MvmFace& face, size_t k, const Vec3& vertex) {
            SendColor(mesh, face.Vertex[k], DisplayMode == 2 ? tint : shade);
            glVertex3fv(&vertex.X);
        });
    }
    glDisable(GL_ALPHA_TEST);
}

void Points(const MvmMesh& mesh)
{
    const GLubyte alpha = DisplayMode == 1 ? 255 : 127;
    if (ViewCullVerts) {
        glClear(GL_DEPTH_BUFFER_BIT);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        if (!ViewWire) {
            plain::Surface(mesh, DisplayMode != 1);
        }
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    }
    RestMaterial();
    Switch(GL_DEPTH_TEST, ViewCullVerts);
    glDepthMask(GL_FALSE);
    glPointSize(static_cast<float>(PointSize));
    Blend(true);
    glBegin(GL_POINTS);
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        SendColor(mesh, i, {{{0, 255, 0, alpha}, {255, 0, 0, 255}, {255, 255, 255, alpha}}});
        glVertex3fv(&mesh.Vertices[i].X);
    }
    glEnd();
    Blend(false);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
}

void Isolines(const MvmMesh& mesh)
{
    RestMaterial();
    glDisable(GL_POLYGON_OFFSET_FILL);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    Blend(true);
    glDepthMask(GL_FALSE);
    glColor4f(1, 1, 1, 0.25F);
    plain::Surface(mesh, false);
    glDepthMask(GL_TRUE);
    Blend(false);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEnable(GL_POLYGON_OFFSET_FILL);
}

void NormalLines(const MvmMesh& mesh)
{
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_LIGHTING);
    Blend(LineAA);
    EachFace(mesh, GL_LINES, false, [&mesh](const MvmFace& face, size_t k, const Vec3& from) {
        const Vec3 n = At(mesh.Normals, face.Normal[k]);
        glColor3f(n.X * 0.5F + 0.5F, n.Z * 0.5F + 0.5F, n.Y * 0.5F + 0.5F);
        glVertex3fv(&from.X);
        glVertex3f(from.X + n.X * 0.05F, from.Y + n.Y * 0.05F, from.Z + n.Z * 0.05F);
    });
    Blend(false);
}

void Skeleton()
{
    RestMaterial();
    glDisable(GL_DEPTH_TEST);
    Blend(true);
    glLineWidth(1.5F);
    glPushMatrix();
    glScalef(SkinScale, SkinScale, SkinScale);
    glTranslatef(SkinOffset.X, SkinOffset.Y, SkinOffset.Z);
    for (int32_t i = 1; i <= BoneCount(); ++i) {
        const bool active = i == ActiveBone;
        if (Bones[i].IsShadow != (EditTarget == 1)) {
            continue;
        }
        glPointSize(static_cast<float>(PointSize) * (active ? 2.4F : 1.6F));
        glColor4ub(255, active ? 127 : 255, 0, active || DisplayMode == 1 ? 255 : 127);
        glBegin(GL_POINTS);
        glVertex3fv(&Bones[i].Position.X);
        glEnd();
        if (Bones.Has(Bones[i].LinkBone)) {
            glBegin(GL_LINES);
            glVertex3fv(&Bones[i].Position.X);
            glVertex3fv(&Bones[Bones[i].LinkBone].Position.X);
            glEnd();
        }
    }
    glPopMatrix();
    glLineWidth(1);
    Blend(false);
    glEnable(GL_DEPTH_TEST);
}

void Model()
{
    static const MvmMesh none;
    const int16_t target = ActiveTab == 1 ? TargetMesh() : SkinMesh;
    const MvmMesh& mesh = IsValidMesh(target) ? Meshes[target] : none;
    if (ViewLighting) {
        SetupLights();
    }
    glPolygonMode(GL_FRONT_AND_BACK, ViewWire ? GL_LINE : GL_FILL);
    Switch(GL_CULL_FACE, !ViewBackfaces);
    if (ActiveTab == 0 || DisplayMode != 1) {
        plain::Surface(mesh, true);
    } else {
        Assignments(mesh);
    }
    if (ActiveTab == 1 && DisplayMode == 2) {
        glDepthFunc(GL_EQUAL);
        glEnable(GL_BLEND);
        glEnable(GL_CULL_FACE);
        Assignments(mesh);
        Switch(GL_CULL_FACE, !ViewBackfaces);
        glDisable(GL_BLEND);
        glDepthFunc(GL_LESS);
    }
    if (ActiveTab == 1 && mesh.IsSkin) {
        Points(mesh);
    }
    if (ViewIsolines && !ViewWire) {
        Isolines(mesh);
    }
    if (ViewNormals) {
        NormalLines(mesh);
    }
    if (ActiveTab == 1) {
        Skeleton();
    }
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

void Grid()
{
    glPushMatrix();
    if (CurrentCamera >= 3 && CurrentCamera <= 6) {
        glRotatef(90, CurrentCamera <= 4 ? 1 : 0, 0, CurrentCamera <= 4 ? 0 : 1);
    }
    glScalef(SkinScale, SkinScale, SkinScale);
    Blend(true);
    glDepthMask(GL_FALSE);
    glLineWidth(1.2F);
    glBegin(GL_LINES);
    for (int i = -10; i <= 10; ++i) {
        glColor4ub(0, 0, 0, i == 0 ? 255 : 63);
        for (const std::array<int, 3>& end : {std::array{-10, 0, i}, {10, 0, i}, {i, 0, -10}, {i, 0, 10}}) {
            glVertex3iv(end.data());
        }
    }
    glEnd();
    glLineWidth(1);
    glDepthMask(GL_TRUE);
    Blend(false);
    glPopMatrix();
}

void Label()
{
    glDisable(GL_DEPTH_TEST);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR);
    glEnable(GL_BLEND);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const Vec2 corner{10.0F / static_cast<float>(ViewWidth) - 1, 1 - 42.0F / static_cast<float>(ViewHeight)};
    glRasterPos2fv(&corner.U);
    glDrawPixels(80, 16, GL_LUMINANCE, GL_UNSIGNED_BYTE, &CameraLabels[static_cast<size_t>(8 - CurrentCamera) * 1280]);
    glDisable(GL_BLEND);
}

} // namespace

void plain::PaintFrame()
{
    // What the context's start and the last frame leave in force.
    glViewport(0, 0, ViewWidth, ViewHeight);
    glClearColor(0.5F, 0.5F, 0.5F, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_NORMALIZE);
    glPolygonOffset(1, 1);
    glAlphaFunc(GL_GREATER, AlphaReference);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glEnable(GL_DEPTH_TEST);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ApplyCamera();
    if (ModelOpen) {
        Model();
    }
    RestMaterial();
    if (ViewGrid) {
        Grid();
    }
    // At the end, for some drivers keep the state of smooth points and lines for what they draw next.
    Label();
    glFinish();
}
