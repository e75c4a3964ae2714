#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"
#include "dialogs/modReports.h"
#include "modCodePage.h"
#include "modCommands.h"
#include "modEditing.h"
#include "model/modNumbers.h"
#include "modJson.h"
#include "modModels.h"

namespace {

/// With the digits that a float has.
Json JsonOf(float value)
{
    return std::stod(FloatToText(value));
}

Json JsonOf(const Vec3& value)
{
    return {JsonOf(value.X), JsonOf(value.Y), JsonOf(value.Z)};
}

Json JsonOf(const MvmMesh& mesh)
{
    return {{"name", Utf8FromCodePage(mesh.Name)},
            {"vertices", mesh.VertexCount()},
            {"textureCoordinates", mesh.TexCoordCount()},
            {"normals", mesh.NormalCount()},
            {"faces", mesh.FaceCount()},
            {"materials", mesh.MeshMaterialCount()}};
}

Json JsonOf(const MvmMaterial& material)
{
    return {{"name", Utf8FromCodePage(material.Name)},
            {"colorMap", Utf8FromCodePage(material.ColorMap)},
            {"alphaMap", Utf8FromCodePage(material.OpacityMap)},
            {"bumpMap", Utf8FromCodePage(material.BumpMap)}};
}

Json JsonOf(const MvmInstance& instance)
{
    return {{"name", Utf8FromCodePage(instance.Name)},
            {"position", JsonOf(instance.Position)},
            {"rotation", JsonOf(instance.Rotation)},
            {"scale", JsonOf(instance.Scale)}};
}

Json JsonOf(const MvmBone& bone)
{
    return {{"name", Utf8FromCodePage(bone.Name)},
            {"position", JsonOf(bone.Position)},
            {"rotation", JsonOf(bone.Rotation)},
            {"ratio", JsonOf(bone.Ratio)}};
}

template <typename Record>
Json All(const Array1<Record>& records)
{
    Json list = Json::array();
    for (const Record& record : records) {
        list.push_back(JsonOf(record));
    }
    return list;
}

template <typename Record>
Json Names(const Array1<Record>& records)
{
    Json list = Json::array();
    for (const Record& record : records) {
        list.push_back(Utf8FromCodePage(record.Name));
    }
    return list;
}

Json TextureFilenames()
{
    Json list = Json::array();
    for (const MvmMaterial& material : Materials) {
        for (const std::string* map : {&material.ColorMap, &material.OpacityMap, &material.BumpMap}) {
            if (!map->empty()) {
                list.push_back(Utf8FromCodePage(*map));
            }
        }
    }
    return list;
}

struct Report {
    const char* Name;
    void (*Write)();
    Json (*AsJson)();
};

/// In the order of the window's menu.
constexpr Report reports[] = {
    {"meshes", ReportMeshes, [] { return All(Meshes); }},
    {"materials", ReportMaterials, [] { return All(Materials); }},
    {"instances", ReportInstances, [] { return All(Instances); }},
    {"bones", ReportBones, [] { return All(Bones); }},
    {"mesh-names", ReportMeshNames, [] { return Names(Meshes); }},
    {"material-names", ReportMaterialNames, [] { return Names(Materials); }},
    {"instance-names", ReportInstanceNames, [] { return Names(Instances); }},
    {"bone-names", ReportBoneNames, [] { return Names(Bones); }},
    {"texture-filenames", ReportTextureFilenames, TextureFilenames},
};

struct ReportOptions {
    std::vector<std::string> Models{};
    std::vector<std::string> Only{};
    bool AsJson = false;
    Json::array_t Files{}; ///< what will be printed
};

ExitCode WriteReports(ReportOptions* options, const std::string& model)
{
    if (!OpenModel(model)) {
        options->Files.push_back({{"file", model}, {"reports", nullptr}});
        return ExitCode::Failed;
    }
    Json all = Json::object();
    const LogTarget before = std::exchange(LogGoesTo, LogTarget::Output);
    for (const Report& report : reports) {
        const std::vector<std::string>& only = options->Only;
        if (!only.empty() && std::find(only.begin(), only.end(), report.Name) == only.end()) {
            continue;
        }
        if (options->AsJson) {
            all[report.Name] = report.AsJson();
        } else {
            report.Write();
        }
    }
    LogGoesTo = before;
    options->Files.push_back({{"file", model}, {"reports", std::move(all)}});
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
    command->add_flag("--json", options->AsJson, "Print JSON");
    command->callback([options] {
        Outcome =
            ForEachModel(options->Models, [&](const std::string& model) { return WriteReports(options.get(), model); });
        if (options->AsJson) {
            PutJson({{"files", options->Files}});
        }
    });
}
