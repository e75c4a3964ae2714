// A frame of the editing tab with all overlays, and a pick over the whole view, on the largest mesh.

#include <array>
#include <cstdio>

#include <benchmark/benchmark.h>
#include <GL/gl.h>
#include <GL/glu.h>

#include "app/modMvmDef.h"
#include "bench.h"
#include "generate.h"
#include "modCamera.h"
#include "modGLState.h"
#include "modMaterialState.h"
#include "modMvmDraw.h"
#include "modOpenGL.h"
#include "modPick.h"
#include "modSession.h"
#include "modTryJoint.h"
#include "modViewFlags.h"
#include "plain_pick.h"
#include "support/render_plain.h"

namespace {

constexpr int32_t materialCount = 8;
constexpr int32_t boneCount = 60;

/// Gives each material a small texture of its own; the last one's has holes.
void AddTextures()
{
    constexpr int32_t side = 64;
    for (int32_t i = 1; i <= MaterialCount(); ++i) {
        std::vector<uint8_t> texels;
        for (int32_t k = 0; k < side * side; ++k) {
            const bool hole = i == MaterialCount() && k / 8 % 2 == 0;
            for (const int32_t value : {k % 256, k / 16 % 256, 31 * i % 256, hole ? 0 : 255}) {
                texels.push_back(static_cast<uint8_t>(value));
            }
        }
        MvmTexture& texture = Textures.Add();
        texture.HasOpacity = i == MaterialCount();
        glGenTextures(1, &texture.GLTexture);
        glBindTexture(GL_TEXTURE_2D, texture.GLTexture);
        gluBuild2DMipmaps(GL_TEXTURE_2D, 4, side, side, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
        Materials[i].Texture = static_cast<int16_t>(i);
    }
}

/// The scene and the state of a frame with everything on.
void OpenLargest(bool sorted)
{
    MakeViewCurrent();
    FreeTextures();
    FillScene(1, boneCount, materialCount, sorted);
    AddTextures();
    ResetViewFlags();
    ViewIsolines = ViewNormals = true;
    ActiveTab = 1;
    DisplayMode = 2;
    EditTarget = 0;
    ActiveBone = 2;
    InitCameras();
    CurrentCamera = 1;
}

void Close()
{
    FreeTextures();
    ResetSession();
}

/// Times frames after a first one, in which the driver makes ready what it keeps for the next ones.
template <typename Paint>
void Repeat(benchmark::State& state, Paint paint)
{
    paint();
    for (auto _ : state) {
        paint();
    }
}

void Frame(benchmark::State& state, bool sorted, bool lines, void (*paint)())
{
    OpenLargest(sorted);
    ViewIsolines = ViewNormals = lines;
    Repeat(state, paint); // both implementations end with glFinish
    Close();
}

/// The frame while a joint is tried.
void TriedJoint()
{
    TryingJoint = true;
    JointAngle = 0.01; // the picture stays the same, so that the row shows what the turning costs
    PaintFrame();
    TryingJoint = false;
    JointAngle = 0;
}

// The same triangles, lines and points from arrays that are made before: each kind sets its state once.

using Rgba = std::array<float, 4>;

struct LineEnd {
    Vec3 Color, Place;
};

struct Arrays {
    std::vector<uint16_t> Triangles;
    std::vector<Rgba> Tints, PointColors;
    std::vector<LineEnd> Normals;
    std::vector<Vec3> Joints, Links, Grid;
};

Arrays MakeArrays()
{
    Arrays made;
    const MvmMesh& mesh = Meshes[SkinMesh];
    for (const MvmFace& face : mesh.Faces) {
        for (size_t k = 0; k < 3; ++k) {
            made.Triangles.push_back(static_cast<uint16_t>(face.Vertex[k] - 1));
            const Vec3 from = mesh.Vertices[face.Vertex[k]];
            const Vec3 normal = mesh.Normals[face.Normal[k]];
            const Vec3 color{normal.X * 0.5F + 0.5F, normal.Z * 0.5F + 0.5F, normal.Y * 0.5F + 0.5F};
            made.Normals.push_back({color, from});
            made.Normals.push_back(
                {color, {from.X + normal.X * 0.05F, from.Y + normal.Y * 0.05F, from.Z + normal.Z * 0.05F}});
        }
    }
    for (const int16_t bone : mesh.VertexBones) {
        const bool active = bone == ActiveBone;
        made.Tints.push_back(bone < 1 ? Rgba{0, 1, 0, 0.5F} : active ? Rgba{1, 0, 0, 0.5F} : Rgba{1, 0, 0, 0});
        made.PointColors.push_back(bone < 1 ? Rgba{0, 1, 0, 0.5F} : active ? Rgba{1, 0, 0, 1} : Rgba{1, 1, 1, 0.5F});
    }
    for (const MvmBone& bone : Bones) {
        made.Joints.push_back(bone.Position);
        if (IsValidBone(bone.LinkBone)) {
            made.Links.push_back(bone.Position);
            made.Links.push_back(Bones[bone.LinkBone].Position);
        }
    }
    for (int i = -10; i <= 10; ++i) {
        const auto at = static_cast<float>(i);
        made.Grid.insert(made.Grid.end(), {{-10, 0, at}, {10, 0, at}, {at, 0, -10}, {at, 0, 10}});
    }
    return made;
}

void DrawTriangles(const Arrays& arrays)
{
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(arrays.Triangles.size()), GL_UNSIGNED_SHORT,
                   arrays.Triangles.data());
}

void DrawPositions(GLenum kind, const std::vector<Vec3>& places)
{
    glVertexPointer(3, GL_FLOAT, 0, places.data());
    glDrawArrays(kind, 0, static_cast<GLsizei>(places.size()));
}

void DrawSurface(const Arrays& arrays, const MvmMesh& mesh)
{
    SetupLights();
    BindMaterial(1);
    glEnable(GL_CULL_FACE);
    glVertexPointer(3, GL_FLOAT, 0, mesh.Vertices.Items.data());
    glNormalPointer(GL_FLOAT, 0, mesh.Normals.Items.data());
    glTexCoordPointer(2, GL_FLOAT, 0, mesh.TexCoords.Items.data());
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    DrawTriangles(arrays);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    BindMaterial(0);
    glDisable(GL_LIGHTING);
}

void DrawTints(const Arrays& arrays)
{
    glDepthFunc(GL_EQUAL);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_FLOAT, 0, arrays.Tints.data());
    DrawTriangles(arrays);
    glDisableClientState(GL_COLOR_ARRAY);
    glDepthFunc(GL_LESS);
}

