#include "support/scripted.h"

#include <algorithm>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modFiles.h"
#include "modLocale.h"
#include "modSession.h"
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
    FailAfter = false;
    MissingSteps.clear();
    ResetSession();
    WeightsAssignMode = 0;
    Messages.clear();
    Questions.clear();
    Answers.clear();
    AssignModes.clear();
    Log.clear();
    Panels.clear();
    Progress.clear();
    DeletedTextures.clear();
    LogShown = Redraws = 0;
    for (int list = 0; list < 2; ++list) {
        BoneRows[list].clear();
        SelectedRow[list] = -1;
    }
    Folder.clear();
    DecimalMark = ".";
    LargestTextureSide = 1 << 30;
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

void AskWeightsAssignMode()
{
    WeightsAssignMode = static_cast<int16_t>(TakeFront(&scripted::AssignModes, 0));
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

bool ProgressServe()
{
    return !StopRequested;
}

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
