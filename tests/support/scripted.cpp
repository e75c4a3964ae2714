#include "support/scripted.h"

#include <algorithm>

#include "app/modFrontEnd.h"
#include "modFiles.h"
#include "modLocale.h"
#include "modSession.h"
#include "weights/modWeights.h"

namespace {

int progressMaximum = 1;

template <typename T>
T TakeFront(std::deque<T>* answers, T otherwise)
{
    if (!answers->empty()) {
        otherwise = answers->front();
        answers->pop_front();
    }
    return otherwise;
}

template <typename... T>
void Clear(T*... values)
{
    ((*values = T()), ...);
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
    ResetSession();
    WeightsAssignMode = 0;
    Clear(&Steps, &FailAt, &FailError, &FailAfter, &BreakReplacement, &MissingSteps, &LogShown, &Redraws, &Folder);
    Clear(&Messages, &Questions, &Answers, &AssignModes, &Log, &Panels, &Progress, &DeletedTextures);
    Clear(&BoneRows[0], &BoneRows[1]);
    SelectedRow[0] = SelectedRow[1] = -1;
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
