#include "modMaterialState.h"

#include "app/modMvmDef.h"
#include "modGL.h"
#include "modGLTexture.h"
#include "modViewFlags.h"

namespace {

struct SurfaceColors {
    Color4 Diffuse; ///< lit
    Color4 Flat;    ///< unlit
};

SurfaceColors ColorsOf(Surface surface)
{
    switch (surface) {
    case Surface::NoTexture:
        return {{1, 0.75F, 0.25F, 1}, ByteColor(255, 191, 64, 255)};
    case Surface::Textured:
        return {{1, 1, 1, 1}, ByteColor(255, 255, 255, 255)};
    case Surface::TexturesOff:
        return {{0.5F, 0.5F, 0.5F, 1}, ByteColor(191, 191, 191, 255)};
    case Surface::NoMaterial:
        break;
    }
    return {{1, 0.5F, 1, 1}, ByteColor(255, 127, 255, 255)};
}

} // namespace

MaterialState StateOfMaterial(int32_t material)
{
    if (!Materials.Has(material)) {
        return {Surface::NoMaterial, 0};
    }
    const int16_t texture = Materials[material].Texture;
    if (texture < 1) {
        return {Surface::NoTexture, 0};
    }
    return ViewTextures ? MaterialState{Surface::Textured, texture} : MaterialState{Surface::TexturesOff, 0};
}

void ApplyMaterialState(const MaterialState& state)
{
    BindTexture(state.Texture);
    const SurfaceColors colors = ColorsOf(state.Kind);
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
    ApplyMaterialState(StateOfMaterial(material));
}
