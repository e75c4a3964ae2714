#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"
#include "checks/modCheckModel.h"
#include "checks/modCheckText.h"
#include "modCodePage.h"
#include "modCommands.h"
#include "modEditing.h"
#include "model/modStrings.h"
#include "model/modTexture.h"
#include "modFileListing.h"
#include "modJson.h"
#include "modModels.h"

namespace {

struct CheckOptions {
    std::vector<std::string> Models{}, Only{}, Ignored{};
    bool Strict = false, NoHints = false, AsJson = false;
    Json::array_t Files{}; ///< what will be printed
};

const char* NameOf(Severity grade)
{
    switch (grade) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    default:
        return "hint";
    }
}

/// A message of several lines as one.
std::string OneLine(std::string text)
{
    std::erase(text, '\r');
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// Reads the textures, each as a load of the model would.
void CheckTextures(const std::string& model, std::vector<Finding>* findings)
{
    const std::string folder(DirectoryOf(model));
    FolderNames names;
    const LogTarget before = std::exchange(LogGoesTo, LogTarget::AllKept);
    for (const MvmMaterial& material : Materials) {
        KeptLog.clear();
        int16_t texture = 0;
        LoadMaterialTexture(material, folder, &names, &texture);
        for (const std::string& line : KeptLog) {
            findings->push_back({.Code = "texture",
                                 .What = "Material " + QuotedName(material.Name) + ": " + OneLine(line),
                                 .Advice = "Put the file beside the model, as an uncompressed BMP with sides that are "
                                           "powers of two."});
        }
    }
    LogGoesTo = before;
}

bool IsWanted(const Finding& finding, const CheckOptions& options)
{
    const auto names = [&](const std::vector<std::string>& codes) {
        return std::find(codes.begin(), codes.end(), finding.Code) != codes.end();
    };
    const bool hint = finding.Grade == Severity::Hint && options.NoHints;
    return !hint && !names(options.Ignored) && (options.Only.empty() || names(options.Only));
}

void PrintFinding(const std::string& model, const Finding& finding)
{
    std::string place = model;
    if (!finding.Lines.empty()) {
        place += ":" + std::to_string(finding.Lines.front());
    }
    std::string text = place + ": " + NameOf(finding.Grade) + " " + finding.Code + ": " + finding.What + "\n";
    if (finding.Lines.size() > 1) {
        text += "    Lines " + FirstPlaces(finding.Lines) + "\n";
    }
    if (!finding.Vertices.empty()) {
        text += "    Vertices " + FirstPlaces(finding.Vertices) + "\n";
    }
    Put(text + "    " + finding.Advice + "\n");
}

Json JsonOf(const Finding& finding)
{
    Json json{{"code", finding.Code}, {"severity", NameOf(finding.Grade)}, {"count", finding.Count}};
    const auto add = [&json](const char* key, const auto& value) {
        if (!value.empty()) {
            json[key] = value;
        }
    };
    add("lines", finding.Lines);
    add("mesh", finding.Mesh);
    add("bone", finding.Bone);
    add("vertices", finding.Vertices);
    add("faces", finding.Faces);
    json["what"] = finding.What;
    json["advice"] = finding.Advice;
    return json;
}

/// False when the file cannot be loaded; what was found is in *findings all the same.
bool FindAll(const std::string& model, std::vector<Finding>* findings)
{
    std::string error;
    if (!CheckText(model, findings, &error)) {
        Tell(error);
        return false;
    }
    LogGoesTo = LogTarget::Kept;
    KeptLog.clear();
    const bool opened = OpenModel(model);
    LogGoesTo = LogTarget::Verbose;
    if (!opened) {
        for (const std::string& line : KeptLog) {
            Tell(line);
        }
        return false;
    }
    CheckAssignments(findings);
    CheckRecords(findings);
    CheckTextures(model, findings);
    CheckShapes(findings);
    CheckHints(findings);
    return true;
}

ExitCode Check(CheckOptions* options, const std::string& model)
{
    std::vector<Finding> found;
    const bool complete = FindAll(model, &found);
    std::vector<Finding> wanted;
    std::copy_if(found.begin(), found.end(), std::back_inserter(wanted),
                 [&](const Finding& finding) { return IsWanted(finding, *options); });
    std::stable_sort(wanted.begin(), wanted.end(),
                     [](const Finding& a, const Finding& b) { return a.Grade < b.Grade; });
    if (options->AsJson) {
        Json findings = Json::array();
        for (const Finding& finding : wanted) {
            findings.push_back(JsonOf(finding));
        }
        options->Files.push_back({{"file", model}, {"complete", complete}, {"findings", findings}});
    } else {
        for (const Finding& finding : wanted) {
            PrintFinding(model, finding);
        }
    }
    if (!complete) {
        return ExitCode::Failed;
    }
    const bool counts = std::any_of(wanted.begin(), wanted.end(), [&](const Finding& finding) {
        return options->Strict || finding.Grade != Severity::Hint;
    });
    return counts ? ExitCode::Findings : ExitCode::Done;
}

std::string HelpOnCodes()
{
    std::string text = "Example:\n  bwrt check beast.mvm --ignore texture --strict\n\nCodes:\n";
    constexpr size_t width = 18;
    for (const FindingKind& kind : FindingKinds()) {
        std::string code = kind.Code;
        code.resize(width, ' ');
        text += "  " + code + kind.Meaning + "\n";
    }
    return text;
}

} // namespace

void AddCheckCommand(CLI::App* program)
{
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command =
        program->add_subcommand("check", "Tell what would go wrong with a model in the game or at the next save");
    command->footer(HelpOnCodes());
    AddModels(command, &options->Models);
    std::vector<std::string> codes;
    for (const FindingKind& kind : FindingKinds()) {
        codes.emplace_back(kind.Code);
    }
    const CLI::Validator known = CLI::Validator(CLI::IsMember(codes)).description("");
    command->add_option("--only", options->Only, "Findings with this code alone; can be given more than once")
        ->take_all()
        ->allow_extra_args(false)
        ->delimiter(',')
        ->type_name("CODE")
        ->check(known);
    command->add_option("--ignore", options->Ignored, "No findings with this code; can be given more than once")
        ->take_all()
        ->allow_extra_args(false)
        ->delimiter(',')
        ->type_name("CODE")
        ->check(known);
    command->add_flag("--strict", options->Strict, "Hints make the exit code 1 as well");
    command->add_flag("--no-hints", options->NoHints, "Leave hints out");
    command->add_flag("--json", options->AsJson, "Print JSON");
    AddThresholds(command);
    command->callback([options] {
        Outcome = ForEachModel(options->Models, [&](const std::string& model) { return Check(options.get(), model); });
        if (options->AsJson) {
            PutJson({{"files", options->Files}});
        }
    });
}
