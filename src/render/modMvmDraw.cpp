#include "render/modMvmDraw.h"

#include <GL/gl.h>

#include "render/modGLState.h"
#include "render/modMaterialLook.h"
#include "render/modTexture.h"
#include "render/modViewFlags.h"
#include "weights/modEdit.h"

namespace {

void DrawViewingPasses(bool isolines)
{
    DrawMesh(SkinMesh);
    if (isolines) {
        DrawIsolines(SkinMesh);
    }
    if (ViewNormals) {
        glDisable(GL_TEXTURE_2D);
        DrawNormals(SkinMesh);
    }
}

/// The surface with the assignments as a transparent tint on the pixels that it won, front faces only.
void DrawTintedSurface(int16_t mesh)
{
    DrawMesh(mesh);
    glDepthFunc(GL_EQUAL);
    glEnable(GL_BLEND);
    if (ViewBackfaces) {
        glEnable(GL_CULL_FACE);
    }
    DrawAssignments(mesh);
    if (ViewBackfaces) {
        glDisable(GL_CULL_FACE);
    }
    glDisable(GL_BLEND);
    glDepthFunc(GL_LESS);
}

void DrawEditingPasses(bool isolines)
{
    const int16_t target = TargetMesh();
    const float reference = AlphaReference;
    switch (DisplayMode) {
    case 0:
        DrawMesh(target);
        break;
    case 1:
        DrawAssignments(target);
        break;
    default:
        DrawTintedSurface(target);
        break;
    }
    glFlush(); // the pixels of a pass can be filled while the next one is put together
    // Nothing before the surface writes depth, so its depth stands as if drawn alone, but for an alpha test that has
    // changed since.
    DrawVertices(target, AlphaReference == reference);
    glFlush();
    if (isolines) {
        DrawIsolines(target);
    }
    if (ViewNormals) {
        DrawNormals(target);
    }
    BindMaterial(0);
    glDisable(GL_LIGHTING);
    DrawBones();
}

struct LookColors {
    Color4 Diffuse;
    Color4 Flat;
};

Color4 Bytes(int red, int green, int blue)
{
    return {static_cast<float>(red) / 255.0F, static_cast<float>(green) / 255.0F, static_cast<float>(blue) / 255.0F, 1};
}

LookColors ColorsOf(Surface surface)
{
    switch (surface) {
    case Surface::NoTexture:
        return {{1, 0.75F, 0.25F, 1}, Bytes(255, 191, 64)};
    case Surface::Textured:
        return {{1, 1, 1, 1}, Bytes(255, 255, 255)};
    case Surface::TexturesOff:
        return {{0.5F, 0.5F, 0.5F, 1}, Bytes(191, 191, 191)};
    case Surface::NoMaterial:
        break;
    }
    return {{1, 0.5F, 1, 1}, Bytes(255, 127, 255)};
}

} // namespace

void DrawModel()
{
    if (ViewLighting) {
        SetupLights();
    }
    glEnable(GL_DEPTH_TEST);
    glPolygonMode(GL_FRONT_AND_BACK, ViewWire ? GL_LINE : GL_FILL);
    const bool isolines = ViewIsolines && !ViewWire;
    if (ViewBackfaces) {
        glDisable(GL_CULL_FACE);
    } else {
        glEnable(GL_CULL_FACE);
    }
    if (ActiveTab == 0) {
        DrawViewingPasses(isolines);
    } else {
        DrawEditingPasses(isolines);
    }
    if (ViewWire) {
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    }
}

Look LookOf(int32_t material)
{
    if (!Materials.Has(material)) {
        return {Surface::NoMaterial, 0};
    }
    const int16_t texture = Materials[material].Texture;
    if (texture < 1) {
        return {Surface::NoTexture, 0};
    }
    return ViewTextures ? Look{Surface::Textured, texture} : Look{Surface::TexturesOff, 0};
}

void ApplyLook(const Look& look, const Look* previous)
{
    BindTexture(look.Texture);
    if (previous != nullptr && previous->Kind == look.Kind) {
        return;
    }
    const LookColors colors = ColorsOf(look.Kind);
    if (ViewLighting) {
        const Color4 ambient{colors.Diffuse[0] * 0.25F, colors.Diffuse[1] * 0.25F, colors.Diffuse[2] * 0.25F, 1};
        glEnable(GL_LIGHTING);
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, colors.Diffuse.data());
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient.data());
    } else {
        glDisable(GL_LIGHTING);
        glColor4fv(colors.Flat.data());
    }
}

void BindMaterial(int32_t material)
{
    ApplyLook(LookOf(material), nullptr);
}

void SetupLights()
{
    constexpr Color4 half{0.5F, 0.5F, 0.5F, 1};
    constexpr Color4 full{1, 1, 1, 1};
    constexpr Color4 quarter{0.25F, 0.25F, 0.25F, 1};
    constexpr std::array<float, 4> above{100, 100, 100, 1};
    constexpr std::array<float, 4> below{-100, -100, -100, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, half.data());
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 0);
    glLightfv(GL_LIGHT0, GL_AMBIENT, half.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, full.data());
    glLightfv(GL_LIGHT0, GL_POSITION, above.data());
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT1, GL_AMBIENT, half.data());
    glLightfv(GL_LIGHT1, GL_DIFFUSE, quarter.data());
    glLightfv(GL_LIGHT1, GL_POSITION, below.data());
    glEnable(GL_LIGHT1);
}
