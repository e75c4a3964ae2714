#include <cmath>

#include <GL/gl.h>
#include <GL/glu.h>

#include "modCamera.h"
#include "modDrag.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/render_plain.h"

namespace {

bool Project(const Vec3& vertex, float* x, float* y)
{
    GLdouble modelview[16];
    GLdouble projection[16];
    GLint viewport[4];
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    glGetIntegerv(GL_VIEWPORT, viewport);
    GLdouble window[3] = {0, 0, 0};
    if (gluProject(vertex.X, vertex.Y, vertex.Z, modelview, projection, viewport, &window[0], &window[1], &window[2]) ==
        GL_FALSE) {
        return false;
    }
    *x = static_cast<float>(window[0]);
    *y = static_cast<float>(window[1]);
    return true;
}

float Depth(int x, int y)
{
    float value = 0;
    glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &value);
    const ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    return static_cast<float>(static_cast<double>(value) *
                              (static_cast<double>(camera.FarPlane) - static_cast<double>(camera.NearPlane)));
}

} // namespace

std::vector<int32_t> plain::PickedVertices(int16_t index, int32_t x, int32_t y, int32_t width, int32_t height)
{
    const MvmMesh& mesh = Meshes[index];
    long left = x;
    long bottom = y;
    long right = x + width;
    long top = y + height;
    if (width <= 2 || height <= 2) {
        const double half = PointSize / 2.0;
        left = std::lrint(x - half);
        bottom = std::lrint(y - half);
        right = std::lrint(x + half);
        top = std::lrint(y + half);
    }
    const bool cull = !ViewWire && ViewCullVerts;
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    ApplyCamera();
    Bind(0);
    glPointSize(2);
    glBegin(GL_POINTS);
    for (const Vec3& vertex : mesh.Vertices) {
        glVertex3fv(&vertex.X);
    }
    glEnd();
    glPointSize(1);
    glFinish();
    struct Entry {
        int32_t Vertex;
        int X, Y;
        float Z;
    };
    std::vector<Entry> table;
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        float wx = 0;
        float wy = 0;
        if (!Project(mesh.Vertices[i], &wx, &wy) || !(std::fabs(wx) < 32000) || !(std::fabs(wy) < 32000)) {
            continue;
        }
        const auto px = static_cast<int>(std::lrint(wx));
        const auto py = static_cast<int>(std::lrint(wy));
        if (px >= left && px <= right && py >= bottom && py <= top && px >= 0 && py >= 0 && px < ViewWidth &&
            py < ViewHeight) {
            table.push_back({i, px, py, Depth(px, py)});
        }
    }
    if (cull) {
        DepthFaces(mesh);
    }
    glFinish();
    std::vector<int32_t> picked;
    for (const Entry& entry : table) {
        const double now = Depth(entry.X, entry.Y);
        const bool visible = !cull || (entry.Z - 0.01 < now && now < entry.Z + 0.01);
        if (entry.Z > 0 && visible) {
            picked.push_back(entry.Vertex);
        }
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    return picked;
}
