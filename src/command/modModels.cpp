#include "modModels.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <utility>

#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "modCodePage.h"
#include "model/modDocument.h"
#include "model/modMvmRead.h"
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

} // namespace

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

bool IsAnotherFile(const std::string& out, const std::string& model)
{
    if (IsSameFile(out, model)) {
        Tell("\"" + out + "\" is the model itself.");
        return false;
    }
    return true;
}

bool IsUsable(const SaveTarget& target, const std::vector<std::string>& models)
{
    if (target.Out.empty() && !target.InPlace) {
        Tell("Say where to: -o FILE, or --in-place to write to the model itself.");
        return false;
    }
    if (target.Out.empty()) {
        return true;
    }
    if (models.size() > 1) {
        Tell("-o takes one model. Several are changed with --in-place.");
        return false;
    }
    if (IsSameFile(target.Out, models.front())) {
        Tell("\"" + target.Out + "\" is the model itself; --in-place writes to it.");
        return false;
    }
    return true;
}

bool SaveModel(const std::string& model, const SaveTarget& target)
{
    const LogTarget before = std::exchange(LogGoesTo, LogTarget::Messages);
    const SaveOutcome outcome = SaveModelFile(target.InPlace ? model : target.Out);
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
