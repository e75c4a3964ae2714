#include <algorithm>
#include <exception>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/modGuard.h"
#include "app/modVersion.h"
#include "modCommandLine.h"
#include "modCommands.h"
#include "model/modTexture.h"
#include "modModels.h"
#include "modPicture.h"

namespace {

/// Adds the names of the options that take a value, of a command and those below it.
void AddValued(const CLI::App& command, std::set<std::string>* names)
{
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_items_expected_max() > 0) {
            for (const std::string& name : option->get_lnames()) {
                names->insert("--" + name);
            }
            for (const std::string& name : option->get_snames()) {
                names->insert("-" + name);
            }
        }
    }
    for (const CLI::App* one : command.get_subcommands([](const CLI::App*) { return true; })) {
        AddValued(*one, names);
    }
}

/// The words of the command line; to file names that the library would take for lists or marks of its own, the folder
/// that they are in is added.
std::vector<std::string> WithPlainNames(const CLI::App& program)
{
    std::set<std::string> valued;
    AddValued(program, &valued);
    std::vector<std::string> words = ProgramArguments;
    for (size_t i = 0; i < words.size(); ++i) {
        const bool special = words[i] == "++" || (words[i].starts_with('[') && words[i].ends_with(']'));
        if (special && (i == 0 || !valued.contains(words[i - 1]))) {
            words[i].insert(0, "./");
        }
    }
    return words;
}

/// Says what is wrong with the words of the command line; the library names neither an unknown command nor an option in
/// front of all commands.
void TellOfMistake(const CLI::App& program, const std::string& words)
{
    const auto command = std::find_if(ProgramArguments.begin(), ProgramArguments.end(),
                                      [](const std::string& word) { return !word.starts_with('-'); });
    if (command == ProgramArguments.end()) {
        const bool unknown =
            !ProgramArguments.empty() && program.get_option_no_throw(ProgramArguments.front()) == nullptr;
        Tell((unknown ? "There is no option \"" + ProgramArguments.front() + "\"." : "A command is missing.") +
             "\nTry \"bwrt --help\".");
        return;
    }
    const std::vector<const CLI::App*> commands = program.get_subcommands([](const CLI::App*) { return true; });
    const bool known =
        std::any_of(commands.begin(), commands.end(), [&](const CLI::App* one) { return one->get_name() == *command; });
    Tell(known ? words + "\nTry \"bwrt " + *command + " --help\"."
               : "There is no command \"" + *command + "\".\nTry \"bwrt --help\".");
}

ExitCode RunCommandLine()
{
    CLI::App program(std::string(ProgramTitle) + ": bone assignments of creature models, from the command line",
                     "bwrt");
    program.set_version_flag("--version", VersionText);
    program.require_subcommand(1);
    program.get_formatter()->label("SUBCOMMAND", "COMMAND");
    program.get_formatter()->label("SUBCOMMANDS", "COMMANDS");
    program.get_formatter()->label("Subcommands", "Commands");
    program.get_formatter()->label("TEXT", "WORD");
    program.get_formatter()->label("FLOAT", "NUMBER");
    program.allow_windows_style_options(false); // a path may begin with a slash
    program.fallthrough();
    program.footer("bwrt COMMAND --help tells more of each command, with an example. The options above go with each.\n"
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
    AddConvertCommand(&program);
    AddPictureCommand(&program);
    std::vector<std::string> words = WithPlainNames(program);
    std::reverse(words.begin(), words.end()); // as the library takes them
    try {
        program.parse(std::move(words));
        return Outcome;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            std::ostringstream text; // help or version
            program.exit(error, text, text);
            Put(text.str());
            return ExitCode::Done;
        }
        TellOfMistake(program, error.what());
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
