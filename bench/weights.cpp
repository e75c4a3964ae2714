// Mirroring, weights by position, normals and automatic assignment on the largest mesh, beside the plain double loops.

#include <algorithm>
#include <cmath>

#include <benchmark/benchmark.h>

#include "app/modMath.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "bench.h"
#include "generate.h"
#include "modSession.h"
#include "weights/modMirror.h"
#include "weights/modMvmXTools.h"
#include "weights/modWeights.h"

namespace {

constexpr int32_t boneCount = 300;

bool IsTarget(float x)
{
    return x > 0;
}

void PlainMirror(float tolerance)
{
    MvmMesh& mesh = Meshes[SkinMesh];
    const auto near = [tolerance](const Vec3& a, const Vec3& b) {
        return a.Y - tolerance < b.Y && a.Y + tolerance > b.Y && a.Z - tolerance < b.Z && a.Z + tolerance > b.Z &&
               a.X - tolerance < -b.X && a.X + tolerance > -b.X;
    };
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        const Vec3 a = mesh.Vertices[i];
        if (!IsTarget(a.X)) {
            continue;
        }
        for (int32_t j = 1; j <= mesh.VertexCount(); ++j) {
            const Vec3 b = mesh.Vertices[j];
            if (!IsTarget(b.X) && near(a, b) && mesh.VertexBones[j] > 0) {
                mesh.VertexBones[i] = mesh.VertexBones[j];
            }
        }
    }
}

void Mirror(benchmark::State& state, Shape shape, float threshold)
{
    FillScene(1, boneCount, 1, true, shape);
    // Bones on the plane are their own partners in no table: keep them off it, so that pairs exist.
    for (int32_t i = 1; i <= BoneCount(); ++i) {
        Bones[i].Position.X = i % 2 == 0 ? 0.1F : -0.1F;
        Bones[i].Position.Z = static_cast<float>((i + 1) / 2) * 0.1F;
    }
    MirrorVertexThreshold = threshold;
    for (auto _ : state) {
        MirrorWeights(MirrorOptions{});
    }
    MirrorVertexThreshold = 0.01F;
    ResetSession();
}

/// The same as a command of the window runs it, which can be taken back.
void MirrorStep(benchmark::State& state)
{
    FillScene(1, boneCount, 1, true, Shape::Creature);
    std::vector<int16_t>& bones = Meshes[SkinMesh].VertexBones.Items;
    const std::vector<int16_t> before = bones;
    for (auto _ : state) {
        RunStep("Mirror", [] { MirrorWeights(MirrorOptions{}); });
        state.PauseTiming();
        bones = before;
        state.ResumeTiming();
    }
    ResetSession();
}

/// Back and forward over a step that changed every vertex.
void UndoAll(benchmark::State& state)
{
    FillScene(1, boneCount, 1, true, Shape::Creature);
    RunStep("All", [] {
        Touch(ScenePart::Assignments, SkinMesh);
        for (int16_t& bone : Meshes[SkinMesh].VertexBones) {
            ++bone;
        }
    });
    for (auto _ : state) {
        UndoStep();
        RedoStep();
    }
    ResetSession();
}

void MirrorLoop(benchmark::State& state, Shape shape, float threshold)
{
    FillScene(1, boneCount, 1, true, shape);
    for (auto _ : state) {
        PlainMirror(threshold);
    }
    ResetSession();
}

/// The records of a weights file of the skin, each bone moved by one.
std::vector<WeightsVertex> WeightsOfSkin()
{
    const MvmMesh& mesh = Meshes[SkinMesh];
    std::vector<WeightsVertex> records;
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        records.push_back({mesh.Vertices[i], static_cast<int16_t>(1 + i % BoneCount())});
    }
    return records;
}

void ByPosition(benchmark::State& state, Shape shape)
{
    FillScene(1, boneCount, 1, true, shape);
    const std::vector<WeightsVertex> records = WeightsOfSkin();
    for (auto _ : state) {
        AssignByPosition(records, &Meshes[SkinMesh]);
    }
    ResetSession();
}

