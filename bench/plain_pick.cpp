#include "plain_pick.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <GL/gl.h>
#include <GL/glu.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modMaterialState.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/render_plain.h"

namespace {

float DepthAt(long x, long y)
{
    float value = 0;
    glReadPixels(static_cast<GLint>(x), static_cast<GLint>(y), 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &value);
    const ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    return value * (camera.FarPlane - camera.NearPlane);
}

} // namespace

std::vector<int32_t> plain::PickedVertices(int16_t index, int32_t x, int32_t y, int32_t width, int32_t height)
{
    const MvmMesh& mesh = Meshes[index];
    const bool click = width <= 2 || height <= 2;
    const double half = PointSize / 2.0;
    const long left = click ? std::lrint(x - half) : x;
    const long bottom = click ? std::lrint(y - half) : y;
    const long right = click ? std::lrint(x + half) : x + width;
    const long top = click ? std::lrint(y + half) : y + height;
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    ApplyCamera();
    BindMaterial(0);
    glPointSize(2);
    glBegin(GL_POINTS);
    for (const Vec3& vertex : mesh.Vertices) {
        glVertex3fv(&vertex.X);
    }
    glEnd();
    glPointSize(1);
    struct Candidate {
        int32_t Vertex;
        long X, Y;
        float Depth;
    };
    std::vector<Candidate> candidates;
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    const std::array<GLint, 4> viewport{0, 0, ViewWidth, ViewHeight};
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        const Vec3& at = mesh.Vertices[i];
        std::array<GLdouble, 3> to{};
        if (gluProject(at.X, at.Y, at.Z, modelview.data(), projection.data(), viewport.data(), &to[0], &to[1],
                       &to[2]) == GL_FALSE) {
            continue;
        }
        const long px = std::lrint(static_cast<float>(to[0]));
        const long py = std::lrint(static_cast<float>(to[1]));
        if (px >= std::max(left, 0L) && px <= std::min(right, ViewWidth - 1L) && py >= std::max(bottom, 0L) &&
            py <= std::min(top, ViewHeight - 1L)) {
            candidates.push_back({i, px, py, DepthAt(px, py)});
        }
    }
    const bool cull = !ViewWire && ViewCullVerts;
    if (cull) {
        Surface(mesh, true);
    }
    std::vector<int32_t> picked;
    for (const auto& [vertex, px, py, depth] : candidates) {
        if (depth > 0 && (!cull || std::fabs(static_cast<double>(depth) - DepthAt(px, py)) < 0.01)) {
            picked.push_back(vertex);
        }
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    return picked;
}
