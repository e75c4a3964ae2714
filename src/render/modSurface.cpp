#include "modSurface.h"

#include "modAssignmentColors.h"
#include "modFaceArrays.h"
#include "modGL.h"
#include "modGLState.h"
#include "modMaterialState.h"
#include "modViewFlags.h"

namespace {

AssignmentColors TintColors()
{
    if (DisplayMode == 2) {
        return {ByteColor(0, 255, 0, 127), ByteColor(255, 0, 0, 127), ByteColor(255, 0, 0, 0)};
    }
    return {ByteColor(0, 0, 127, 127), ByteColor(0, 224, 255, 127), ByteColor(0, 0, 255, 127)};
}

} // namespace

void DrawMesh(int16_t mesh)
{
    if (IsValidMesh(mesh)) {
        BindMaterial(0);
        glDisable(GL_LIGHTING);
        DrawFaces(Meshes[mesh]);
    }
}

void DrawAssignments(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    BindMaterial(0);
    glDisable(GL_LIGHTING);
    LowerAlphaReference();
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_ALPHA_TEST);
    const MvmMesh& drawn = Meshes[mesh];
    if (drawn.IsSkin) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_FLOAT, 0, ColorsOfVertices(drawn, TintColors()).data());
        DrawPlainFaces(drawn);
        glDisableClientState(GL_COLOR_ARRAY);
    }
    glDisable(GL_ALPHA_TEST);
}

void DrawDepthOnly(int16_t mesh)
{
    if (!IsValidMesh(mesh) || ViewWire) {
        return;
    }
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    if (DisplayMode == 1) {
        DrawPlainFaces(Meshes[mesh]);
    } else {
        DrawFaces(Meshes[mesh]);
        BindMaterial(0);
        glDisable(GL_LIGHTING);
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}
