#include <memory>
#include <string>

#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "modCodePage.h"
#include "modCommands.h"
#include "modEditing.h"
#include "modFiles.h"
#include "modModels.h"
#include "weights/modAliasMaker.h"

namespace {

struct AliasOptions {
    std::vector<std::string> Models{};
    std::string Folder{};
    std::string Mesh = "skin"; ///< whose file is printed
    bool Replace = false;
};

/// Writes the alias file of a mesh.
bool WriteAliases(const AliasOptions& options, const std::string& model, int16_t mesh)
{
    const std::string text = MakeAliasText(mesh);
    if (text.empty()) {
        Tell("The mesh \"" + Utf8FromCodePage(Meshes[mesh].Name) + "\" has no bones of its kind.");
        return false;
    }
    const std::string name = Utf8FromCodePage(Meshes[mesh].Name);
    if (name.empty() || name.front() == '.' || name.find_first_of(std::string("/\\\0", 3)) != std::string::npos) {
        Tell("The mesh name \"" + name + "\" cannot be the name of a file.");
        return false;
    }
    const std::string path = options.Folder + "/" + name + ".alias";
    FileKind kind = FileKind::None;
    std::string error;
    if (!options.Replace && (!KindOfFile(path, &kind, &error) || kind != FileKind::None)) {
        Tell("\"" + path + "\" is there already; --replace replaces it.");
        return false;
    }
    if (!MayWrite(path, WrittenKind::Alias, {model})) {
        return false;
    }
    FileSpokenOf = path;
    if (!SaveGuarded("alias", path, {}, [&](const PartWriter& write) { write(text); })) {
        return false;
    }
    Note("\"" + path + "\" written.");
    return true;
}

ExitCode MakeAliases(const AliasOptions& options, const std::string& model)
{
    if (!OpenModel(model)) {
        return ExitCode::Failed;
    }
    if (options.Folder.empty()) {
        const int16_t mesh = FindMesh(options.Mesh);
        Put(mesh < 1 ? std::string() : MakeAliasText(mesh)); // the bytes of the file
        return mesh < 1 ? ExitCode::Failed : ExitCode::Done;
    }
    bool done = false;
    bool good = true;
    for (const int16_t mesh : {SkinMesh, ShadowMesh}) {
        if (IsValidMesh(mesh) && !(done && mesh == SkinMesh)) {
            done = true;
            good = WriteAliases(options, model, mesh) && good;
            FileSpokenOf = model;
        }
    }
    if (!done) {
        Tell("The model has neither skin nor shadow.");
    }
    return done && good ? ExitCode::Done : ExitCode::Failed;
}

} // namespace

void AddAliasCommands(CLI::App* program)
{
    CLI::App* alias = program->add_subcommand("alias", "Make alias files");
    alias->require_subcommand(1);
    alias->fallthrough();
    auto options = std::make_shared<AliasOptions>();
    CLI::App* make = alias->add_subcommand(
        "make", "Make an alias file for the skin and one for the shadow: labels, links and mirror bones, to be edited");
    make->footer("Example:\n  bwrt alias make beast.mvm -o aliases");
    AddModels(make, &options->Models);
    make->add_option("-o,--output", options->Folder,
                     "Folder for the files, which are named like the meshes; without it one is printed")
        ->type_name("FOLDER");
    make->add_option("--mesh", options->Mesh, "Whose file is printed: skin or shadow")
        ->check(CLI::IsMember({"skin", "shadow"}))
        ->capture_default_str();
    make->add_flag("--replace", options->Replace, "Replace alias files that are there");
    make->callback([options] {
        Outcome = ForEachModel(options->Models, [&](const std::string& model) { return MakeAliases(*options, model); });
    });
}
