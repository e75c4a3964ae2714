#include "modModels.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <filesystem>
#include <set>
#include <utility>

#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "modCodePage.h"
#include "model/modDocument.h"
#include "model/modMvmRead.h"
#include "model/modStrings.h"
#include "model/modTexture.h"
#include "modFiles.h"
#include "modProcess.h"
#include "weights/modBoneAlias.h"

namespace {

/// A whole number from 1 to `last`, else 0.
int32_t NumberIn(const std::string& text, int32_t last)
{
    int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end && number >= 1 && number <= last ? number : 0;
}

/// The bone that has `text` as its name, or as its alias; -1 for several.
int16_t BoneCalled(const std::string& text, bool byAlias, bool shadow)
{
    std::vector<int16_t> ofKind;
    std::vector<int16_t> others;
    for (int32_t bone = 1; bone <= std::min<int32_t>(BoneCount(), INT16_MAX); ++bone) {
        const MvmBone& named = Bones[bone];
        if (Utf8FromCodePage(byAlias ? named.Alias : named.Name) == text) {
            (named.IsShadow == shadow ? ofKind : others).push_back(static_cast<int16_t>(bone));
        }
    }
    const std::vector<int16_t>& found = ofKind.empty() ? others : ofKind;
    return found.size() > 1 ? int16_t{-1} : found.empty() ? int16_t{0} : found.front();
}

const char* NameOf(WrittenKind kind)
{
    switch (kind) {
    case WrittenKind::Model:
        return "model";
    case WrittenKind::Weights:
        return "weights file";
    case WrittenKind::Gltf:
        return "glTF file";
    default:
        return "PNG picture";
    }
}

/// Whether a plain file is empty or begins like one of this kind. A model can have anything before its first block.
bool IsOfKind(const std::string& path, WrittenKind kind)
{
    if (kind == WrittenKind::Alias) {
        return true; // anything can be one, and only --replace leads here
    }
    OpenedFile file;
    std::string start(1 << 16, '\0');
    size_t size = 0;
    std::string error;
    if (!OpenForReading(path, &file, &error) || !ReadOn(&file, start.data(), start.size(), &size, &error)) {
        return false;
    }
    start.resize(size);
    if (kind == WrittenKind::Weights || kind == WrittenKind::Picture) {
        return start.empty() || start.starts_with(kind == WrittenKind::Weights ? "BWRT" : "\x89PNG");
    }
    if (kind == WrittenKind::Gltf) {
        const size_t first = start.find_first_not_of(" \t\r\n");
        const bool isText =
            first != std::string::npos && start[first] == '{' && start.find("\"asset\"") != std::string::npos;
        return start.empty() || start.starts_with("glTF") || isText;
    }
    const auto holds = [&](const char* keyword) { return HoldsAnyCase(start, keyword); };
    const bool named = holds("fileinfo") || holds("bone ") || holds("mesh ") || holds("skin ") || holds("material ");
    return start.empty() || (named && start.find('{') != std::string::npos);
}

/// While a model is saved its old content stands beside it under this name, and goes afterwards.
bool AreSafeFromGuards(const std::vector<std::string>& written, const std::vector<std::string>& read)
{
    for (const std::string& out : written) {
        for (const std::string& file : read) {
            if (IsSameFile(out + ".old", file)) {
                Tell("A save of \"" + out + "\" would take away \"" + file +
                     "\", which the command reads; rename that file first.");
                return false;
            }
        }
    }
    return true;
}

bool AreSeparate(const std::vector<std::string>& models)
{
    std::set<std::string> seen;
    for (const std::string& model : models) {
        std::error_code ignored;
        if (!seen.insert(std::filesystem::weakly_canonical(model, ignored).string()).second) {
            Tell("\"" + model + "\" is named twice.");
            return false;
        }
    }
    return true;
}

/// Reads the alias files, which serve all models of a call.
void ReadAliasesOnce()
{
    static bool read = false;
    if (!read) {
        read = true;
        const std::string file = std::exchange(FileSpokenOf, {});
        LoadAlias();
        FileSpokenOf = file;
    }
}

} // namespace

bool OpenModel(const std::string& path)
{
    ForgetModel();
    SkinScale = 1;
    SkinOffset = {};
    EditTarget = 0;
    FileKind kind = FileKind::None;
    std::string error;
    if (KindOfFile(path, &kind, &error) && kind == FileKind::None) {
        Tell("Cannot find file \"" + path + "\".");
        return false;
    }
    AliasesOn = AliasesWanted;
    if (AliasesOn) {
        ReadAliasesOnce();
    }
    const LogTarget target = LogGoesTo;
    if (LogGoesTo == LogTarget::Verbose) {
        LogGoesTo = LogTarget::Messages;
    }
    const int64_t lines = LogLines;
    const bool read = LoadMVM(path);
    LogGoesTo = target;
    // Without pictures to complain of, the reader writes to the log only about a file that is no model.
    const bool isModel = TexturesWanted || LogLines == lines;
    if (!read || !isModel || BoneCount() + MaterialCount() + MeshCount() + InstanceCount() == 0) {
        if (read && LogLines == lines) {
            Tell("The file holds no material, bone, mesh or instance.");
        }
        return false;
    }
    ModelOpen = true;
    CurrentFile = path;
    MarkSceneSaved();
    if (AliasesOn) {
        ApplyAliases();
    }
    return true;
}

