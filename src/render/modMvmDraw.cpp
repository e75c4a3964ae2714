#include "modMvmDraw.h"

#include <array>

#include "app/modMvmDef.h"
#include "modGL.h"
#include "modGLState.h"
#include "modMaterialState.h"
#include "modOverlays.h"
#include "modSurface.h"
#include "modViewFlags.h"

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
    // Nothing before the surface writes depth, so its depth stands as if drawn alone, but for an alpha test that has
    // changed since.
    DrawVertices(target, AlphaReference == reference);
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
