// Reading and writing the largest model, beside general readers and a naive writer.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <benchmark/benchmark.h>
#include <tiny_obj_loader.h>

#include "bench.h"
#include "generate.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "modFiles.h"
#include "modSession.h"
#include "support/model_text.h"

namespace {

struct Texts {
    std::string Model, ModelPath, Obj, ObjPath;
    size_t Faces = 0; ///< of all meshes
};

const Texts& LargestModel()
{
    static const Texts texts = [] {
        Texts made;
        FillScene(20, 300, 8, true);
        for (const MvmMesh& mesh : Meshes) {
            made.Faces += mesh.Faces.Items.size();
        }
        made.Model = ModelText();
        made.Obj = SceneAsObj();
        ResetSession();
        made.ModelPath = TemporaryFile("largest.mvm", made.Model);
        made.ObjPath = TemporaryFile("largest.obj", made.Obj);
        return made;
    }();
    return texts;
}

void SetBytes(benchmark::State& state, const std::string& text)
{
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void Load(benchmark::State& state)
{
    const Texts& texts = LargestModel();
    for (auto _ : state) {
        ResetSession();
        if (!LoadMVM(texts.ModelPath)) {
            state.SkipWithError("the model does not load");
        }
    }
    SetBytes(state, texts.Model);
    ResetSession();
}

void LoadAssimp(benchmark::State& state)
{
    const Texts& texts = LargestModel();
    for (auto _ : state) {
        Assimp::Importer importer;
        const aiScene* const scene = importer.ReadFile(texts.ObjPath, 0);
        size_t faces = 0;
        for (unsigned mesh = 0; scene != nullptr && mesh < scene->mNumMeshes; ++mesh) {
            faces += scene->mMeshes[mesh]->mNumFaces;
        }
        if (faces != texts.Faces) {
            state.SkipWithError("Assimp does not read all faces");
        }
    }
    SetBytes(state, texts.Obj);
}

void LoadTinyObj(benchmark::State& state)
{
    const Texts& texts = LargestModel();
    for (auto _ : state) {
        tinyobj::attrib_t attributes;
        std::vector<tinyobj::shape_t> shapes;
        std::vector<tinyobj::material_t> materials;
        std::string warning;
        std::string error;
        const bool good = tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &error, texts.ObjPath.c_str());
        size_t faces = 0;
        for (const tinyobj::shape_t& shape : shapes) {
            faces += shape.mesh.num_face_vertices.size();
        }
        if (!good || faces != texts.Faces) {
            state.SkipWithError("tinyobjloader does not read all faces");
        }
    }
    SetBytes(state, texts.Obj);
}

void SplitLines(benchmark::State& state)
{
    const Texts& texts = LargestModel();
    for (auto _ : state) {
        std::string bytes;
        std::string error;
        if (!ReadWhole(texts.ModelPath, &bytes, &error)) {
            state.SkipWithError(error.c_str());
        }
        int64_t lines = 0;
        const char* end = bytes.data() + bytes.size();
        for (const char* from = bytes.data(); from < end; ++lines) {
            const void* stop = std::memchr(from, '\r', static_cast<size_t>(end - from));
            from = stop != nullptr ? static_cast<const char*>(stop) + 1 : end;
        }
        benchmark::DoNotOptimize(lines);
    }
    SetBytes(state, texts.Model);
}

void Write(benchmark::State& state)
{
    FillScene(20, 300, 8, true);
    const std::string path = TemporaryFile("written.mvm", "");
    for (auto _ : state) {
        if (!WriteMVM(path)) {
            state.SkipWithError("the model is not written");
        }
    }
    ResetSession();
}

std::string Printed(float value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.7g", static_cast<double>(value));
    return text;
}

std::string Printed(const Vec3& v)
{
    return "(" + Printed(v.X) + "," + Printed(-v.Z) + "," + Printed(v.Y) + ")";
}

void WriteScene(std::ostream& file)
{
    file << "fileinfo\r\n{\r\n formatversion = 1.0.2\r\n}\r\n\r\n";
    for (const MvmBone& bone : Bones) {
        file << "bone \"" << bone.Name << "\"\r\n{\r\n position = " << Printed(bone.Position)
             << "\r\n rotation = " << Printed(bone.Rotation) << "\r\n}\r\n\r\n";
    }
    for (const MvmMesh& mesh : Meshes) {
        file << "skin \"" << mesh.Name << "\"\r\n{\r\n";
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            file << " v = " << Printed(mesh.Vertices[i]) << "," << mesh.VertexBones[i] << "\r\n";
        }
        for (const Vec2& t : mesh.TexCoords) {
            file << " t = (" << Printed(t.U) << "," << Printed(t.V) << ")\r\n";
        }
        for (const Vec3& n : mesh.Normals) {
            file << " n = " << Printed(n) << "\r\n";
        }
        for (const MvmFace& f : mesh.Faces) {
            file << " f = (" << f.Vertex[0] << "," << f.Vertex[1] << "," << f.Vertex[2] << "),(" << f.TexCoord[0] << ","
                 << f.TexCoord[1] << "," << f.TexCoord[2] << "),(" << f.Normal[0] << "," << f.Normal[1] << ","
                 << f.Normal[2] << ")," << f.Material << "\r\n";
        }
        file << "}\r\n\r\n";
    }
}