void DrawPoints(const Arrays& arrays, const MvmMesh& mesh)
{
    glClear(GL_DEPTH_BUFFER_BIT);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    DrawTriangles(arrays);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_FALSE);
    glEnable(GL_POINT_SMOOTH);
    glPointSize(static_cast<float>(PointSize));
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_FLOAT, 0, arrays.PointColors.data());
    glDrawArrays(GL_POINTS, 0, mesh.VertexCount());
    glDisableClientState(GL_COLOR_ARRAY);
}

void DrawLines(const Arrays& arrays)
{
    glEnable(GL_LINE_SMOOTH);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glColor4f(1, 1, 1, 0.25F);
    DrawTriangles(arrays);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDepthMask(GL_TRUE);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(3, GL_FLOAT, sizeof(LineEnd), &arrays.Normals.front().Color);
    glVertexPointer(3, GL_FLOAT, sizeof(LineEnd), &arrays.Normals.front().Place);
    glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(arrays.Normals.size()));
    glDisableClientState(GL_COLOR_ARRAY);
    glColor4f(1, 1, 0, 0.5F);
    DrawPositions(GL_POINTS, arrays.Joints);
    DrawPositions(GL_LINES, arrays.Links);
    glColor4f(0, 0, 0, 0.25F);
    DrawPositions(GL_LINES, arrays.Grid);
    glDisable(GL_LINE_SMOOTH);
    glDisable(GL_POINT_SMOOTH);
    glDisable(GL_BLEND);
}

void FrameArrays(benchmark::State& state)
{
    OpenLargest(true);
    const Arrays arrays = MakeArrays();
    const auto paint = [&arrays] {
        const MvmMesh& mesh = Meshes[SkinMesh];
        SetBaseState();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        ApplyCamera();
        glEnable(GL_DEPTH_TEST);
        glEnableClientState(GL_VERTEX_ARRAY);
        DrawSurface(arrays, mesh);
        DrawTints(arrays);
        DrawPoints(arrays, mesh);
        DrawLines(arrays);
        glDisableClientState(GL_VERTEX_ARRAY);
        glFinish();
    };
    Repeat(state, paint);
    Close();
}

