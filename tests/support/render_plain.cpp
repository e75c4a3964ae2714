#include "support/render_plain.h"

#include <cmath>

#include <GL/gl.h>
#include <GL/glu.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modGLTexture.h"
#include "modOpenGL.h"
#include "modViewFlags.h"

namespace {

void Switch(GLenum what, bool on)
{
    if (on) {
        glEnable(what);
    } else {
        glDisable(what);
    }
}

} // namespace

void plain::Bind(int32_t material)
{
    float diffuse[4] = {1, 0.5F, 1, 1};
    GLubyte flat[3] = {255, 127, 255};
    int16_t texture = 0;
    const auto take = [&](float r, float g, float b, GLubyte r8, GLubyte g8, GLubyte b8) {
        diffuse[0] = r;
        diffuse[1] = g;
        diffuse[2] = b;
        flat[0] = r8;
        flat[1] = g8;
        flat[2] = b8;
    };
    if (material >= 1 && material <= MaterialCount()) {
        if (Materials[material].Texture < 1) {
            take(1, 0.75F, 0.25F, 255, 191, 64);
        } else if (ViewTextures) {
            texture = Materials[material].Texture;
            take(1, 1, 1, 255, 255, 255);
        } else {
            take(0.5F, 0.5F, 0.5F, 191, 191, 191);
        }
    }
    BindTexture(texture);
    if (ViewLighting) {
        glEnable(GL_LIGHTING);
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse);
        const float ambient[4] = {diffuse[0] * 0.25F, diffuse[1] * 0.25F, diffuse[2] * 0.25F, 1};
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient);
    } else {
        glDisable(GL_LIGHTING);
        glColor3ub(flat[0], flat[1], flat[2]);
    }
}

namespace {

using plain::Bind;

void BindFace(const MvmMesh& mesh, const MvmFace& face)
{
    const bool known = face.Material >= 1 && face.Material <= mesh.MeshMaterialCount();
    Bind(known ? mesh.MeshMaterials[face.Material].Index : 0);
}

bool Drawable(const MvmMesh& mesh, const MvmFace& face)
{
    for (const int16_t vertex : face.Vertex) {
        if (vertex < 1 || vertex > mesh.VertexCount()) {
            return false;
        }
    }
    return true;
}

void SendTexCoord(const MvmMesh& mesh, int16_t number)
{
    const Vec2 at = number >= 1 && number <= mesh.TexCoordCount() ? mesh.TexCoords[number] : Vec2{};
    glTexCoord2fv(&at.U);
}

Vec3 NormalAt(const MvmMesh& mesh, int16_t number)
{
    return number >= 1 && number <= mesh.NormalCount() ? mesh.Normals[number] : Vec3{};
}

void Mesh(int16_t index)
{
    if (!IsValidMesh(index)) {
        return;
    }
    Bind(0);
    glDisable(GL_LIGHTING);
    const MvmMesh& mesh = Meshes[index];
    for (const MvmFace& face : mesh.Faces) {
        if (!Drawable(mesh, face)) {
            continue;
        }
        BindFace(mesh, face);
        glBegin(GL_TRIANGLES);
        for (size_t k = 0; k < 3; ++k) {
            SendTexCoord(mesh, face.TexCoord[k]);
            const Vec3 normal = NormalAt(mesh, face.Normal[k]);
            glNormal3fv(&normal.X);
            glVertex3fv(&mesh.Vertices[face.Vertex[k]].X);
        }
        glEnd();
    }
}

void Assignments(int16_t index)
{
    if (!IsValidMesh(index)) {
        return;
    }
    Bind(0);
    glDisable(GL_LIGHTING);
    glAlphaFunc(GL_GREATER, 0.01F);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_ALPHA_TEST);
    const MvmMesh& mesh = Meshes[index];
    const bool both = DisplayMode == 2;
    for (const MvmFace& face : mesh.Faces) {
        if (!mesh.IsSkin || !Drawable(mesh, face)) {
            continue;
        }
        glBegin(GL_TRIANGLES);
        for (const int16_t vertex : face.Vertex) {
            const int16_t bone = mesh.VertexBones[vertex];
            if (bone < 1) {
                both ? glColor4ub(0, 255, 0, 127) : glColor4ub(0, 0, 127, 127);
            } else if (bone == ActiveBone) {
                both ? glColor4ub(255, 0, 0, 127) : glColor4ub(0, 224, 255, 127);
            } else {
                both ? glColor4ub(255, 0, 0, 0) : glColor4ub(0, 0, 255, 127);
            }
            glVertex3fv(&mesh.Vertices[vertex].X);
        }
        glEnd();
    }
    glDisable(GL_ALPHA_TEST);
}

} // namespace

