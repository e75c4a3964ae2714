#include <algorithm>
#include <array>
#include <vector>

#include <GL/gl.h>

#include "render/modFaceArrays.h"
#include "render/modGLState.h"
#include "render/modMvmDraw.h"
#include "render/modTexture.h"
#include "render/modVertexColors.h"
#include "render/modViewFlags.h"

namespace {

std::vector<Color4> vertexColors;

constexpr Color4 ByteColor(int red, int green, int blue, int alpha)
{
    return {static_cast<float>(red) / 255.0F, static_cast<float>(green) / 255.0F, static_cast<float>(blue) / 255.0F,
            static_cast<float>(alpha) / 255.0F};
}

AssignmentColors TintColors()
{
    if (DisplayMode == 2) {
        return {ByteColor(0, 255, 0, 127), ByteColor(255, 0, 0, 127), ByteColor(255, 0, 0, 0)};
    }
    return {ByteColor(0, 0, 127, 127), ByteColor(0, 224, 255, 127), ByteColor(0, 0, 255, 127)};
}

} // namespace

AssignmentColors PointColors()
{
    const int alpha = OverlayAlpha();
    return {ByteColor(0, 255, 0, alpha), ByteColor(255, 0, 0, 255), ByteColor(255, 255, 255, alpha)};
}

int OverlayAlpha()
{
    return DisplayMode == 1 ? 255 : 127;
}

const std::vector<Color4>& ColorsOfVertices(const MvmMesh& mesh, const AssignmentColors& colors)
{
    const auto known = std::min(mesh.VertexBones.Items.size(), mesh.Vertices.Items.size());
    vertexColors.assign(mesh.Vertices.Items.size(), colors.Unassigned);
    for (size_t i = 0; i < known; ++i) {
        const int16_t bone = mesh.VertexBones.Items[i];
        if (bone >= 1) {
            vertexColors[i] = bone == ActiveBone ? colors.Active : colors.Other;
        }
    }
    return vertexColors;
}

void DrawMesh(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    BindMaterial(0);
    glDisable(GL_LIGHTING);
    DrawRuns(CollectRuns(Meshes[mesh], FaceChoice::All));
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
        const std::vector<Color4>& tints = ColorsOfVertices(drawn, TintColors());
        glColorPointer(4, GL_FLOAT, 0, tints.data());
        DrawPlainTriangles(drawn, FaceChoice::All, &tints);
        glDisableClientState(GL_COLOR_ARRAY);
    }
    glDisable(GL_ALPHA_TEST);
}

void DrawSurfaceDepth(const MvmMesh& mesh)
{
    // Only the nearest depth counts here, so the faces without an alpha test can go first and together.
    BindTexture(0);
    DrawPlainTriangles(mesh, FaceChoice::WithoutOpacity);
    DrawRuns(CollectRuns(mesh, FaceChoice::WithOpacity));
}

void DrawDepthOnly(int16_t mesh)
{
    if (!IsValidMesh(mesh) || ViewWire) {
        return;
    }
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    if (DisplayMode == 1) {
        DrawPlainTriangles(Meshes[mesh]);
    } else {
        DrawSurfaceDepth(Meshes[mesh]);
        BindMaterial(0);
        glDisable(GL_LIGHTING);
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}
