#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"
#include "modCodePage.h"
#include "modCommands.h"
#include "modEditing.h"
#include "model/modMvmBind.h"
#include "model/modMvmRead.h"
#include "model/modStrings.h"
#include "modFileListing.h"
#include "modFiles.h"
#include "modModels.h"
#include "weights/modBoneAlias.h"

namespace {

constexpr const char* extension = ".preset";

struct NewOptions {
    std::string Preset{}, Model{}, Skin{};
    SaveTarget Save{};
};

/// The file of a preset of this name beside the program, else the name itself, which is then a path.
std::string PresetFile(const std::string& name)
{
    const std::string folder = ProgramFolder() + "/presets";
    for (const std::string& file : ListFiles(folder)) {
        if (LowerCase(file).ends_with(extension) &&
            file.substr(0, file.size() - std::string(extension).size()) == name) {
            return folder + "/" + file;
        }
    }
    return name;
}

bool Load(const std::string& path, const char* complaint)
{
    const int64_t lines = LogLines;
    const std::string spokenOf = std::exchange(FileSpokenOf, path);
    const bool good = LoadMVM(path) && LogLines == lines;
    if (!good) {
        Tell(complaint);
    }
    FileSpokenOf = spokenOf;
    return good;
}

std::string MeshNames()
{
    std::string names;
    for (const MvmMesh& mesh : Meshes) {
        names += (names.empty() ? "\"" : ", \"") + Utf8FromCodePage(mesh.Name) + "\"";
    }
    return names;
}

ExitCode MakeNew(const NewOptions& options)
{
    const std::string preset = PresetFile(options.Preset);
    if (!IsUsable(options.Save, {options.Model}, {preset})) {
        return ExitCode::Failed;
    }
    ForgetModel();
    LogGoesTo = LogTarget::Messages;
    if (!Load(preset, "Cannot load selected preset. Please verify the content of this file.") ||
        !Load(options.Model, "Cannot load skin model file. Please verify the content of this file.")) {
        return ExitCode::Failed;
    }
    ModelOpen = true;
    if (!options.Skin.empty()) {
        const int16_t mesh = FindMesh(options.Skin);
        if (mesh < 1) {
            return ExitCode::Failed;
        }
        SelectSkinMesh(mesh);
    } else if (!IsValidMesh(SkinMesh)) {
        Tell("Please select the model you want to use as skin.\nNone, as long as --skin names none of: " + MeshNames() +
             ".");
    }
    return SaveModel(options.Model, options.Save) ? ExitCode::Done : ExitCode::Failed;
}

} // namespace

void AddNewCommand(CLI::App* program)
{
    auto options = std::make_shared<NewOptions>();
    CLI::App* command = program->add_subcommand("new", "Make a model of a preset's skeleton and another model's mesh");
    command->footer("Example:\n  bwrt new Vorrel wolf.mvm --skin Wolf -o wolf-rigged.mvm");
    command->add_option("PRESET", options->Preset, "Name of a preset of the program, or a preset file")->required();
    command->add_option("SKIN", options->Model, "Model file with the mesh")->required();
    command->add_option("-o,--output", options->Save.Out, "File to write the new model to")->required();
    command->add_option("--skin", options->Skin, "Mesh to be the skin: name or number");
    command->callback(
        [options] { Outcome = ForEachModel({options->Model}, [&](const std::string&) { return MakeNew(*options); }); });
}