void plain::DepthFaces(const MvmMesh& mesh)
{
    for (const MvmFace& face : mesh.Faces) {
        if (!Drawable(mesh, face)) {
            continue;
        }
        BindFace(mesh, face);
        glBegin(GL_TRIANGLES);
        for (size_t k = 0; k < 3; ++k) {
            SendTexCoord(mesh, face.TexCoord[k]);
            glVertex3fv(&mesh.Vertices[face.Vertex[k]].X);
        }
        glEnd();
    }
}

namespace {

using plain::DepthFaces;

void DepthOnly(const MvmMesh& mesh)
{
    if (ViewWire) {
        return;
    }
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    if (DisplayMode == 1) {
        for (const MvmFace& face : mesh.Faces) {
            if (Drawable(mesh, face)) {
                glBegin(GL_TRIANGLES);
                for (const int16_t vertex : face.Vertex) {
                    glVertex3fv(&mesh.Vertices[vertex].X);
                }
                glEnd();
            }
        }
    } else {
        DepthFaces(mesh);
        Bind(0);
        glDisable(GL_LIGHTING);
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

GLubyte Alpha()
{
    return DisplayMode == 1 ? 255 : 127;
}

void Points(int16_t index)
{
    if (!IsValidMesh(index) || !Meshes[index].IsSkin) {
        return;
    }
    const MvmMesh& mesh = Meshes[index];
    Bind(0);
    glDisable(GL_LIGHTING);
    if (ViewCullVerts) {
        glClear(GL_DEPTH_BUFFER_BIT);
        DepthOnly(mesh);
        glEnable(GL_DEPTH_TEST);
        glDepthMask(GL_FALSE);
    } else {
        glDisable(GL_DEPTH_TEST);
    }
    glPointSize(static_cast<float>(PointSize));
    Switch(GL_POINT_SMOOTH, LineAA);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
    glBegin(GL_POINTS);
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        const int16_t bone = mesh.VertexBones[i];
        if (bone < 1) {
            glColor4ub(0, 255, 0, Alpha());
        } else if (bone == ActiveBone) {
            glColor4ub(255, 0, 0, 255);
        } else {
            glColor4ub(255, 255, 255, Alpha());
        }
        glVertex3fv(&mesh.Vertices[i].X);
    }
    glEnd();
    glDisable(GL_BLEND);
    glDisable(GL_POINT_SMOOTH);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
}

void Isolines(int16_t index)
{
    if (!IsValidMesh(index)) {
        return;
    }
    const MvmMesh& mesh = Meshes[index];
    glDisable(GL_POLYGON_OFFSET_FILL);
    Bind(0);
    glLineWidth(1);
    glDisable(GL_LIGHTING);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
    Switch(GL_LINE_SMOOTH, LineAA);
    glDepthMask(GL_FALSE);
    glColor4f(1, 1, 1, 0.25F);
    glBegin(GL_TRIANGLES);
    for (const MvmFace& face : mesh.Faces) {
        if (Drawable(mesh, face)) {
            for (const int16_t vertex : face.Vertex) {
                glVertex3fv(&mesh.Vertices[vertex].X);
            }
        }
    }
    glEnd();
    glDepthMask(GL_TRUE);
    glDisable(GL_LINE_SMOOTH);
    glDisable(GL_BLEND);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEnable(GL_POLYGON_OFFSET_FILL);
}

void NormalLines(int16_t index)
{
    if (!IsValidMesh(index)) {
        return;
    }
    const MvmMesh& mesh = Meshes[index];
    glDisable(GL_LIGHTING);
    if (LineAA) {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glEnable(GL_LINE_SMOOTH);
        glEnable(GL_BLEND);
    }
    glBegin(GL_LINES);
    for (const MvmFace& face : mesh.Faces) {
        for (size_t k = 0; Drawable(mesh, face) && k < 3; ++k) {
            const Vec3 p = mesh.Vertices[face.Vertex[k]];
            const Vec3 n = NormalAt(mesh, face.Normal[k]);
            glColor3f(n.X * 0.5F + 0.5F, n.Z * 0.5F + 0.5F, n.Y * 0.5F + 0.5F);
            glVertex3f(p.X, p.Y, p.Z);
            glVertex3f(p.X + n.X * 0.05F, p.Y + n.Y * 0.05F, p.Z + n.Z * 0.05F);
        }
    }
    glEnd();
    if (LineAA) {
        glDisable(GL_BLEND);
        glDisable(GL_LINE_SMOOTH);
    }
}

void Skeleton()
{
    Bind(0);
    glDisable(GL_LIGHTING);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    Switch(GL_POINT_SMOOTH, LineAA);
    Switch(GL_LINE_SMOOTH, LineAA);
    glLineWidth(1.5F);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glPushMatrix();
    glScalef(SkinScale, SkinScale, SkinScale);
    glTranslatef(SkinOffset.X, SkinOffset.Y, SkinOffset.Z);
    for (int32_t i = 1; i <= BoneCount(); ++i) {
        const MvmBone& bone = Bones[i];
        if (bone.IsShadow != (EditTarget == 1)) {
            continue;
        }
        if (i == ActiveBone) {
            glPointSize(static_cast<float>(PointSize) * 2.4F);
            glColor4ub(255, 127, 0, 255);
        } else {
            glPointSize(static_cast<float>(PointSize) * 1.6F);
            glColor4ub(255, 255, 0, Alpha());
        }
        glBegin(GL_POINTS);
        glVertex3fv(&bone.Position.X);
        glEnd();
        if (bone.LinkBone >= 1 && bone.LinkBone <= BoneCount()) {
            glBegin(GL_LINES);
            glVertex3fv(&bone.Position.X);
            glVertex3fv(&Bones[bone.LinkBone].Position.X);
            glEnd();
        }
    }
    glPopMatrix();
    glPointSize(1);
    glLineWidth(1);
    glDisable(GL_BLEND);
    glDisable(GL_POINT_SMOOTH);
    glDisable(GL_LINE_SMOOTH);
    glEnable(GL_DEPTH_TEST);
}

void Lights()
{
    const float half[4] = {0.5F, 0.5F, 0.5F, 1};
    const float quarter[4] = {0.25F, 0.25F, 0.25F, 1};
    const float full[4] = {1, 1, 1, 1};
    const float above[4] = {100, 100, 100, 1};
    const float below[4] = {-100, -100, -100, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, half);
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 0);
    glLightfv(GL_LIGHT0, GL_AMBIENT, half);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, full);
    glLightfv(GL_LIGHT0, GL_POSITION, above);
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT1, GL_AMBIENT, half);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, quarter);
    glLightfv(GL_LIGHT1, GL_POSITION, below);
    glEnable(GL_LIGHT1);
}

