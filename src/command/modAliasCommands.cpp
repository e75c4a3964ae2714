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
    bool Replace = false;
};

/// Writes the alias file of a mesh, or prints it when there is no folder for it.
bool WriteAliases(const AliasOptions& options, int16_t mesh)
{
    const std::string text = MakeAliasText(mesh);
    if (options.Folder.empty()) {
        Put(Utf8FromCodePage(text));
        return true;
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
    bool done = false;
    bool good = true;
    for (const int16_t mesh : {SkinMesh, ShadowMesh}) {
        if (IsValidMesh(mesh) && !(done && mesh == SkinMesh)) {
            done = true;
            good = WriteAliases(options, mesh) && good;
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
                     "Folder for the files, which are named like the meshes; without it they are printed");
    make->add_flag("--replace", options->Replace, "Replace alias files that are there");
    make->callback([options] {
        Outcome = ForEachModel(options->Models, [&](const std::string& model) { return MakeAliases(*options, model); });
    });
}
