#include "support/scripted.h"

#include <algorithm>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "interaction/modConsole.h"
#include "platform/modEvents.h"
#include "platform/modFiles.h"
#include "platform/modLocale.h"
#include "platform/modOpen.h"
#include "render/modRedraw.h"
#include "render/modTexture.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"
#include "weights/modWeights.h"

namespace {

int progressMaximum = 1;

template <typename T>
T TakeFront(std::deque<T>* answers, T otherwise)
{
    if (answers->empty()) {
        return otherwise;
    }
    T answer = std::move(answers->front());
    answers->pop_front();
    return answer;
}

} // namespace

namespace scripted {

std::string Panel(const std::string& key)
{
    const auto latest =
        std::find_if(Panels.rbegin(), Panels.rend(), [&](const auto& panel) { return panel.first == key; });
    return latest != Panels.rend() ? latest->second : std::string();
}

void Reset()
{
    Steps = FailAt = FailError = 0;
    FailAfter = NoLinks = false;
    ResetScene();
    FreeAliases();
    AliasesOn = true;
    LogDirty = StopRequested = NoSleep = false;
    WeightsAssignMode = 0;
    MirrorVertexThreshold = MirrorBoneThreshold = 0.01F;
    Messages.clear();
    Questions.clear();
    Answers.clear();
    Texts.clear();
    ChosenPaths.clear();
    AssignModes.clear();
    Log.clear();
    Panels.clear();
    Progress.clear();
    LogShown = Redraws = Pumps = 0;
    for (int list = 0; list < 2; ++list) {
        BoneRows[list].clear();
        SelectedRow[list] = -1;
    }
    Opened.clear();
    Folder.clear();
    DecimalMark = ".";
}

} // namespace scripted

void ShowMessage(BoxIcon icon, const std::string& text)
{
    scripted::Messages.push_back({icon, text});
}

BoxAnswer AskYesNoCancel(BoxIcon icon, const std::string& text)
{
    scripted::Questions.push_back({icon, text});
    return TakeFront(&scripted::Answers, BoxAnswer::Cancel);
}

std::string AskText(const std::string&, const std::string&, const std::string&)
{
    return TakeFront(&scripted::Texts, std::string());
}

bool ChooseFile(const FileChooser&, std::string* path)
{
    if (scripted::ChosenPaths.empty()) {
        return false;
    }
    *path = TakeFront(&scripted::ChosenPaths, std::string());
    return true;
}

void AskWeightsAssignMode()
{
    WeightsAssignMode = static_cast<int16_t>(TakeFront(&scripted::AssignModes, 0));
}

void PumpEvents()
{
    ++scripted::Pumps;
}

void OpenWithDesktop(const std::string& target)
{
    scripted::Opened.push_back(target);
}

std::string ProgramFolder()
{
    return scripted::Folder;
}

std::string LocaleDecimalMark()
{
    return scripted::DecimalMark;
}

void SetPanelText(const std::string& key, const std::string& text)
{
    scripted::Panels.emplace_back(key, text);
}

void ProgressBegin(int32_t maximum)
{
    progressMaximum = maximum;
}

void ProgressStep(int32_t value)
{
    scripted::Progress.emplace_back(progressMaximum, value);
}

void ProgressShow() {}

void ProgressEnd() {}

void LogLine(const std::string& text)
{
    scripted::Log.push_back(text);
    LogDirty = true;
}

void ShowInfoLog()
{
    ++scripted::LogShown;
    LogDirty = false;
}

void Redraw(bool)
{
    ++scripted::Redraws;
}

void SetBoneRows(int16_t list, const std::vector<BoneRow>& rows)
{
    scripted::BoneRows[list] = rows;
    scripted::SelectedRow[list] = -1;
}

void SelectBoneRow(int16_t list, int32_t number)
{
    for (const BoneRow& row : scripted::BoneRows[list]) {
        if (row.Number == number) {
            scripted::SelectedRow[list] = number;
        }
    }
}

#ifndef SCRIPTED_WITHOUT_TEXTURES
void LoadTextures(const std::string&) {}
void FreeTextures() {}
#else
void MakeViewCurrent() {}
#endif
