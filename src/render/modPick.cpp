#include "modPick.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modUndo.h"
#include "modCamera.h"
#include "modFaceArrays.h"
#include "modGL.h"
#include "modGLState.h"
#include "modMaterialState.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "weights/modEdit.h"

namespace {

constexpr int32_t largestClick = 2; ///< drags of at most this many pixels in a direction are clicks
constexpr double depthTolerance = 0.01;

/// A box of device pixels, edges included.
struct PixelRect {
    int32_t Left = 0, Bottom = 0, Right = 0, Top = 0;
};

/// A vertex inside the box and the view: its number, its pixel, and the scaled depth of that pixel as the points left
/// it.
struct Candidate {
    int32_t Vertex = 0;
    int32_t X = 0, Y = 0;
    float Depth = 0;
};

/// Scaled depths of a box of pixels.
struct DepthBlock {
    PixelRect Rect;
    std::vector<float> Values;
};

int32_t RoundTo32(double value)
{
    return static_cast<int32_t>(std::nearbyint(std::clamp(value, -2147483648.0, 2147483647.0)));
}

int32_t RoundTo16(double value)
{
    return std::isnan(value) ? 0 : static_cast<int32_t>(std::nearbyint(std::clamp(value, -32768.0, 32767.0)));
}

PixelRect PickRect(int32_t x, int32_t y, int32_t width, int32_t height)
{
    const double scale = PixelScale;
    double left = x;
    double bottom = y;
    double right = left + width;
    double top = bottom + height;
    if (width <= largestClick || height <= largestClick) {
        const double half = PointSize / 2.0;
        left = x - half;
        bottom = y - half;
        right = x + half;
        top = y + half;
    }
    return {RoundTo32(left * scale), RoundTo32(bottom * scale), RoundTo32(right * scale), RoundTo32(top * scale)};
}

/// The part of the box that lies in the view; empty when Right < Left or Top < Bottom.
PixelRect ClipToView(const PixelRect& rect)
{
    return {std::max(rect.Left, 0), std::max(rect.Bottom, 0), std::min(rect.Right, ViewWidth - 1),
            std::min(rect.Top, ViewHeight - 1)};
}

bool IsEmpty(const PixelRect& rect)
{
    return rect.Right < rect.Left || rect.Top < rect.Bottom;
}

/// What ProjectVertex needs, fetched once for a pick.
struct Projection {
    std::array<GLdouble, 16> Modelview{};
    std::array<GLdouble, 16> Perspective{};
    std::array<GLint, 4> Viewport{};
};

Projection FetchProjection()
{
    Projection projection;
    glGetDoublev(GL_MODELVIEW_MATRIX, projection.Modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.Perspective.data());
    glGetIntegerv(GL_VIEWPORT, projection.Viewport.data());
    return projection;
}

/// Window position of a vertex. False when it has none, as in the plane of the eye.
bool ProjectVertex(const Vec3& vertex, const Projection& projection, Vec3* window)
{
    GLdouble x = 0;
    GLdouble y = 0;
    GLdouble depth = 0;
    if (gluProject(vertex.X, vertex.Y, vertex.Z, projection.Modelview.data(), projection.Perspective.data(),
                   projection.Viewport.data(), &x, &y, &depth) == GL_FALSE) {
        return false;
    }
    // Held to what any view can reach, so that the 32-bit store cannot overflow; not a number stays what it is.
    constexpr double farOutside = 1e9;
    *window = {static_cast<float>(std::clamp(x, -farOutside, farOutside)),
               static_cast<float>(std::clamp(y, -farOutside, farOutside)), 0};
    return true;
}

DepthBlock ReadDepths(const PixelRect& rect)
{
    const auto width = static_cast<size_t>(rect.Right - rect.Left) + 1;
    const auto height = static_cast<size_t>(rect.Top - rect.Bottom) + 1;
    DepthBlock block{rect, std::vector<float>(width * height)};
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(rect.Left, rect.Bottom, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_DEPTH_COMPONENT,
                 GL_FLOAT, block.Values.data());
    return block;
}

/// The depth of a pixel of the block in scene-sized units: times the range of the current camera.
float ReadDepth(const DepthBlock& block, int32_t x, int32_t y)
{
    const auto width = static_cast<size_t>(block.Rect.Right - block.Rect.Left) + 1;
    const size_t place = static_cast<size_t>(y - block.Rect.Bottom) * width + static_cast<size_t>(x - block.Rect.Left);
    const ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    const double range = static_cast<double>(camera.FarPlane) - static_cast<double>(camera.NearPlane);
    return static_cast<float>(static_cast<double>(block.Values[place]) * range);
}

void DrawPointsDepth(const MvmMesh& mesh)
{
    BindMaterial(0);
    glPointSize(2);
    if (mesh.VertexCount() > 0) {
        glEnableClientState(GL_VERTEX_ARRAY);
        glVertexPointer(3, GL_FLOAT, sizeof(Vec3), mesh.Vertices.Items.data());
        glDrawArrays(GL_POINTS, 0, mesh.VertexCount());
        glDisableClientState(GL_VERTEX_ARRAY);
    }
    glPointSize(1);
    glFinish();
}

/// The vertices inside the box, with the depth that the drawn points left at their pixels.
std::vector<Candidate> CollectCandidates(const MvmMesh& mesh, const PixelRect& rect)
{
    const Projection projection = FetchProjection();
    const DepthBlock depths = ReadDepths(rect);
    std::vector<Candidate> candidates;
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        Vec3 window;
        if (!ProjectVertex(mesh.Vertices[i], projection, &window) || std::isnan(window.X) || std::isnan(window.Y)) {
            continue;
        }
        const auto x = static_cast<int32_t>(std::nearbyint(window.X));
        const auto y = static_cast<int32_t>(std::nearbyint(window.Y));
        if (!InPickRect(x, y, rect.Left, rect.Bottom, rect.Right, rect.Top)) {
            continue;
        }
        const float depth = ReadDepth(depths, x, y);
        if (depth > 0) {
            candidates.push_back({.Vertex = i, .X = x, .Y = y, .Depth = depth});
        }
    }
    return candidates;
}

