#include "weights/modBoneAlias.h"
#include "modFileListing.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "modCodePage.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "modFiles.h"

namespace {

constexpr std::string_view aliasExtension = ".alias";
constexpr size_t fieldCount = 5;

/// The five fields of a line; nothing when it has more or fewer.
std::optional<std::array<std::string_view, fieldCount>> SplitLine(std::string_view line)
{
    std::array<std::string_view, fieldCount> fields;
    for (size_t field = 0; field + 1 < fieldCount; ++field) {
        const size_t end = line.find(';');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        fields[field] = line.substr(0, end);
        line.remove_prefix(end + 1);
    }
    if (line.find(';') != std::string_view::npos) {
        return std::nullopt;
    }
    fields.back() = line;
    return fields;
}

/// Takes the first line off `text`. CR LF, a lone CR and a lone LF each end a line: people write these files by hand.
std::string_view TakeLine(std::string_view* text)
{
    const size_t end = std::min(text->find_first_of("\r\n"), text->size());
    const std::string_view line = text->substr(0, end);
    text->remove_prefix(end);
    text->remove_prefix(text->starts_with("\r\n") ? 2 : text->empty() ? 0 : 1);
    return line;
}

/// Reads the lines of one file. Invalid ones go to the Info Log; a failure of the whole file gives false.
bool ReadEntries(BoneAliasFile* file, std::string* error)
{
    std::string bytes;
    if (!ReadWhole(file->Path, &bytes, error)) {
        return false;
    }
    std::string_view rest = bytes;
    for (int32_t number = 1; !rest.empty(); ++number) {
        const std::string_view line = TakeLine(&rest);
        if (line.empty()) {
            continue;
        }
        const std::string place = "\"" + file->Path + "\" on line " + std::to_string(number);
        const auto fields = SplitLine(line);
        if (!fields) {
            LogLine("Invalid line in alias " + place + ".");
            continue;
        }
        if (file->Entries.Count() == INT16_MAX) {
            LogLine("Too many lines in alias " + place + ", the rest is left out.");
            return true;
        }
        double value = 0;
        BoneAliasEntry entry{.Bone = std::string((*fields)[0]),
                             .Alias = std::string((*fields)[1]),
                             .Link = std::string((*fields)[2]),
                             .Mirror = std::string((*fields)[3])};
        if (!LeadingNumber((*fields)[4], &value) || !ToFloat(value, &entry.Number)) {
            *error = "A number is too large in " + place + ".";
            return false;
        }
        file->Entries.Add(std::move(entry));
    }
    return true;
}

void ReadAliasFolder(const std::string& folder)
{
    for (const std::string& name : ListFiles(folder)) {
        if (!LowerCase(name).ends_with(aliasExtension) || AliasFiles.Count() == INT16_MAX) {
            continue;
        }
        const std::string stem = name.substr(0, name.size() - aliasExtension.size());
        AliasFiles.Add({.Path = folder + name, .Name = CodePageFromUtf8(stem)});
    }
    for (BoneAliasFile& file : AliasFiles) {
        std::string error;
        if (!ReadEntries(&file, &error)) {
            ShowMessage(BoxIcon::Stop, "Runtime error in LoadAlias\n" + error);
            return;
        }
    }
    if (LogDirty) {
        ShowInfoLog();
    }
}

/// Applies the files that serve the mesh.
void ApplyAliasesOf(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    for (int32_t file = 1; file <= AliasFileCount(); ++file) {
        if (AliasFiles[file].Name == Meshes[mesh].Name) {
            ApplyAlias(static_cast<int16_t>(file));
        }
    }
}

} // namespace

void LoadAlias()
{
    if (!IsFolder(ProgramFolder() + "/alias")) {
        ShowMessage(BoxIcon::Warning,
                    "Folder \"" + LowerText(ProgramFolder()) + "\\alias\" does not exist.\nCannot find alias files.");
        return;
    }
    RunGuarded("Runtime error in LoadAlias", [] { ReadAliasFolder(ProgramFolder() + "/alias/"); });
}

void ApplyAliases()
{
    ApplyAliasesOf(SkinMesh);
    ApplyAliasesOf(ShadowMesh);
}

void ApplyAlias(int16_t file)
{
    // Bones by name, in index order: an entry speaks of all bones of its name and links to the last one.
    std::unordered_map<std::string_view, std::vector<int16_t>> bonesByName;
    const int32_t last = std::min<int32_t>(BoneCount(), INT16_MAX);
    for (int32_t bone = 1; bone <= last; ++bone) {
        bonesByName[Bones[bone].Name].push_back(static_cast<int16_t>(bone));
    }
    const auto lastOf = [&](const std::string& name) {
        const auto found = name.empty() ? bonesByName.end() : bonesByName.find(name);
        return found == bonesByName.end() ? int16_t{0} : found->second.back();
    };
    // Of several entries for one name the fields of the last count, but an empty or unknown link leaves an earlier one:
    // each name is settled first, so that many entries for many bones of one name stay cheap.
    struct Settled {
        const std::string* Alias = nullptr;
        int16_t Link = 0;
        int16_t Mirror = 0;
    };
    std::unordered_map<std::string_view, Settled> settledByName;
    for (const BoneAliasEntry& entry : AliasFiles[file].Entries) {
        Settled& settled = settledByName[entry.Bone];
        settled.Alias = &entry.Alias;
        if (const int16_t link = lastOf(entry.Link)) {
            settled.Link = link;
        }
        if (const int16_t mirror = lastOf(entry.Mirror)) {
            settled.Mirror = mirror;
        }
    }
    // All texts are made before the first bone changes.
    std::vector<std::pair<MvmBone*, MvmBone>> changes;
    for (const auto& [name, settled] : settledByName) {
        const auto found = bonesByName.find(name);
        if (found == bonesByName.end()) {
            continue;
        }
        for (const int16_t index : found->second) {
            MvmBone& bone = Bones[index];
            changes.push_back({&bone,
                               {.Alias = *settled.Alias,
                                .LinkBone = settled.Link != 0 ? settled.Link : bone.LinkBone,
                                .MirrorBone = settled.Mirror != 0 ? settled.Mirror : bone.MirrorBone}});
        }
    }
    for (auto& [bone, change] : changes) {
        bone->Alias.swap(change.Alias);
        bone->LinkBone = change.LinkBone;
        bone->MirrorBone = change.MirrorBone;
    }
}

void ClearBoneAliases()
{
    for (MvmBone& bone : Bones) {
        bone.Alias.clear();
        bone.LinkBone = bone.MirrorBone = 0;
    }
}

void FreeAliases()
{
    AliasFiles.Clear();
}