void WriteStreams(benchmark::State& state)
{
    FillScene(20, 300, 8, true);
    const std::string path = TemporaryFile("streamed.mvm", "");
    for (auto _ : state) {
        std::ofstream file(path, std::ios::binary);
        WriteScene(file);
    }
    ResetSession();
}

void Text(benchmark::State& state)
{
    FillScene(20, 300, 8, true);
    for (auto _ : state) {
        size_t size = 0;
        WriteModelText([&size](std::string_view part) { size += part.size(); });
        benchmark::DoNotOptimize(size);
    }
    ResetSession();
}

void TextStreams(benchmark::State& state)
{
    FillScene(20, 300, 8, true);
    for (auto _ : state) {
        std::ostringstream text;
        WriteScene(text);
        benchmark::DoNotOptimize(text.str().size());
    }
    ResetSession();
}

void LoadText(benchmark::State& state, const std::string& path)
{
    for (auto _ : state) {
        ResetSession();
        benchmark::DoNotOptimize(LoadMVM(path));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(std::filesystem::file_size(path)));
    ResetSession();
}

} // namespace

void RegisterModelCases()
{
    const auto add = [](const char* name, void (*function)(benchmark::State&), int iterations) {
        benchmark::RegisterBenchmark(name, function)->Iterations(iterations)->Unit(benchmark::kMillisecond);
    };
    add("load", Load, 5);
    add("load/assimp", LoadAssimp, 1);
    add("load/tinyobj", LoadTinyObj, 2);
    add("load/lines", SplitLines, 10);
    add("write", Write, 3);
    add("write/streams", WriteStreams, 1);
    add("text", Text, 3);
    add("text/streams", TextStreams, 1);
    const std::string part(1 << 16, 'x');
    std::string line = "bone \"a\"\r\n{\r\n ";
    while (line.size() < (1U << 20)) {
        line += part;
    }
    benchmark::RegisterBenchmark("load a line of a megabyte", LoadText, TemporaryFile("line.mvm", line + "\r\n}\r\n"))
        ->Iterations(5)
        ->Unit(benchmark::kMillisecond);
    std::string blocks;
    for (int i = 0; i < 1000000; ++i) {
        blocks += "bone \"a\"\r\n{\r\n}\r\n";
    }
    benchmark::RegisterBenchmark("load a million empty blocks", LoadText, TemporaryFile("blocks.mvm", blocks))
        ->Iterations(2)
        ->Unit(benchmark::kMillisecond);

    BenchRows.push_back({"load, largest model, MB/s against Assimp", "load", "load/assimp", 4, false, true});
    BenchRows.push_back({"load, largest model, MB/s against tinyobjloader", "load", "load/tinyobj", 4, false, true});
    BenchRows.push_back({"load, largest model, against splitting lines", "load", "load/lines", 15, true, true});
    BenchRows.push_back({"write, largest model, against streams", "write", "write/streams", 5});
    BenchRows.push_back({"its text alone, against streams (own target)", "text", "text/streams", 5});
    BenchRows.push_back({"load a line of a megabyte, against splitting (own target)", "load a line of a megabyte",
                         "load/lines", 25, true, true});
    BenchRows.push_back({"load a million empty blocks, against splitting (own target)", "load a million empty blocks",
                         "load/lines", 250, true, true, 1000});
}
