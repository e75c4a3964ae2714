// A model's way to glTF and back, beside its load and save, and beside another writer of the format.

#include <string>
#include <vector>

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <benchmark/benchmark.h>

#include "bench.h"
#include "generate.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "modFiles.h"
#include "modFromScene.h"
#include "modGltfRead.h"
#include "modGltfWrite.h"
#include "modNewScene.h"
#include "modPictures.h"
#include "modSession.h"
#include "support/model_text.h"

namespace {

struct Files {
    std::string Model, Obj;
};

const Files& LargestModel()
{
    static const Files files = [] {
        Files made;
        FillScene(20, 90, 8, true);
        made.Model = TemporaryFile("exchange.mvm", ModelText());
        made.Obj = TemporaryFile("exchange.obj", SceneAsObj());
        ResetSession();
        return made;
    }();
    return files;
}

void Write(const std::string& path, const std::string& bytes)
{
    std::string error;
    SaveRest rest;
    (void)SaveWhole(
        path, {}, [&](const PartWriter& write) { write(bytes); }, &rest, &error);
}

void LoadAndSave(benchmark::State& state)
{
    const std::string saved = TemporaryFile("saved.mvm", "");
    for (auto _ : state) {
        ResetSession();
        if (!LoadMVM(LargestModel().Model) || !WriteMVM(saved)) {
            state.SkipWithError("the model does not load");
        }
    }
    ResetSession();
}

void ThereAndBack(benchmark::State& state)
{
    const std::string glb = TemporaryFile("there.glb", "");
    const std::string back = TemporaryFile("back.mvm", "");
    for (auto _ : state) {
        std::string error;
        {
            ResetSession();
            ExchangeModel model;
            std::string bytes;
            if (!LoadMVM(LargestModel().Model) || !ExchangeFromScene("", &model, &error) ||
                !GlbOf(model, &bytes, &error)) {
                state.SkipWithError(error.c_str());
            }
            Write(glb, bytes);
        }
        ResetSession();
        ExchangeModel model;
        std::string bytes;
        std::vector<MapFile> maps;
        std::vector<std::string> notes;
        if (!ReadWhole(glb, &bytes, &error) || !ReadGltf(bytes, "", &model, &error) ||
            !SceneFromExchange(model, {}, &maps, &notes, &error) || !notes.empty() || !WriteMVM(back)) {
            state.SkipWithError(error.c_str());
        }
    }
    std::string model;
    std::string returned;
    std::string error;
    if (!ReadWhole(LargestModel().Model, &model, &error) || !ReadWhole(back, &returned, &error) || model != returned) {
        state.SkipWithError("the model came back changed");
    }
    ResetSession();
}

void WriteGlb(benchmark::State& state)
{
    ResetSession();
    ExchangeModel model;
    std::string error;
    if (!LoadMVM(LargestModel().Model) || !ExchangeFromScene("", &model, &error)) {
        state.SkipWithError(error.c_str());
    }
    model.Record.clear();
    for (auto _ : state) {
        std::string bytes;
        if (!GlbOf(model, &bytes, &error)) {
            state.SkipWithError(error.c_str());
        }
        benchmark::DoNotOptimize(bytes);
    }
    ResetSession();
}

void WriteGlbAssimp(benchmark::State& state)
{
    Assimp::Importer importer;
    const aiScene* const scene = importer.ReadFile(LargestModel().Obj, 0);
    for (auto _ : state) {
        Assimp::Exporter exporter;
        const aiExportDataBlob* const blob = exporter.ExportToBlob(scene, "glb2");
        if (blob == nullptr) {
            state.SkipWithError(exporter.GetErrorString());
        }
        benchmark::DoNotOptimize(blob);
    }
}

} // namespace

void RegisterExchangeCases()
{
    const auto add = [](const char* name, auto* function) {
        benchmark::RegisterBenchmark(name, function)->Iterations(2)->Unit(benchmark::kMillisecond)->UseRealTime();
    };
    add("load and save", LoadAndSave);
    add("glb and back", ThereAndBack);
    add("write glb", WriteGlb);
    add("write glb, Assimp", WriteGlbAssimp);
    BenchRows.push_back({.Case = "largest model to glTF and back, against load and save",
                         .Ours = "glb and back",
                         .Reference = "load and save",
                         .Target = 5,
                         .AtMost = true});
    BenchRows.push_back(
        {.Case = "writing glTF, against Assimp", .Ours = "write glb", .Reference = "write glb, Assimp", .Target = 1});
}
