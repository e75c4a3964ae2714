#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "checks/modCheckModel.h"
#include "checks/modDifferences.h"
#include "checks/modFinding.h"
#include "modCommands.h"
#include "modEditing.h"
#include "model/modNumbers.h"
#include "modJson.h"
#include "modModels.h"
#include "modTable.h"

namespace {

struct DiffOptions {
    std::string Old{}, New{};
    bool AsJson = false;
};

constexpr const char* kindNames[] = {"bone", "material", "mesh", "instance"};

std::string NameOfKind(RecordKind kind)
{
    return kindNames[static_cast<size_t>(kind)];
}

std::string BoneOrNone(const std::string& name)
{
    return name.empty() ? "none" : name;
}

std::string LineOf(const VertexDifference& difference)
{
    std::string line = "mesh \"" + difference.Mesh + "\": ";
    if (!difference.ByPosition) {
        return line + Counted(static_cast<int64_t>(difference.Moved.size()), "vertex", "vertices") +
               " moved, by at most " + FloatToText(static_cast<float>(difference.Farthest)) + " (" +
               FirstPlaces(difference.Moved) + ")\n";
    }
    return line + "vertices " + std::to_string(difference.OldCount) + " -> " + std::to_string(difference.NewCount) +
           "; assignments compared by place, " +
           Counted(difference.NotCompared, "vertex is new\n", "vertices are new\n");
}

void PrintDifferences(const ModelDifferences& differences)
{
    for (const RecordDifference& record : differences.Records) {
        std::string changes;
        for (const std::string& change : record.Changes) {
            changes += (changes.empty() ? "" : "; ") + change;
        }
        Put(NameOfKind(record.Kind) + " \"" + record.Name + "\": " + changes + "\n");
    }
    if (!differences.SameOrder) {
        Put("records stand in another order\n");
    }
    for (const VertexDifference& vertices : differences.Vertices) {
        Put(LineOf(vertices));
    }
    std::string mesh;
    std::vector<std::vector<std::string>> rows;
    const auto flush = [&] {
        if (!rows.empty()) {
            Put("mesh \"" + mesh + "\": assignments\n" + TableText(2, rows));
        }
        rows.clear();
    };
    for (const AssignmentDifference& move : differences.Assignments) {
        if (rows.empty() || move.Mesh != mesh) {
            flush();
            mesh = move.Mesh;
            rows.push_back({"From bone", "To bone", "Vertices"});
        }
        rows.push_back({BoneOrNone(move.From), BoneOrNone(move.To), std::to_string(move.Vertices.size())});
    }
    flush();
}

Json JsonOf(const DiffOptions& options, const ModelDifferences& differences, bool differ)
{
    Json records = Json::array();
    for (const RecordDifference& record : differences.Records) {
        records.push_back({{"kind", NameOfKind(record.Kind)}, {"name", record.Name}, {"changes", record.Changes}});
    }
    Json vertices = Json::array();
    for (const VertexDifference& mesh : differences.Vertices) {
        vertices.push_back({{"mesh", mesh.Mesh},
                            {"oldCount", mesh.OldCount},
                            {"newCount", mesh.NewCount},
                            {"moved", mesh.Moved},
                            {"farthest", mesh.Farthest},
                            {"byPosition", mesh.ByPosition},
                            {"notCompared", mesh.NotCompared}});
    }
    Json assignments = Json::array();
    for (const AssignmentDifference& move : differences.Assignments) {
        assignments.push_back({{"mesh", move.Mesh},
                               {"from", move.From.empty() ? Json() : Json(move.From)},
                               {"to", move.To.empty() ? Json() : Json(move.To)},
                               {"count", move.Vertices.size()},
                               {"vertices", move.Vertices}});
    }
    return {
        {"old", options.Old}, {"new", options.New},   {"differ", differ},          {"sameOrder", differences.SameOrder},
        {"records", records}, {"vertices", vertices}, {"assignments", assignments}};
}

ExitCode Compare(const DiffOptions& options)
{
    FileSpokenOf = options.Old;
    if (!OpenModel(options.Old)) {
        return ExitCode::Failed;
    }
    const KeptModel old = TakeModel();
    FileSpokenOf = options.New;
    if (!OpenModel(options.New)) {
        return ExitCode::Failed;
    }
    const ModelDifferences differences = CompareModels(old);
    const bool differ = !differences.Records.empty() || !differences.Vertices.empty() ||
                        !differences.Assignments.empty() || !differences.SameOrder;
    if (options.AsJson) {
        PutJson(JsonOf(options, differences, differ));
    } else {
        PrintDifferences(differences);
    }
    return differ ? ExitCode::Findings : ExitCode::Done;
}

} // namespace

void AddDiffCommand(CLI::App* program)
{
    auto options = std::make_shared<DiffOptions>();
    CLI::App* command = program->add_subcommand("diff", "Tell what differs between two models, above all assignments");
    command->footer("Example:\n  bwrt diff beast-yesterday.mvm beast.mvm");
    command->add_option("OLD", options->Old, "Model file")->required();
    command->add_option("NEW", options->New, "Model file")->required();
    command->add_flag("--json", options->AsJson, "Print JSON");
    command->callback(
        [options] { Outcome = ForEachModel({options->New}, [&](const std::string&) { return Compare(*options); }); });
}
