#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "app/modGuard.h"
#include "app/modVersion.h"
#include "modCommandLine.h"
#include "modCommands.h"
#include "model/modTexture.h"
#include "modModels.h"
#include "modPicture.h"

namespace {

ExitCode RunCommandLine()
{
    CLI::App program(std::string(ProgramTitle) + ": bone assignments of creature models, from the command line",
                     "bwrt");
    program.set_version_flag("--version", VersionText);
    program.require_subcommand(1);
    program.allow_windows_style_options(false); // a path may begin with a slash
    program.fallthrough();
    program.footer("bwrt COMMAND --help tells more of each command, with an example.\n"
                   "Exit codes: 0 done or clean, 1 findings or differences, 2 could not be done.");
    bool quiet = false;
    bool verbose = false;
    bool noAliases = false;
    auto* quietFlag = program.add_flag("-q,--quiet", quiet, "Say nothing but results, warnings and failures");
    program.add_flag("-v,--verbose", verbose, "Say what the window's log would say")->excludes(quietFlag);
    program.add_flag("--no-aliases", noAliases, "Leave the alias files out, as with Bone Alias Names unticked");
    // The commands begin when all options are read.
    program.parse_complete_callback([&] {
        LoudnessWanted = quiet ? Loudness::Quiet : verbose ? Loudness::Verbose : Loudness::Usual;
        AliasesWanted = !noAliases;
        TexturesWanted = false;
    });
    AddCheckCommand(&program);
    AddReportCommand(&program);
    AddDiffCommand(&program);
    AddMirrorCommand(&program);
    AddEditCommands(&program);
    AddAliasCommands(&program);
    AddWeightsCommands(&program);
    AddNewCommand(&program);
    AddPictureCommand(&program);
    try {
        program.parse(std::vector<std::string>(ProgramArguments.rbegin(), ProgramArguments.rend()));
        return Outcome;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            program.exit(error); // help or version
            return ExitCode::Done;
        }
        const auto command = std::find_if(ProgramArguments.begin(), ProgramArguments.end(),
                                          [](const std::string& word) { return !word.starts_with('-'); });
        const std::vector<CLI::App*> commands = program.get_subcommands([](const CLI::App*) { return true; });
        const bool known = command == ProgramArguments.end() ||
                           std::any_of(commands.begin(), commands.end(),
                                       [&](const CLI::App* one) { return one->get_name() == *command; });
        Tell((known ? std::string(error.what()) : "There is no command \"" + *command + "\".") +
             "\nbwrt --help and bwrt COMMAND --help tell what can be said.");
        return ExitCode::Failed;
    }
}

} // namespace

int main(int argc, char** argv)
{
    ExitCode code = ExitCode::Failed;
    try {
        PrepareOutput();
        ProgramArguments = CommandLineArguments(argc, argv);
        code = RunCommandLine();
    } catch (const std::exception& exception) {
        Tell(WordsOf(exception));
    }
    ClearProgressLine();
    if (!FlushOutput()) {
        Tell("The results could not be written.");
        code = ExitCode::Failed;
    }
    return static_cast<int>(code);
}