/// Drops the candidates whose pixel a nearer face has taken.
void KeepVisible(const MvmMesh& mesh, const PixelRect& rect, std::vector<Candidate>* candidates)
{
    if (ViewBackfaces) {
        glDisable(GL_CULL_FACE);
    }
    DrawFaces(mesh);
    glFinish();
    const DepthBlock depths = ReadDepths(rect);
    std::erase_if(*candidates, [&depths](const Candidate& candidate) {
        const double before = candidate.Depth;
        const double now = ReadDepth(depths, candidate.X, candidate.Y);
        return !(before - depthTolerance < now && now < before + depthTolerance);
    });
}

/// The vertices that a pick of the rectangle takes.
std::vector<Candidate> TakenInRect(const MvmMesh& picked, const PixelRect& rect)
{
    SetBaseState();
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glClear(GL_DEPTH_BUFFER_BIT);
    ApplyCamera();
    DrawPointsDepth(picked);
    std::vector<Candidate> candidates = CollectCandidates(picked, rect);
    if (ViewCullVerts && !ViewWire && !candidates.empty()) {
        KeepVisible(picked, rect, &candidates);
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    return candidates;
}

/// What a pick of a box in the view takes; nothing where there is no view.
std::vector<Candidate> TakenInView(int16_t mesh, const PixelRect& box)
{
    const PixelRect rect = ClipToView(box);
    if (!IsValidMesh(mesh) || !GLContext || IsEmpty(rect) || CurrentCamera < 1 || CurrentCamera > CameraCount) {
        return {};
    }
    MakeViewCurrent();
    return TakenInRect(Meshes[mesh], rect);
}

bool IsFree(int16_t mesh, const Candidate& candidate)
{
    const Array1<int16_t>& bones = Meshes[mesh].VertexBones;
    return !bones.Has(candidate.Vertex) || bones[candidate.Vertex] == 0;
}

} // namespace

PickBox BoxOfDrag(float startX, float startY, float endX, float endY, int32_t viewHeight)
{
    const int32_t x0 = RoundTo16(startX);
    const int32_t y0 = RoundTo16(static_cast<double>(viewHeight) - static_cast<double>(startY));
    const int32_t x1 = RoundTo16(endX);
    const int32_t y1 = RoundTo16(static_cast<double>(viewHeight) - static_cast<double>(endY));
    PickBox box{.X = std::min(x0, x1), .Y = std::min(y0, y1), .Width = std::abs(x0 - x1), .Height = std::abs(y0 - y1)};
    if (box.Width <= largestClick || box.Height <= largestClick) {
        box.Width = 1;
        box.Height = 1;
    }
    return box;
}

bool InPickRect(int32_t px, int32_t py, int32_t left, int32_t bottom, int32_t right, int32_t top)
{
    return left <= px && px <= right && bottom <= py && py <= top;
}

void AssignVertex(int16_t mesh, int32_t vertex)
{
    if (IsValidMesh(mesh) && Meshes[mesh].VertexBones.Has(vertex)) {
        Touch(ScenePart::Assignments, mesh);
        Meshes[mesh].VertexBones[vertex] = ActiveBone;
    }
}

void PickVertices(int16_t mesh, int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (!IsValidMesh(mesh) || !GLContext) {
        return;
    }
    std::vector<Candidate> taken = TakenInView(mesh, PickRect(x, y, width, height));
    if (PickOnlyFree) {
        const size_t passedOver =
            std::erase_if(taken, [mesh](const Candidate& candidate) { return !IsFree(mesh, candidate); });
        SetPanelText("toolhelp", "Only vertices without a bone: " + std::to_string(taken.size()) + " taken, " +
                                     std::to_string(passedOver) + " passed over.");
    }
    for (const Candidate& candidate : taken) {
        AssignVertex(mesh, candidate.Vertex);
    }
    UpdateBoneStatus();
}

int32_t VertexAt(int16_t mesh, int32_t x, int32_t y)
{
    const std::vector<Candidate> taken = TakenInView(mesh, PickRect(x, y, 1, 1));
    const auto distance = [x, y](const Candidate& candidate) {
        const double scale = PixelScale;
        return std::hypot(candidate.X - x * scale, candidate.Y - y * scale);
    };
    const auto nearest = std::min_element(
        taken.begin(), taken.end(), [&](const Candidate& a, const Candidate& b) { return distance(a) < distance(b); });
    return nearest == taken.end() ? 0 : nearest->Vertex;
}