void Pick(benchmark::State& state)
{
    OpenLargest(true);
    for (auto _ : state) {
        PickVertices(SkinMesh, 0, 0, ViewWidth, ViewHeight);
    }
    Close();
}

void PickPlain(benchmark::State& state)
{
    OpenLargest(true);
    for (auto _ : state) {
        for (const int32_t vertex : plain::PickedVertices(SkinMesh, 0, 0, ViewWidth, ViewHeight)) {
            AssignVertex(SkinMesh, vertex);
        }
    }
    Close();
}

std::vector<uint32_t> Picture(void (*paint)())
{
    paint();
    std::vector<uint32_t> pixels(static_cast<size_t>(ViewWidth) * static_cast<size_t>(ViewHeight));
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, ViewWidth, ViewHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

template <typename T>
int64_t CountDifferences(const std::vector<T>& a, const std::vector<T>& b)
{
    int64_t count = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        count += a[i] != b[i] ? 1 : 0;
    }
    return count;
}

void AddEquality(const std::string& name, int64_t differences, size_t entries)
{
    MeasuredRows.push_back({name, std::to_string(differences), "of " + std::to_string(entries),
                            static_cast<double>(differences), 0, true});
}

void CheckPictures()
{
    for (const bool sorted : {true, false}) {
        OpenLargest(sorted);
        const std::vector<uint32_t> expected = Picture(plain::PaintFrame);
        AddEquality(std::string("pixels that differ from the plain frame, ") + (sorted ? "sorted" : "alternating"),
                    CountDifferences(expected, Picture(PaintFrame)), expected.size());
        Close();
    }
}

void CheckPick()
{
    OpenLargest(true);
    std::vector<int16_t>& bones = Meshes[SkinMesh].VertexBones.Items;
    std::vector<int16_t> expected(bones.size(), 0);
    for (const int32_t vertex : plain::PickedVertices(SkinMesh, 0, 0, ViewWidth, ViewHeight)) {
        expected[static_cast<size_t>(vertex) - 1] = ActiveBone;
    }
    bones.assign(bones.size(), 0);
    PickVertices(SkinMesh, 0, 0, ViewWidth, ViewHeight);
    AddEquality("vertices picked otherwise than one by one", CountDifferences(expected, bones), bones.size());
    Close();
}

} // namespace

void RegisterFrameCases()
{
    CheckPictures();
    CheckPick();
    const auto add = [](const char* name, auto function, int iterations, auto... arguments) {
        benchmark::RegisterBenchmark(name, function, arguments...)
            ->Iterations(iterations)
            ->Unit(benchmark::kMillisecond);
    };
    add("frame, sorted", Frame, 10, true, true, PaintFrame);
    add("frame, sorted/plain", Frame, 4, true, true, plain::PaintFrame);
    add("frame, sorted/arrays", FrameArrays, 10);
    add("frame, alternating", Frame, 4, false, true, PaintFrame);
    add("frame, alternating/plain", Frame, 4, false, true, plain::PaintFrame);
    add("frame without lines, sorted", Frame, 10, true, false, PaintFrame);
    add("frame without lines, sorted/plain", Frame, 4, true, false, plain::PaintFrame);
    add("frame, joint tried", Frame, 10, true, true, TriedJoint);
    BenchRows.push_back(
        {"frame with a joint tried, against without", "frame, joint tried", "frame, sorted", 1.1, true});
    add("pick", Pick, 10);
    add("pick/plain", PickPlain, 1);
    BenchRows.push_back({"frame, materials sorted", "frame, sorted", "frame, sorted/plain", 10});
    BenchRows.push_back(
        {"frame, materials sorted, against bare arrays", "frame, sorted", "frame, sorted/arrays", 1.5, true});
    BenchRows.push_back({"frame, materials alternating", "frame, alternating", "frame, alternating/plain", 2.5});
    // Filling the pixels of smooth lines costs both the same, so the frame is also measured without them.
    BenchRows.push_back({"frame without isolines and normals, sorted (own target)", "frame without lines, sorted",
                         "frame without lines, sorted/plain", 3});
    BenchRows.push_back({"pick over the whole view", "pick", "pick/plain", 10});
}
