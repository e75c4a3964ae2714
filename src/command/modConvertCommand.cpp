#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "modCommands.h"
#include "modEditing.h"
#include "model/modStrings.h"
#include "modFiles.h"
#include "modFromScene.h"
#include "modGltfRead.h"
#include "modGltfWrite.h"
#include "modImportProcess.h"
#include "modLike.h"
#include "modModels.h"
#include "modNewScene.h"
#include "modPictures.h"
#include "modProcess.h"

namespace {

struct ConvertOptions {
    std::string In{}, Out{}, Like{}, Skin{};
    bool Force = false;
    bool InPlace = false; ///< Out is Like
};

bool IsModelName(const std::string& path)
{
    return LowerCase(ExtensionOf(path)) == "mvm";
}

bool IsGltfName(const std::string& path)
{
    const std::string extension = LowerCase(ExtensionOf(path));
    return extension == "glb" || extension == "gltf";
}

void NoteAll(const std::vector<std::string>& notes)
{
    for (const std::string& note : notes) {
        Note(note);
    }
}

bool WriteFiles(const std::vector<NamedFile>& files, const std::string& folder, const std::string& first)
{
    for (size_t i = files.size(); i-- > 0;) { // the file that names the others comes last
        const std::string path = i == 0 ? first : folder + files[i].Name;
        FileSpokenOf = path;
        if (!SaveGuarded("convert", path, {}, [&](const PartWriter& write) { write(files[i].Bytes); })) {
            return false;
        }
    }
    return true;
}

/// Whether files may be written under these names beside the one that the user named.
bool MayWriteAll(const std::vector<NamedFile>& files, const std::string& folder, const ConvertOptions& options)
{
    const bool isReplaced = IsPlainFile(options.Out); // and its files with it
    for (size_t i = 1; i < files.size(); ++i) {
        const std::string path = folder + files[i].Name;
        if (IsFolder(path) || (IsPlainFile(path) && !isReplaced)) {
            Tell("\"" + path + "\" is there already; take another name, or remove it first.");
            return false;
        }
        if (files[i].Name.ends_with(".png") && !MayWrite(path, WrittenKind::Picture, {options.In})) {
            return false;
        }
    }
    return true;
}

ExitCode ConvertOut(const ConvertOptions& options)
{
    if (!MayWrite(options.Out, WrittenKind::Gltf, {options.In}) || !OpenModel(options.In)) {
        return ExitCode::Failed;
    }
    LogGoesTo = LogTarget::Messages; // of its textures
    const std::string folder(DirectoryOf(options.Out));
    ExchangeModel model;
    std::string error;
    std::vector<NamedFile> files(1);
    const std::string name(FileNameOf(options.Out));
    const bool isBinary = LowerCase(ExtensionOf(name)) == "glb";
    const std::string stem = name.substr(0, name.size() - ExtensionOf(name).size() - 1);
    bool made = ExchangeFromScene(std::string(DirectoryOf(options.In)), &model, &error);
    ForgetModel(); // its memory is wanted for the file
    made = made && (isBinary ? GlbOf(model, &files[0].Bytes, &error) : GltfFilesOf(model, stem, &files, &error));
    if (!made) {
        Tell(error);
        return ExitCode::Failed;
    }
    NoteAll(model.Notes);
    return MayWriteAll(files, folder, options) && WriteFiles(files, folder, options.Out) ? ExitCode::Done
                                                                                         : ExitCode::Failed;
}

bool ReadExchange(const ConvertOptions& options, ExchangeModel* model)
{
    std::string bytes;
    std::string error;
    std::string messages;
    const bool isGltf = IsGltfName(options.In);
    const bool read = isGltf ? ReadWhole(options.In, &bytes, &error)
                             : RunImporter(ProgramFolder() + "/bwrt-import", options.In, &bytes, &messages, &error);
    if (!messages.empty()) {
        Note(messages);
    }
    if (!read || !ReadGltf(bytes, std::string(DirectoryOf(options.In)), model, &error)) {
        Tell(error);
        return false;
    }
    NoteAll(model->Notes);
    return true;
}

/// Saves the scene with its pictures, which are new files, or leaves nothing.
bool SaveWithMaps(const std::string& out, const std::vector<MapFile>& maps)
{
    size_t written = 0;
    bool good = true;
    while (good && written < maps.size()) {
        const MapFile& map = maps[written];
        FileSpokenOf = map.Path;
        good = SaveGuarded("convert", map.Path, {}, [&](const PartWriter& write) { write(map.Bytes); });
        written += good ? 1 : 0;
    }
    if (good && SaveModel(out, {out, false})) {
        return true;
    }
    for (size_t i = 0; i < written; ++i) {
        std::error_code ignored;
        std::filesystem::remove(maps[i].Path, ignored);
    }
    return false;
}

ExitCode ConvertIn(const ConvertOptions& options)
{
    if (options.InPlace && !IsSameFile(options.Like, options.Out)) {
        Tell("--in-place is for an OUT that is the model of --like.");
        return ExitCode::Failed;
    }
    if (!options.InPlace && !options.Like.empty() && IsSameFile(options.Like, options.Out)) {
        Tell("\"" + options.Out + "\" is the model of --like itself; --in-place writes to it.");
        return ExitCode::Failed;
    }
    const bool isUsable = options.InPlace ? IsUsable({{}, true}, {options.Out}, {options.In})
                                          : IsUsable({options.Out, false}, {options.In}, {options.Like});
    if (!isUsable) {
        return ExitCode::Failed;
    }
    ExchangeModel model;
    if (!ReadExchange(options, &model)) {
        return ExitCode::Failed;
    }
    std::vector<std::string> notes;
    std::vector<MapFile> maps;
    std::string error;
    bool isDoubtful = false;
    if (!options.Like.empty()) {
        FileSpokenOf = options.Like;
        if (!OpenModel(options.Like)) {
            return ExitCode::Failed;
        }
        FileSpokenOf = options.In;
    } else {
        ForgetModel();
    }
    const NewSceneOptions wanted{options.Skin, std::string(DirectoryOf(options.Out))};
    const bool done = options.Like.empty() ? SceneFromExchange(model, wanted, &maps, &notes, &error)
                                           : MergeIntoScene(model, &isDoubtful, &notes, &error);
    for (const std::string& note : notes) {
        isDoubtful ? Tell(note) : Note(note);
    }
    if (!done) {
        Tell(error);
        return ExitCode::Failed;
    }
    if (isDoubtful && !options.Force) {
        Tell("Nothing is written; --force takes the shape as it stands.");
        return ExitCode::Failed;
    }
    ModelOpen = true;
    return SaveWithMaps(options.Out, maps) ? ExitCode::Done : ExitCode::Failed;
}

ExitCode Convert(const ConvertOptions& options)
{
    if (IsFolder(options.Out)) { // its save would fail when the files beside it are written
        Tell("\"" + options.Out + "\" is a folder.");
        return ExitCode::Failed;
    }
    if (IsModelName(options.In) && IsGltfName(options.Out)) {
        if (!options.Like.empty() || !options.Skin.empty()) {
            Tell("--like and --skin are for the way back to a model.");
            return ExitCode::Failed;
        }
        return ConvertOut(options);
    }
    const std::vector<std::string> others = {"fbx", "dae", "obj", "x"};
    const bool isOther = std::find(others.begin(), others.end(), LowerCase(ExtensionOf(options.In))) != others.end();
    if ((IsGltfName(options.In) || isOther) && IsModelName(options.Out)) {
        return ConvertIn(options);
    }
    Tell("One of the two files is a model (.mvm); the other one is .glb or .gltf, or, to be read, .fbx, .dae, .obj or "
         ".x too.");
    return ExitCode::Failed;
}

} // namespace

