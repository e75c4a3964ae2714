#include "model/modMvmRead.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <string_view>

#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "model/modLinePieces.h"
#include "model/modMvmBind.h"
#include "model/modMvmLines.h"
#include "model/modStrings.h"
#include "model/modUsualLines.h"
#include "modFiles.h"
#include "modTexture.h"

namespace {

/// Holds LoadRunning true for its life.
struct RunningMark {
    RunningMark() { LoadRunning = true; }
    ~RunningMark() { LoadRunning = false; }
    RunningMark(const RunningMark&) = delete;
    RunningMark& operator=(const RunningMark&) = delete;
};

/// A load under way.
struct Loading {
    int64_t Line = 0;              ///< the line at work, counted from 1; 0 outside the lines
    const char* Failure = nullptr; ///< what is wrong with it
    BlockKind Kind = BlockKind::None;
    bool Open = false;   ///< inside a block
    int32_t Shown = -1;  ///< the progress value shown last
    bool LoneLf = false; ///< an LF stands inside a line
};

bool ReadLine(std::string_view line, Loading* loading)
{
    if (line.empty()) {
        return true;
    }
    if (!loading->Open) {
        ReadHeaderLine(line, &loading->Kind);
        loading->LoneLf = loading->LoneLf || line.find('\n') != std::string_view::npos;
        loading->Open = line.find('{') != std::string_view::npos;
        return true;
    }
    loading->Open = line.find('}') == std::string_view::npos;
    return ReadBodyLine(line, loading->Kind, &loading->Failure);
}

int32_t ProgressValue(size_t position)
{
    return static_cast<int32_t>(std::min<size_t>(position, std::numeric_limits<int32_t>::max()));
}

/// Shows how far in the file the load is. False when it was stopped.
bool Step(size_t position, int32_t* shown)
{
    const int32_t value = ProgressValue(position) & ~127;
    if (value != *shown) {
        *shown = value;
        ProgressStep(value);
        return !StopRequested;
    }
    return true;
}

/// Reads lines that each end with a CR and perhaps an LF. The first byte is at `position` of a file of `fileSize`
/// bytes. False after a failure and when stopped.
bool ReadWholeLines(std::string_view lines, size_t position, size_t fileSize, Loading* loading)
{
    const char* const start = lines.data();
    const char* const end = start + lines.size();
    for (const char* at = start; at != end;) {
        ++loading->Line;
        const bool inMesh = loading->Open && loading->Kind == BlockKind::Mesh;
        const char* lineEnd = inMesh ? ReadUsualLine(at, &Meshes.Items.back()) : nullptr;
        if (lineEnd == nullptr) {
            lineEnd = static_cast<const char*>(std::memchr(at, '\r', static_cast<size_t>(end - at)));
            if (!ReadLine({at, static_cast<size_t>(lineEnd - at)}, loading)) {
                return false;
            }
        }
        at = lineEnd + (end - lineEnd > 1 && lineEnd[1] == '\n' ? 2 : 1);
        if (!Step(std::min(position + static_cast<size_t>(at - start), fileSize), &loading->Shown)) {
            return false;
        }
    }
    return true;
}

/// False with an empty *error when the load was stopped or a line failed.
bool ReadLines(OpenedFile* file, Loading* loading, std::string* error)
{
    const auto take = [&](std::string_view lines, size_t position) {
        return ReadWholeLines(lines, position, file->Taken, loading);
    };
    if (ReadInPieces(file, take, error)) {
        return true;
    }
    if (!error->empty()) {
        loading->Line = 0;
    }
    return false;
}

/// Tells of a file that is read without a failure though it is no model, or hardly any of it was read as one.
void TellOfNoModel(const std::string& path, const Loading& loading)
{
    const bool oneLine = loading.Line == 1 && loading.LoneLf;
    if (loading.Line == 0 || (loading.Kind != BlockKind::None && !oneLine)) {
        return;
    }
    const std::string why =
        loading.LoneLf ? " Its lines end in LF alone; those of a model file end in CR LF." : " It is no model file.";
    const std::string file = '"' + path + '"';
    if (loading.Kind == BlockKind::None) {
        LogLine(file + " holds no material, bone, mesh or instance." + why +
                " A save would replace it by an empty model.");
    } else {
        LogLine(file + " was read as a single line." + why + " A save would leave nothing of the rest.");
    }
    ShowInfoLog(); // a new creature's dialog would leave the line unseen
}

/// Fails like ReadLines.
bool ReadModel(const std::string& path, Loading* loading, std::string* error)
{
    OpenedFile file;
    if (!OpenForReading(path, &file, error)) {
        return false;
    }
    SetPanelText("toolhelp", "Loading geometry...");
    ProgressBegin(ProgressValue(file.Expected));
    if (!ReadLines(&file, loading, error)) {
        return false;
    }
    ProgressEnd();
    TellOfNoModel(path, *loading);
    loading->Line = 0;
    return true;
}

bool Load(const std::string& path, Loading* loading, std::string* error)
{
    if (!ReadModel(path, loading, error)) {
        return false;
    }
    LoadTextures(std::string(DirectoryOf(path)));
    if (StopRequested) {
        return false;
    }
    SetPanelText("toolhelp", "Verifying shadow bones...");
    MarkShadowBones();
    SetPanelText("toolhelp", "Verifying meshes...");
    VerifyMeshes();
    if (SkinMesh == 0 && MeshCount() == 1) {
        SkinMesh = 1;
    }
    SelectSkinMesh(SkinMesh);
    SelectShadowMesh(ShadowMesh);
    SetPanelText("toolhelp", "Ready...");
    return true;
}

void ShowFailure(const Loading& loading, const std::string& description)
{
    ProgressShow();
    const std::string place = loading.Line > 0 ? "Line " + std::to_string(loading.Line) + ": " : std::string();
    ShowMessage(BoxIcon::Stop, "Runtime error in LoadMVM\n" + place + description);
}

} // namespace

bool LoadMVM(const std::string& path)
{
    if (LoadRunning) {
        return false; // events served by a load must not start another one into the same scene
    }
    const RunningMark mark;
    ForgetSteps();
    Loading loading;
    std::string error;
    try {
        if (Load(path, &loading, &error)) {
            return true;
        }
    } catch (const std::exception& exception) {
        loading.Failure = nullptr;
        error = WordsOf(exception);
    }
    if (loading.Failure != nullptr) {
        ShowFailure(loading, loading.Failure);
    } else if (!error.empty()) {
        ShowFailure(loading, error);
    }
    return false;
}