void ByPositionLoop(benchmark::State& state, Shape shape)
{
    FillScene(1, boneCount, 1, true, shape);
    MvmMesh& mesh = Meshes[SkinMesh];
    const Array1<Vec3> records = mesh.Vertices;
    for (auto _ : state) {
        for (int32_t k = 1; k <= records.Count(); ++k) {
            const Vec3 r = records[k];
            for (int32_t v = 1; v <= mesh.VertexCount(); ++v) {
                const Vec3 p = mesh.Vertices[v];
                if (r.X - 0.002 < p.X && r.X + 0.002 > p.X && r.Y - 0.002 < p.Y && r.Y + 0.002 > p.Y &&
                    r.Z - 0.002 < p.Z && r.Z + 0.002 > p.Z) {
                    mesh.VertexBones[v] = static_cast<int16_t>(1 + k % BoneCount());
                }
            }
        }
    }
    ResetSession();
}

void Normals(benchmark::State& state, bool oneVertex)
{
    FillScene(1, 0, 1, true);
    if (oneVertex) {
        for (MvmFace& face : Meshes[1].Faces) {
            face.Vertex[0] = 1;
        }
    }
    for (auto _ : state) {
        RegenerateNormals(1);
    }
    ResetSession();
}

void NormalsLoop(benchmark::State& state, bool oneVertex)
{
    FillScene(1, 0, 1, true);
    MvmMesh& mesh = Meshes[1];
    if (oneVertex) {
        for (MvmFace& face : mesh.Faces) {
            face.Vertex[0] = 1;
        }
    }
    for (auto _ : state) {
        Array1<Vec3> normals;
        Array1<float> areas;
        for (const MvmFace& face : mesh.Faces) {
            const Vec3 p1 = mesh.Vertices[face.Vertex[0]];
            const Vec3 p2 = mesh.Vertices[face.Vertex[1]];
            const Vec3 p3 = mesh.Vertices[face.Vertex[2]];
            normals.Add(FaceNormal(p3, p2, p1));
            areas.Add(static_cast<float>(TriangleArea(p3, p2, p1)));
        }
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            Vec3 sum;
            for (int32_t f = 1; f <= mesh.FaceCount(); ++f) {
                const MvmFace& face = mesh.Faces[f];
                const int corner = face.Vertex[2] == i ? 2 : face.Vertex[1] == i ? 1 : face.Vertex[0] == i ? 0 : -1;
                if (corner < 0) {
                    continue;
                }
                const auto at = [&](int k) {
                    return mesh.Vertices[face.Vertex[static_cast<size_t>((corner + k) % 3)]];
                };
                const double angle = VecAngle(VecSub(at(0), at(1)), VecSub(at(0), at(2)));
                const Vec3 n = normals[f];
                const double weight = static_cast<double>(areas[f]) * angle;
                sum = {static_cast<float>(sum.X + n.X * weight), static_cast<float>(sum.Y + n.Y * weight),
                       static_cast<float>(sum.Z + n.Z * weight)};
            }
            benchmark::DoNotOptimize(VecNormalize(sum));
        }
    }
    ResetSession();
}

void Auto(benchmark::State& state)
{
    FillScene(1, boneCount, 1, true);
    for (auto _ : state) {
        std::fill(Meshes[1].VertexBones.begin(), Meshes[1].VertexBones.end(), int16_t{0});
        AutoAssign(1);
    }
    ResetSession();
}

