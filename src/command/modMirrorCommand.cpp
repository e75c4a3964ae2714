#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/modMvmDef.h"
#include "checks/modFinding.h"
#include "modCodePage.h"
#include "modCommands.h"
#include "modEditing.h"
#include "modJson.h"
#include "modTable.h"
#include "weights/modEdit.h"
#include "weights/modMirrorProof.h"

namespace {

struct MirrorCommand : EditOptions {
    MirrorOptions Choices{};
    bool RightToLeft = false, KeepExisting = false, Prove = false, AsJson = false;
    Json Proof = Json::object(); ///< of the model at work
    Json::array_t Files{};       ///< what will be printed
};

std::string NameOf(int16_t bone)
{
    return bone == 0 ? "none" : Utf8FromCodePage(Bones[bone].Name);
}

std::string LabelOf(int16_t bone)
{
    return bone == 0 ? "none" : BoneLabel(bone);
}

std::string Numbers(const std::vector<int32_t>& vertices)
{
    return vertices.empty() ? "0" : std::to_string(vertices.size()) + " (" + FirstPlaces(vertices) + ")";
}

void PrintProof(const std::string& model, const MirrorCommand& options, const MirrorProof& proof)
{
    const MvmMesh& mesh = Meshes[TargetMesh()];
    Put(model + ": mesh \"" + Utf8FromCodePage(mesh.Name) + "\" mirrored " +
        (options.RightToLeft ? "right to left" : "left to right") + ", bones paired by " +
        (proof.ByAliases ? "the alias file" : "their positions") + "\n");
    std::vector<std::vector<std::string>> rows{{"Bone", "Taken", "Kept", "Lost", "Cleared"}};
    for (const MirroredBone& row : proof.Bones) {
        rows.push_back({LabelOf(row.Bone), std::to_string(row.Taken), std::to_string(row.Kept),
                        std::to_string(row.Lost), std::to_string(row.Cleared)});
    }
    Put(TableText(1, rows));
    Put("Target vertices without a source: " + Numbers(proof.WithoutSource) + "\n");
    Put("Target vertices with several sources: " + Numbers(proof.WithSeveral) + "\n");
    Put("Target vertices whose sources disagree: " + Numbers(proof.Disagreeing) + "\n");
    std::string names;
    for (const int16_t bone : proof.WithoutPartner) {
        names += (names.empty() ? "" : ", ") + LabelOf(bone);
    }
    Put("Source bones without a partner: " + (names.empty() ? "none" : names) + "\n");
    Put("Pairs that are not mutual: " + std::string(proof.NotMutual.empty() ? "none\n" : "\n"));
    for (const auto& [bone, partner, back] : proof.NotMutual) {
        Put("  " + LabelOf(bone) + " -> " + LabelOf(partner) + " -> " + LabelOf(back) + "\n");
    }
}

Json JsonOf(const MirrorCommand& options, const MirrorProof& proof)
{
    Json bones = Json::array();
    for (const MirroredBone& row : proof.Bones) {
        bones.push_back({{"bone", row.Bone},
                         {"name", NameOf(row.Bone)},
                         {"label", LabelOf(row.Bone)},
                         {"taken", row.Taken},
                         {"kept", row.Kept},
                         {"lost", row.Lost},
                         {"cleared", row.Cleared}});
    }
    Json withoutPartner = Json::array();
    for (const int16_t bone : proof.WithoutPartner) {
        withoutPartner.push_back({{"bone", bone}, {"name", NameOf(bone)}, {"label", LabelOf(bone)}});
    }
    return {{"mesh", Utf8FromCodePage(Meshes[TargetMesh()].Name)},
            {"direction", options.RightToLeft ? "right-to-left" : "left-to-right"},
            {"pairing", proof.ByAliases ? "alias" : "position"},
            {"bones", bones},
            {"withoutSource", proof.WithoutSource},
            {"withSeveralSources", proof.WithSeveral},
            {"sourcesDisagree", proof.Disagreeing},
            {"bonesWithoutPartner", withoutPartner},
            {"notMutual", proof.NotMutual}};
}

} // namespace

void AddMirrorCommand(CLI::App* program)
{
    auto options = std::make_shared<MirrorCommand>();
    CLI::App* command = program->add_subcommand("mirror", "Carry the bones of one side's vertices to the other side");
    command->footer("Example:\n  bwrt mirror beast.mvm --right-to-left --prove -o beast-mirrored.mvm");
    AddEditOptions(command, options.get());
    command->add_flag("--on-shadow", options->OnShadow, "Mirror the shadow in place of the skin");
    command->add_flag("--right-to-left", options->RightToLeft,
                      "The other direction than left to right, seen from behind");
    command->add_flag("--only-unassigned", options->KeepExisting,
                      "A vertex that has a bone keeps it (the tick Keep Existing Weights taken away)");
    command->add_flag("--unassign", options->Choices.Unassign,
                      "A vertex whose mirror vertex has no bone to give loses its own");
    AddThresholds(command);
    command->add_flag("--prove", options->Prove, "Print by bone what was taken, kept and lost, and what does not pair");
    command->add_flag("--json", options->AsJson, "Print the proof as JSON");
    command->callback([options] {
        options->Choices.LeftToRight = !options->RightToLeft;
        options->Choices.Reassign = !options->KeepExisting;
        if (options->AsJson) {
            options->Done = [options = options.get()](bool saved) {
                Json entry{{"file", FileSpokenOf}, {"saved", saved}};
                entry.update(std::exchange(options->Proof, Json::object()));
                options->Files.push_back(std::move(entry));
            };
        }
        Outcome = RunEdit(*options, true, [&] {
            if (!options->Prove && !options->AsJson) {
                MirrorWeights(options->Choices);
                return ExitCode::Done;
            }
            const MirrorProof proof = MirrorWithProof(options->Choices);
            if (options->AsJson) {
                options->Proof = JsonOf(*options, proof);
            } else {
                PrintProof(FileSpokenOf, *options, proof);
            }
            return ExitCode::Done;
        });
        if (options->AsJson) {
            PutJson({{"files", options->Files}});
        }
    });
}