void AddConvertCommand(CLI::App* program)
{
    auto options = std::make_shared<ConvertOptions>();
    CLI::App* command = program->add_subcommand(
        "convert", "Take a model to modelling programs as glTF, and back; read other formats into a new model");
    command->footer("Examples:\n  bwrt convert beast.mvm beast.glb\n  bwrt convert beast.glb new.mvm --like beast.mvm\n"
                    "  bwrt convert creature.fbx creature.mvm");
    command->add_option("IN", options->In, "File to read: .mvm, .glb, .gltf, .fbx, .dae, .obj or .x")
        ->required()
        ->type_name("FILE");
    command->add_option("OUT", options->Out, "File to write: .glb or .gltf for a model, .mvm for anything else")
        ->required()
        ->type_name("FILE");
    auto* like = command
                     ->add_option("--like", options->Like,
                                  "Model that IN was made from: its bones, materials, textures, instances, names and "
                                  "order stay")
                     ->type_name("FILE");
    command->add_flag("--force", options->Force, "Take the shape also where the skeleton stands elsewhere")
        ->needs(like);
    command->add_flag("--in-place", options->InPlace, "Write to the model of --like itself, which OUT names too")
        ->needs(like);
    command->add_option("--skin", options->Skin, "Mesh that alone becomes the skin of a new model")
        ->type_name("NAME")
        ->excludes(like);
    command->callback(
        [options] { Outcome = ForEachModel({options->In}, [&](const std::string&) { return Convert(*options); }); });
}
