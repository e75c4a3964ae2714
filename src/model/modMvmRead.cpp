#include "model/modMvmRead.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "model/modMvmAhead.h"
#include "model/modMvmBody.h"
#include "model/modMvmCommon.h"
#include "model/modMvmPasses.h"
#include "model/modStrings.h"
#include "platform/modDialogs.h"
#include "platform/modFiles.h"
#include "render/modTexture.h"
#include "weights/modEdit.h"

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
    bool Open = false;  ///< inside a block
    int32_t Shown = -1; ///< the progress value shown last
    LineScratch Scratch;
};

bool ReadLine(std::string_view line, Loading* loading)
{
    if (line.empty()) {
        return true;
    }
    if (!loading->Open) {
        ReadHeaderLine(line, &loading->Kind);
        loading->Open = line.find('{') != std::string_view::npos;
        return true;
    }
    loading->Open = line.find('}') == std::string_view::npos;
    return ReadBodyLine(line, loading->Kind, &loading->Scratch, &loading->Failure);
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

/// Reads the lines of a chunk whose first byte is at `position` of the file. False after a failure and when stopped.
bool ReadChunk(const TextChunk& chunk, size_t position, Loading* loading)
{
    const char* const start = chunk.Memory.data();
    const char* const end = start + chunk.Size;
    const std::vector<CommonRun>& runs = chunk.Lines.Runs;
    size_t run = 0;
    for (const char* at = start; at != end;) {
        const bool runStarts = run < runs.size() && at == start + runs[run].Start;
        if (runStarts && loading->Open && loading->Kind == BlockKind::Mesh) {
            AddCommonRun(chunk.Lines, run, &Meshes.Items.back());
            loading->Line += runs[run].Lines;
            at = start + runs[run].End;
        } else {
            ++loading->Line;
            const char* const lineEnd = FindLineEnd(at, end);
            if (!ReadLine({at, static_cast<size_t>(lineEnd - at)}, loading)) {
                return false;
            }
            at = BehindLine(lineEnd, end);
        }
        run += runStarts ? 1 : 0;
        if (!Step(position + static_cast<size_t>(at - start), &loading->Shown)) {
            return false;
        }
    }
    return true;
}

/// False with an empty *error when the load was stopped or a line failed.
bool ReadChunks(OpenedFile* file, Loading* loading, std::string* error)
{
    ChunksAhead ahead;
    StartChunks(file, &ahead);
    size_t position = 0;
    for (;;) {
        const TextChunk* chunk = nullptr;
        if (!NextChunk(&ahead, &chunk, error)) {
            loading->Line = 0;
            return false;
        }
        if (chunk == nullptr) {
            loading->Line = 0;
            return true;
        }
        if (!ReadChunk(*chunk, position, loading)) {
            return false;
        }
        position += chunk->Size;
    }
}

/// Fails like ReadChunks.
bool ReadModel(const std::string& path, Loading* loading, std::string* error)
{
    OpenedFile file;
    if (!OpenForReading(path, &file, error)) {
        return false;
    }
    SetPanelText("toolhelp", "Loading geometry...");
    ProgressBegin(ProgressValue(file.Expected));
    if (!ReadChunks(&file, loading, error)) {
        TrimScene();
        return false;
    }
    ProgressEnd();
    return true;
}

bool Load(const std::string& path, Loading* loading, std::string* error)
{
    if (!ReadModel(path, loading, error)) {
        return false;
    }
    TrimScene();
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
    Loading loading;
    std::string error;
    try {
        if (Load(path, &loading, &error)) {
            return true;
        }
        if (loading.Failure != nullptr) {
            ShowFailure(loading, loading.Failure);
        } else if (!error.empty()) {
            ShowFailure(loading, error);
        }
    } catch (const std::bad_alloc&) {
        ShowFailure(loading, "There is not enough memory.");
    } catch (const std::exception& exception) {
        ShowFailure(loading, exception.what());
    }
    return false;
}
