#include "model/modMvmRead.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <string_view>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "model/modMvmBody.h"
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
    bool Open = false; ///< inside a block
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

/// Lines end at CR LF or at a lone CR. False after a failure and when the load was stopped.
bool ReadLines(std::string_view bytes, Loading* loading)
{
    const char* const start = bytes.data();
    const char* const end = start + bytes.size();
    int32_t shown = -1;
    for (const char* at = start; at != end;) {
        ++loading->Line;
        const char* lineEnd = nullptr;
        if (loading->Open && loading->Kind == BlockKind::Mesh) {
            lineEnd = ReadCommonLine(at, end, &Meshes.Items.back());
        }
        if (lineEnd == nullptr) {
            const void* const found = std::memchr(at, '\r', static_cast<size_t>(end - at));
            lineEnd = found != nullptr ? static_cast<const char*>(found) : end;
            if (!ReadLine({at, static_cast<size_t>(lineEnd - at)}, loading)) {
                return false;
            }
        }
        at = lineEnd;
        if (at != end) {
            at += end - at > 1 && at[1] == '\n' ? 2 : 1;
        }
        const int32_t position = ProgressValue(static_cast<size_t>(at - start)) & ~127;
        if (position != shown) {
            shown = position;
            ProgressStep(position);
            if (StopRequested) {
                return false;
            }
        }
    }
    loading->Line = 0;
    return true;
}

/// False with an empty *error when the load was stopped or a line failed.
bool ReadModel(const std::string& path, Loading* loading, std::string* error)
{
    std::string bytes;
    if (!ReadFile(path, &bytes, error)) {
        if (error->empty()) {
            *error = "The file cannot be read.";
        }
        return false;
    }
    SetPanelText("toolhelp", "Loading geometry...");
    ProgressBegin(ProgressValue(bytes.size()));
    if (!ReadLines(bytes, loading)) {
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