void AutoLoop(benchmark::State& state)
{
    FillScene(1, boneCount, 1, true);
    MvmMesh& mesh = Meshes[1];
    for (auto _ : state) {
        for (int32_t v = 1; v <= mesh.VertexCount(); ++v) {
            int16_t best = 0;
            float bestDistance = 1000000.0F;
            for (int32_t b = 1; b <= BoneCount(); ++b) {
                if (Bones[b].IsShadow) {
                    continue;
                }
                const Vec3 at = Bones[b].Position;
                const Vec3 p{(at.X + SkinOffset.X) * SkinScale, (at.Y + SkinOffset.Y) * SkinScale,
                             (at.Z + SkinOffset.Z) * SkinScale};
                const auto distance = static_cast<float>(VecDistance(p, mesh.Vertices[v]));
                if (distance < bestDistance) {
                    bestDistance = distance;
                    best = static_cast<int16_t>(b);
                }
            }
            mesh.VertexBones[v] = best;
        }
    }
    ResetSession();
}

template <typename Function, typename... Arguments>
void Add(const std::string& name, int iterations, Function function, Arguments... arguments)
{
    benchmark::RegisterBenchmark(name.c_str(), function, arguments...)
        ->Iterations(iterations)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

void RegisterWeightsCases()
{
    struct MirrorCase {
        const char* Name;
        Shape Of;
        float Threshold;
        double Target, Most;
    };
    // Where every vertex is in tolerance of every other, the answer is the last source alone; the bound is a second.
    for (const MirrorCase& c : {MirrorCase{"mirror, sparse", Shape::Creature, 0.0001F, 50, 20},
                                MirrorCase{"mirror, default threshold", Shape::Creature, 0.01F, 50, 20},
                                MirrorCase{"mirror, dense", Shape::Creature, 0.03F, 50, 20},
                                MirrorCase{"mirror, threshold as large as the model", Shape::Creature, 5, 1, 1000},
                                MirrorCase{"mirror, all on one line", Shape::OneLine, 0.01F, 1, 1000},
                                MirrorCase{"mirror, all in one place", Shape::OnePlace, 0.01F, 1, 1000},
                                MirrorCase{"mirror, infinite and no numbers", Shape::Strange, 0.01F, 1, 1000}}) {
        const std::string name = c.Name;
        Add(name, 5, Mirror, c.Of, c.Threshold);
        Add(name + "/loop", 1, MirrorLoop, c.Of, c.Threshold);
        BenchRows.push_back({name, name, name + "/loop", c.Target, false, false, c.Most});
    }
    struct PlaceCase {
        const char* Name;
        Shape Of;
        double Target, Most;
    };
    for (const PlaceCase& c : {PlaceCase{"weights by position", Shape::Creature, 50, 20},
                               PlaceCase{"weights by position, one place", Shape::OnePlace, 1, 1000},
                               PlaceCase{"weights by position, one line", Shape::OneLine, 1, 1000},
                               PlaceCase{"weights by position, one plane", Shape::OnePlane, 1, 1000},
                               PlaceCase{"weights by position, infinite and no numbers", Shape::Strange, 1, 1000}}) {
        const std::string name = c.Name;
        Add(name, 5, ByPosition, c.Of);
        Add(name + "/loop", 1, ByPositionLoop, c.Of);
        BenchRows.push_back({name, name, name + "/loop", c.Target, false, false, c.Most});
    }
    for (const bool oneVertex : {false, true}) {
        const std::string name = oneVertex ? "normals, one vertex in every face" : "normals";
        Add(name, 5, Normals, oneVertex);
        Add(name + "/loop", 1, NormalsLoop, oneVertex);
        BenchRows.push_back({name, name, name + "/loop", 50, false, false, 20});
    }
    Add("mirror as a step", 5, MirrorStep);
    BenchRows.push_back(
        {"mirror as a step to undo, against without", "mirror as a step", "mirror, default threshold", 1.1, true});
    Add("undo and redo", 100, UndoAll);
    BenchRows.push_back(
        {"undo and redo of all vertices, against a mirror", "undo and redo", "mirror, default threshold", 1, true});
    Add("auto-assign, 300 bones", 5, Auto);
    Add("auto-assign, 300 bones/loop", 2, AutoLoop);
    BenchRows.push_back({"auto-assign, 300 bones", "auto-assign, 300 bones", "auto-assign, 300 bones/loop", 5});
}
