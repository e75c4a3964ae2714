#include <memory>
#include <string>
#include <utility>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modCommands.h"
#include "modEditing.h"
#include "modModels.h"
#include "weights/modWeights.h"

namespace {

struct WeightsOptions : EditOptions {
    std::string Model{}, File{}, By{};
    std::vector<std::string> Accepted{};
};

ExitCode SaveModelsWeights(const WeightsOptions& options)
{
    if (!OpenModel(options.Model)) {
        return ExitCode::Failed;
    }
    const int16_t mesh = options.OnShadow ? ShadowMesh : SkinMesh;
    if (!IsValidMesh(mesh)) {
        Tell(options.OnShadow ? "The model has no shadow." : "The model has no skin.");
        return ExitCode::Failed;
    }
    if (!MayWrite(options.File, WrittenKind::Weights, {options.Model})) {
        return ExitCode::Failed;
    }
    LogGoesTo = LogTarget::Messages;
    FileSpokenOf = options.File;
    SaveWeights(options.File, mesh);
    LogGoesTo = LogTarget::Verbose;
    return ExitCode::Done;
}

ExitCode LoadModelsWeights(const WeightsOptions& options)
{
    WeightsAssignMode = options.By == "index" ? int16_t{1} : int16_t{2};
    AcceptedQuestions.clear();
    AcceptedQuestions.insert(options.Accepted.begin(), options.Accepted.end());
    const int64_t warnings = Warnings;
    const int64_t refusals = Refusals;
    LogGoesTo = LogTarget::Messages; // what cannot be assigned opens the window's log
    const std::string model = std::exchange(FileSpokenOf, options.File);
    LoadWeights(options.File, TargetMesh());
    int32_t records = 0;
    int32_t told = 0;
    if (IsCutOff(options.File, &records, &told)) {
        Tell("The file ends after " + std::to_string(records) + " of its " + std::to_string(told) +
             " vertices; the rest keep the bones that they have.");
    }
    FileSpokenOf = model;
    LogGoesTo = LogTarget::Verbose;
    return Warnings == warnings && Refusals == refusals ? ExitCode::Done : ExitCode::Failed;
}

void AddTarget(CLI::App* command, WeightsOptions* options)
{
    command->add_option("MODEL", options->Model, "Model file")->required();
    command->add_option("FILE", options->File, "Weights file")->required();
    command->add_flag("--on-shadow", options->OnShadow, "The shadow in place of the skin");
}

} // namespace

void AddWeightsCommands(CLI::App* program)
{
    CLI::App* weights = program->add_subcommand("weights", "Save or load a weights file");
    weights->require_subcommand(1);
    weights->fallthrough();

    auto saved = std::make_shared<WeightsOptions>();
    CLI::App* save = weights->add_subcommand("save", "Save the bones of all vertices to a weights file");
    save->footer("Example:\n  bwrt weights save beast.mvm beast.wif");
    AddTarget(save, saved.get());
    save->callback([saved] {
        Outcome = ForEachModel({saved->Model}, [&](const std::string&) { return SaveModelsWeights(*saved); });
    });

    auto loaded = std::make_shared<WeightsOptions>();
    CLI::App* load = weights->add_subcommand("load", "Give the vertices the bones of a weights file");
    load->footer("Example:\n  bwrt weights load beast.mvm beast.wif --by position --accept vertices --in-place");
    AddTarget(load, loaded.get());
    AddSaveOptions(load, &loaded->Save);
    AddLosses(load, loaded.get());
    load->add_option("--skin", loaded->Skin, "Mesh to make the skin first: name or number");
    load->add_option("--shadow", loaded->Shadow, "Mesh to make the shadow first: name or number");
    load->add_option("--by", loaded->By, "How a record finds its vertex: index or position")
        ->required()
        ->check(CLI::IsMember({"index", "position"}));
    load->add_option("--accept", loaded->Accepted,
                     "Load although this differs: version, bones (their number), name (of the mesh), vertices (their "
                     "number); can be given more than once")
        ->take_all()
        ->allow_extra_args(false)
        ->check(CLI::IsMember(QuestionNames()));
    load->callback([loaded] {
        loaded->Models = {loaded->Model};
        loaded->Others = {loaded->File};
        Outcome = RunEdit(*loaded, true, [&] { return LoadModelsWeights(*loaded); });
    });
}