void Model()
{
    if (ViewLighting) {
        Lights();
    }
    glEnable(GL_DEPTH_TEST);
    glPolygonMode(GL_FRONT_AND_BACK, ViewWire ? GL_LINE : GL_FILL);
    const bool isolines = !ViewWire && ViewIsolines;
    Switch(GL_CULL_FACE, !ViewBackfaces);
    const int16_t target = ActiveTab == 1 && EditTarget == 1 ? ShadowMesh : SkinMesh;
    if (ActiveTab == 0 || DisplayMode != 1) {
        Mesh(target);
    }
    if (ActiveTab == 1 && DisplayMode == 1) {
        Assignments(target);
    }
    if (ActiveTab == 1 && DisplayMode == 2) {
        glDepthFunc(GL_EQUAL);
        glEnable(GL_BLEND);
        glEnable(GL_CULL_FACE);
        Assignments(target);
        Switch(GL_CULL_FACE, !ViewBackfaces);
        glDisable(GL_BLEND);
        glDepthFunc(GL_LESS);
    }
    if (ActiveTab == 1) {
        Points(target);
    }
    if (isolines) {
        Isolines(target);
    }
    if (ViewNormals) {
        if (ActiveTab == 0) {
            glDisable(GL_TEXTURE_2D);
        }
        NormalLines(target);
    }
    if (ActiveTab == 1) {
        Bind(0);
        glDisable(GL_LIGHTING);
        Skeleton();
    }
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

void Grid()
{
    glPushMatrix();
    if (CurrentCamera == 3 || CurrentCamera == 4) {
        glRotatef(90, 1, 0, 0);
    } else if (CurrentCamera == 5 || CurrentCamera == 6) {
        glRotatef(90, 0, 0, 1);
    }
    Switch(GL_LINE_SMOOTH, LineAA);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
    glDepthMask(GL_FALSE);
    if (ViewGrid) {
        glLineWidth(1.2F);
        glPushMatrix();
        glScalef(SkinScale, SkinScale, SkinScale);
        for (int i = -10; i <= 10; ++i) {
            const auto at = static_cast<float>(i);
            glColor4ub(0, 0, 0, i == 0 ? 255 : 63);
            glBegin(GL_LINES);
            glVertex3f(-10, 0, at);
            glVertex3f(10, 0, at);
            glEnd();
            glBegin(GL_LINES);
            glVertex3f(at, 0, -10);
            glVertex3f(at, 0, 10);
            glEnd();
        }
        glPopMatrix();
        glLineWidth(1);
    }
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
    glDisable(GL_LINE_SMOOTH);
    glPopMatrix();
}

void FlatLayer()
{
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, ViewWidth, ViewHeight, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    if (MouseButton == 1 && ToolMode == 0 && std::fabs(MouseLastX - MouseStartX) > 4 &&
        std::fabs(MouseLastY - MouseStartY) > 4) {
        const auto x0 = static_cast<int>(std::lrint(MouseStartX));
        const auto y0 = static_cast<int>(std::lrint(MouseStartY));
        const auto x1 = static_cast<int>(std::lrint(MouseLastX));
        const auto y1 = static_cast<int>(std::lrint(MouseLastY));
        glColor3ub(255, 255, 255);
        glEnable(GL_LINE_STIPPLE);
        glBegin(GL_LINE_LOOP);
        glVertex2i(x0, y0);
        glVertex2i(x1, y0);
        glVertex2i(x1, y1);
        glVertex2i(x0, y1);
        glEnd();
        glDisable(GL_LINE_STIPPLE);
    }
    if (CurrentCamera > 0) {
        glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR);
        glEnable(GL_BLEND);
        glColor3f(1, 1, 1);
        glRasterPos2i(5, 21);
        glDrawPixels(80, 16, GL_LUMINANCE, GL_UNSIGNED_BYTE,
                     &CameraLabels[static_cast<size_t>(8 - CurrentCamera) * 1280]);
        glDisable(GL_BLEND);
    }
}

/// What the window, the context's start and the last frame leave in force.
void StandingState()
{
    glViewport(0, 0, ViewWidth, ViewHeight);
    glClearColor(0.5F, 0.5F, 0.5F, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glEnable(GL_NORMALIZE);
    glPolygonOffset(1, 1);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glLineStipple(1, 0xAAAA);
}

} // namespace

namespace plain {

void PaintFrame()
{
    StandingState();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ApplyCamera();
    if (ModelOpen) {
        Model();
    }
    Bind(0);
    glDisable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    Grid();
    FlatLayer();
    glFinish();
}

} // namespace plain
