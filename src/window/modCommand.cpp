#include "modCommand.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>
#include <string>

#include <QLocale>

#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "main/frmMain.h"
#include "weights/modEdit.h"

namespace {

int depth = 0; ///< commands under way, one inside the other

struct StepLabel {
    const char* Command;
    const char* Label;
};

/// What steps are called by, for the commands that change the scene.
constexpr std::array<StepLabel, 11> stepLabels = {{
    {"picMain_MouseUp", "Pick"},
    {"cmdUnAssign", "Unassign"},
    {"cmdReAssign", "Re-assign"},
    {"cmdSwap", "Swap"},
    {"cmdMirror", "Mirror"},
    {"cmdLoadWeights", "Load Weights"},
    {"cmdSelectSkinMesh", "Select Skin Mesh"},
    {"cmdSelectShadowMesh", "Select Shadow Mesh"},
    {"mnuToolsRenameMesh", "Rename Mesh"},
    {"mnuViewToolsRegenNormals", "Re-generate Normals"},
    {"mnuViewToolsAutoAssign", "Auto-Assign"},
}};

const char* LabelOf(const char* name)
{
    for (const StepLabel& row : stepLabels) {
        if (std::strcmp(row.Command, name) == 0) {
            return row.Label;
        }
    }
    return name;
}

void RunAtDepth(const char* name, const std::function<void()>& command)
{
    struct Level {
        Level() { ++depth; }
        ~Level() { --depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
    };
    const Level level;
    if (depth > 1) {
        command();
    } else {
        RunStep(LabelOf(name), command);
    }
}

void EndFailedCommand(const char* name, const std::exception& failure, int busyDepth)
{
    if (frmMain* window = MainForm()) {
        window->EndBusyDownTo(busyDepth);
    }
    ShowMessage(BoxIcon::Stop, "Runtime error in " + std::string(name) + "\n" + WordsOf(failure));
    if (LogDirty) {
        ShowInfoLog();
    }
    const int16_t bone = ActiveBone;
    FillBoneLists();
    SetActiveBone(bone);
}

/// Takes a step, and says which: `verb` is "Undo" or "Redo". Nothing happens in the middle of another command.
void Take(std::optional<TakenStep> (*take)(), const std::string& verb)
{
    frmMain* window = MainForm();
    if (depth != 1 || window == nullptr || window->Busy()) {
        return;
    }
    const auto step = take();
    if (!step) {
        SetPanelText("toolhelp", verb == "Undo" ? "Nothing to undo." : "Nothing to redo.");
        return;
    }
    const QString count = QLocale(QLocale::English).toString(step->Vertices);
    const std::string vertices = step->Vertices == 0   ? ""
                                 : step->Vertices == 1 ? " (1 vertex)"
                                                       : " (" + count.toStdString() + " vertices)";
    window->ShowTarget(step->EditTarget, step->ActiveBone);
    SetPanelText("toolhelp", verb + ": " + step->Label + vertices);
}

} // namespace

void PerformCommand(const char* name, const std::function<void()>& command)
{
    const int busyDepth = MainForm() == nullptr ? 0 : MainForm()->BusyDepth();
    try {
        RunAtDepth(name, command);
    } catch (const std::exception& failure) {
        // The box and the lists need memory too; where even that is missing, the window stays as it is.
        try {
            EndFailedCommand(name, failure, busyDepth);
        } catch (const std::exception& again) {
            std::fprintf(stderr, "beastwright: %s: %s\n", name, again.what());
        }
    }
}

void UndoCommand()
{
    Take(UndoStep, "Undo");
}

void RedoCommand()
{
    Take(RedoStep, "Redo");
}
