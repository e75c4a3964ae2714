#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/modReports.h"
#include "modCommands.h"
#include "modEditing.h"
#include "modModels.h"

namespace {

struct Report {
    const char* Name;
    void (*Write)();
};

/// In the order of the window's menu.
constexpr Report reports[] = {
    {"meshes", ReportMeshes},
    {"materials", ReportMaterials},
    {"instances", ReportInstances},
    {"bones", ReportBones},
    {"mesh-names", ReportMeshNames},
    {"material-names", ReportMaterialNames},
    {"instance-names", ReportInstanceNames},
    {"bone-names", ReportBoneNames},
    {"texture-filenames", ReportTextureFilenames},
};

struct ReportOptions {
    std::vector<std::string> Models{};
    std::vector<std::string> Only{};
};

ExitCode WriteReports(const ReportOptions& options, const std::string& model)
{
    if (!OpenModel(model)) {
        return ExitCode::Failed;
    }
    const LogTarget before = std::exchange(LogGoesTo, LogTarget::Output);
    for (const Report& report : reports) {
        if (options.Only.empty() ||
            std::find(options.Only.begin(), options.Only.end(), report.Name) != options.Only.end()) {
            report.Write();
        }
    }
    LogGoesTo = before;
    return ExitCode::Done;
}

} // namespace

void AddReportCommand(CLI::App* program)
{
    auto options = std::make_shared<ReportOptions>();
    CLI::App* command = program->add_subcommand("report", "Print the reports of the menu Statistics");
    command->footer("Example:\n  bwrt report beast.mvm --only bones --only texture-filenames");
    AddModels(command, &options->Models);
    std::vector<std::string> names;
    for (const Report& report : reports) {
        names.emplace_back(report.Name);
    }
    command->add_option("--only", options->Only, "This report alone; can be given more than once")
        ->take_all()
        ->allow_extra_args(false)
        ->check(CLI::IsMember(names));
    command->callback([options] {
        Outcome =
            ForEachModel(options->Models, [&](const std::string& model) { return WriteReports(*options, model); });
    });
}
