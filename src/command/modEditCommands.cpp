#include <memory>

#include "app/modMvmDef.h"
#include "modCommands.h"
#include "modEditing.h"
#include "weights/modEdit.h"
#include "weights/modMvmXTools.h"
#include "weights/modSegments.h"

namespace {

/// Options of a command that stands for one of the window's.
struct CommandOptions : EditOptions {
    std::string Bone{}, Other{};
    std::string Rule = "joints";
    std::vector<std::string> Chosen{"skin"}; ///< meshes
    bool All = false;
};

/// Adds a command with the options that all of its kind have.
std::pair<CLI::App*, std::shared_ptr<CommandOptions>> AddCommand(CLI::App* program, const char* name, const char* what,
                                                                 const char* example)
{
    auto options = std::make_shared<CommandOptions>();
    CLI::App* command = program->add_subcommand(name, what);
    command->footer(std::string("Example:\n  ") + example);
    AddEditOptions(command, options.get());
    return {command, options};
}

void AddTarget(CLI::App* command, EditOptions* options)
{
    command->add_flag("--on-shadow", options->OnShadow, "Edit the shadow in place of the skin");
}

void AddChosen(CLI::App* command, CommandOptions* options, const char* what)
{
    command->add_option("--mesh", options->Chosen, what)->take_all()->allow_extra_args(false)->capture_default_str();
}

/// Does `work` for each mesh chosen. Failed when one of them is not there, before anything is done.
ExitCode ForMeshes(const CommandOptions& options, const std::function<void(int16_t)>& work)
{
    std::vector<int16_t> meshes;
    for (const std::string& text : options.Chosen) {
        meshes.push_back(FindMesh(text));
        if (meshes.back() < 1) {
            return ExitCode::Failed;
        }
    }
    const int64_t warnings = Warnings;
    for (const int16_t mesh : meshes) {
        work(mesh);
    }
    return Warnings == warnings ? ExitCode::Done : ExitCode::Failed;
}

void AddAutoAssign(CLI::App* program)
{
    const auto [command, options] =
        AddCommand(program, "auto-assign", "Give each vertex without a bone to the nearest bone",
                   "bwrt auto-assign beast.mvm --by segments -o beast-assigned.mvm");
    AddChosen(command, options.get(), "Mesh to assign: name, number, skin or shadow");
    command
        ->add_option("--by", options->Rule,
                     "What is nearest: the joint (joints), or the bone from its joint to the next ones (segments)")
        ->check(CLI::IsMember({"joints", "segments"}))
        ->capture_default_str();
    command->callback([options = options] {
        Outcome = RunEdit(*options, false, [&] {
            return ForMeshes(*options, options->Rule == "joints" ? AutoAssign : AutoAssignBySegments);
        });
    });
}

void AddNormals(CLI::App* program)
{
    const auto [command, options] =
        AddCommand(program, "normals", "Replace normals by one smooth normal for each vertex",
                   "bwrt normals beast.mvm --mesh skin --mesh Saddle --in-place");
    AddChosen(command, options.get(), "Mesh to make normals for: name, number, skin or shadow");
    command->callback([options = options] {
        Outcome = RunEdit(*options, false, [&] { return ForMeshes(*options, RegenerateNormals); });
    });
}

void AddSwap(CLI::App* program)
{
    const auto [command, options] = AddCommand(program, "swap", "Exchange the vertices of two bones",
                                               "bwrt swap beast.mvm --bone ThighL30 --with ThighR34 --in-place");
    AddTarget(command, options.get());
    command->add_option("--bone", options->Bone, "One bone: name, alias or number")->required();
    command->add_option("--with", options->Other, "The other bone")->required();
    command->callback([options = options] {
        Outcome = RunEdit(*options, true, [&] {
            const int16_t a = FindBone(options->Bone, options->OnShadow);
            const int16_t b = FindBone(options->Other, options->OnShadow);
            if (a < 1 || b < 1) {
                return ExitCode::Failed;
            }
            SwapBones(TargetMesh(), a, b);
            return ExitCode::Done;
        });
    });
}

void AddReassign(CLI::App* program)
{
    const auto [command, options] = AddCommand(program, "reassign", "Give the vertices of one bone to another one",
                                               "bwrt reassign beast.mvm --from none --to Pelvis01 -o whole.mvm");
    AddTarget(command, options.get());
    command->add_option("--from", options->Bone, "Whose vertices: name, alias or number of a bone, or none")
        ->required();
    command->add_option("--to", options->Other, "The bone that gets them")->required();
    command->callback([options = options] {
        Outcome = RunEdit(*options, true, [&] {
            const int16_t from = FindBone(options->Bone, options->OnShadow, true);
            const int16_t to = FindBone(options->Other, options->OnShadow);
            if (from < 0 || to < 1) {
                return ExitCode::Failed;
            }
            ReplaceBone(TargetMesh(), from, to);
            return ExitCode::Done;
        });
    });
}

void AddUnassign(CLI::App* program)
{
    const auto [command, options] = AddCommand(program, "unassign", "Take the vertices from a bone, or from all bones",
                                               "bwrt unassign beast.mvm --bone \"Left Front Paw\" --in-place");
    AddTarget(command, options.get());
    auto* bone = command->add_option("--bone", options->Bone, "The bone: name, alias or number");
    command->add_flag("--all", options->All, "All bones")->excludes(bone);
    command->callback([options = options] {
        Outcome = RunEdit(*options, true, [&] {
            if (options->All) {
                UnassignAll(TargetMesh());
                return ExitCode::Done;
            }
            if (options->Bone.empty()) {
                Tell("No bone selected, would you like to unassign all bones?\nNo. With --all the answer is yes.");
                return ExitCode::Failed;
            }
            const int16_t from = FindBone(options->Bone, options->OnShadow);
            if (from < 1) {
                return ExitCode::Failed;
            }
            ReplaceBone(TargetMesh(), from, 0);
            return ExitCode::Done;
        });
    });
}

} // namespace

void AddEditCommands(CLI::App* program)
{
    AddAutoAssign(program);
    AddNormals(program);
    AddSwap(program);
    AddReassign(program);
    AddUnassign(program);
}