bool MayWrite(const std::string& out, WrittenKind kind, const std::vector<std::string>& read)
{
    for (const std::string& file : read) {
        if (IsSameFile(out, file)) {
            Tell("\"" + out + "\" is a file that the command reads.");
            return false;
        }
    }
    FileKind found = FileKind::None;
    std::string error;
    if (!KindOfFile(out, &found, &error) || found != FileKind::Plain) {
        return true; // whatever is wrong with it, the save will say so
    }
    if (IsReadOnly(out)) {
        Tell("Can't overwrite file.\nFile is marked read only.");
        return false;
    }
    if (!IsOfKind(out, kind)) {
        Tell("\"" + out + "\" is there and is no " + NameOf(kind) + "; take another name, or remove it first.");
        return false;
    }
    return true;
}

bool IsUsable(const SaveTarget& target, const std::vector<std::string>& models, const std::vector<std::string>& others)
{
    std::vector<std::string> read = models;
    read.insert(read.end(), others.begin(), others.end());
    if (target.InPlace) {
        return AreSeparate(models) && AreSafeFromGuards(models, read);
    }
    if (target.Out.empty() && !target.InPlace) {
        Tell("Say where to: -o FILE, or --in-place to write to the model itself.");
        return false;
    }
    if (models.size() > 1) {
        Tell("-o takes one model. Several are changed with --in-place.");
        return false;
    }
    if (IsSameFile(target.Out, models.front())) {
        Tell("\"" + target.Out + "\" is the model itself; --in-place writes to it.");
        return false;
    }
    return MayWrite(target.Out, WrittenKind::Model, read) && AreSafeFromGuards({target.Out}, read);
}

bool SaveModel(const std::string& model, const SaveTarget& target)
{
    const std::string& out = target.InPlace ? model : target.Out;
    const LogTarget before = std::exchange(LogGoesTo, LogTarget::Messages);
    const std::string spokenOf = std::exchange(FileSpokenOf, out);
    const SaveOutcome outcome = SaveModelFile(out);
    FileSpokenOf = spokenOf;
    LogGoesTo = before;
    return outcome == SaveOutcome::Saved;
}

ExitCode ForEachModel(const std::vector<std::string>& models, const std::function<ExitCode(const std::string&)>& work)
{
    ExitCode worst = ExitCode::Done;
    for (const std::string& model : models) {
        FileSpokenOf = model;
        WasStopped = false;
        ExitCode code = ExitCode::Failed;
        try {
            code = work(model);
        } catch (const std::exception& exception) {
            Tell(WordsOf(exception));
        }
        worst = std::max(worst, WasStopped ? ExitCode::Failed : code);
    }
    FileSpokenOf.clear();
    return worst;
}

int16_t FindBone(const std::string& text, bool shadow, bool none)
{
    if (none && text == "none") {
        return 0;
    }
    for (const bool byAlias : {false, true}) {
        const int16_t bone = BoneCalled(text, byAlias, shadow);
        if (bone > 0) {
            return bone;
        }
        if (bone < 0) {
            Tell("Several bones are called \"" + text + "\"; give the number of one.");
            return -1;
        }
    }
    if (const int32_t number = NumberIn(text, std::min<int32_t>(BoneCount(), INT16_MAX))) {
        return static_cast<int16_t>(number);
    }
    Tell("There is no bone \"" + text + "\".");
    return -1;
}

int16_t FindMesh(const std::string& text)
{
    const int32_t last = std::min<int32_t>(MeshCount(), INT16_MAX);
    int16_t found = 0;
    for (int32_t mesh = 1; mesh <= last; ++mesh) {
        if (Utf8FromCodePage(Meshes[mesh].Name) == text) {
            if (found != 0) {
                Tell("Several meshes are called \"" + text + "\"; give the number of one.");
                return -1;
            }
            found = static_cast<int16_t>(mesh);
        }
    }
    if (found == 0 && (text == "skin" || text == "shadow")) {
        found = text == "skin" ? SkinMesh : ShadowMesh;
        if (!IsValidMesh(found)) {
            Tell("The model has no " + text + ".");
            return -1;
        }
    }
    if (found == 0) {
        found = static_cast<int16_t>(NumberIn(text, last));
    }
    if (found == 0) {
        Tell("There is no mesh \"" + text + "\".");
        return -1;
    }
    return found;
}
