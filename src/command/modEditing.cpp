#include "modEditing.h"

#include <cmath>

#include "app/modMvmDef.h"
#include "checks/modCheckModel.h"
#include "checks/modCheckText.h"
#include "model/modMvmBind.h"
#include "weights/modMirror.h"

namespace {

/// The bones of all vertices of all meshes, in order.
std::vector<int16_t> AllAssignments()
{
    std::vector<int16_t> bones;
    for (const MvmMesh& mesh : Meshes) {
        bones.insert(bones.end(), mesh.VertexBones.begin(), mesh.VertexBones.end());
        // A mesh that becomes a skin gets its vertices without a bone.
        bones.resize(bones.size() + mesh.Vertices.Items.size() - mesh.VertexBones.Items.size());
    }
    return bones;
}

bool SelectMeshes(const EditOptions& options)
{
    if (!options.Skin.empty()) {
        const int16_t mesh = FindMesh(options.Skin);
        if (mesh < 1) {
            return false;
        }
        SelectSkinMesh(mesh);
    }
    if (!options.Shadow.empty()) {
        const int16_t mesh = FindMesh(options.Shadow);
        if (mesh < 1) {
            return false;
        }
        SelectShadowMesh(mesh);
    }
    return true;
}

/// Tells of what the file has and the scene has not, since a save would not bring it back. False when that is damage
/// and the file itself is to be replaced.
bool KeepsEnough(const EditOptions& options, const std::string& model)
{
    std::vector<Finding> findings;
    std::string error;
    if (!CheckText(model, &findings, &error)) {
        Tell(error);
        return false;
    }
    CheckAssignments(&findings);
    bool damaged = false;
    int64_t dropped = 0;
    for (const Finding& finding : findings) {
        const std::string_view code = finding.Code;
        if (code == "unassigned" || code == "joint-shared" || code == "joint-missing") {
            continue; // the save writes what the file has
        }
        const bool isDamage = finding.Grade == Severity::Error;
        dropped += isDamage ? 0 : 1;
        if (isDamage && !damaged) {
            Tell((finding.Lines.empty() ? "" : "Line " + std::to_string(finding.Lines.front()) + ": ") + finding.What);
        }
        damaged = damaged || isDamage;
    }
    if (dropped > 0) {
        Note("The save leaves out or changes some text of the file; \"bwrt check\" tells which.");
    }
    if (damaged && options.Save.InPlace && !options.AcceptLosses) {
        Tell("A save in place would make this final. Look at \"bwrt check\"; --accept-losses goes on.");
        return false;
    }
    return true;
}

ExitCode EditModel(const EditOptions& options, bool needsTarget, const std::string& model,
                   const std::function<ExitCode()>& edit)
{
    if (!OpenModel(model) || !KeepsEnough(options, model) || !SelectMeshes(options)) {
        return ExitCode::Failed;
    }
    EditTarget = options.OnShadow ? int16_t{1} : int16_t{0};
    if (needsTarget && !IsValidMesh(TargetMesh())) {
        Tell(options.OnShadow ? "The model has no shadow." : "The model has no skin.");
        return ExitCode::Failed;
    }
    const std::vector<int16_t> before = AllAssignments();
    const ExitCode code = edit();
    if (code != ExitCode::Done || WasStopped) {
        return ExitCode::Failed;
    }
    if (!SaveModel(model, options.Save)) {
        return ExitCode::Failed;
    }
    const std::vector<int16_t> after = AllAssignments();
    size_t changed = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        changed += before[i] != after[i] ? 1 : 0;
    }
    if (options.Done == nullptr && LoudnessWanted != Loudness::Quiet) {
        Put(model + ": " + std::to_string(changed) + (changed == 1 ? " vertex" : " vertices") + " changed\n");
    }
    return ExitCode::Done;
}

} // namespace

void AddSaveOptions(CLI::App* command, SaveTarget* target)
{
    auto* out =
        command->add_option("-o,--output", target->Out, "File to write the changed model to")->type_name("FILE");
    command->add_flag("--in-place", target->InPlace, "Write to the model itself")->excludes(out);
}

void AddModels(CLI::App* command, std::vector<std::string>* models)
{
    command->add_option("MODEL", *models, "Model files")->required()->type_name("FILE");
}

void AddLosses(CLI::App* command, EditOptions* options)
{
    command->add_flag("--accept-losses", options->AcceptLosses,
                      "Write to the model itself also where its file is damaged");
}

void AddEditOptions(CLI::App* command, EditOptions* options)
{
    AddModels(command, &options->Models);
    AddSaveOptions(command, &options->Save);
    AddLosses(command, options);
    command->add_option("--skin", options->Skin, "Mesh to make the skin first: name or number");
    command->add_option("--shadow", options->Shadow, "Mesh to make the shadow first: name or number");
}

void AddThresholds(CLI::App* command)
{
    const auto isDistance = [](const std::string& text) {
        float value = 0;
        const bool good = CLI::detail::lexical_cast(text, value) && std::isfinite(value) && value > 0;
        return good ? std::string() : "\"" + text + "\" is no distance above 0";
    };
    command->add_option("--vertex-threshold", MirrorVertexThreshold, "How near a vertex is to its mirror vertex")
        ->check(isDistance)
        ->capture_default_str();
    command->add_option("--bone-threshold", MirrorBoneThreshold, "How near a bone is to its mirror bone")
        ->check(isDistance)
        ->capture_default_str();
}

ExitCode RunEdit(const EditOptions& options, bool needsTarget, const std::function<ExitCode()>& edit)
{
    if (!IsUsable(options.Save, options.Models, options.Others)) {
        return ExitCode::Failed;
    }
    return ForEachModel(options.Models, [&](const std::string& model) {
        const ExitCode code = EditModel(options, needsTarget, model, edit);
        if (options.Done != nullptr) {
            options.Done(code == ExitCode::Done);
        }
        return code;
    });
}
