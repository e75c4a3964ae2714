#include "modEditing.h"

#include <cmath>

#include "app/modMvmDef.h"
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

ExitCode EditModel(const EditOptions& options, bool needsTarget, const std::string& model,
                   const std::function<ExitCode()>& edit)
{
    if (!OpenModel(model) || !SelectMeshes(options)) {
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
    if (PutsCounts && LoudnessWanted != Loudness::Quiet) {
        Put(model + ": " + std::to_string(changed) + (changed == 1 ? " vertex" : " vertices") + " changed\n");
    }
    return ExitCode::Done;
}

} // namespace

void AddSaveOptions(CLI::App* command, SaveTarget* target)
{
    auto* out = command->add_option("-o,--output", target->Out, "File to write the changed model to");
    command->add_flag("--in-place", target->InPlace, "Write to the model itself")->excludes(out);
}

void AddModels(CLI::App* command, std::vector<std::string>* models)
{
    command->add_option("MODEL", *models, "Model files")->required();
}

void AddEditOptions(CLI::App* command, EditOptions* options)
{
    AddModels(command, &options->Models);
    AddSaveOptions(command, &options->Save);
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
    if (!IsUsable(options.Save, options.Models)) {
        return ExitCode::Failed;
    }
    return ForEachModel(options.Models,
                        [&](const std::string& model) { return EditModel(options, needsTarget, model, edit); });
}
