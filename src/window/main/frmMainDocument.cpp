#include <QAction>

#include "app/modFrontEnd.h"
#include "app/modMisc.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "app/modVersion.h"
#include "dialogs/frmLog.h"
#include "dialogs/frmMeshes.h"
#include "dialogs/frmNew.h"
#include "dialogs/modFileChooser.h"
#include "main/frmMain.h"
#include "model/modDocument.h"
#include "model/modMvmBind.h"
#include "model/modMvmRead.h"
#include "model/modRescue.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"

namespace {

constexpr const char* modelFilter = "Morvane Models (*.mvm)|*.mvm|All Files (*.*)|*.*";

} // namespace

void frmMain::SetCaption(const std::string& filename)
{
    // The toolkit takes a lone "[*]" in a caption for a mark of its own; a doubled one shows as it stands.
    setWindowTitle(
        QString::fromStdString(CaptionFor(filename)).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

void frmMain::EnableDocument(bool open, bool revert)
{
    Entry("mnuFileSave")->setEnabled(open);
    Entry("mnuFileSaveAs")->setEnabled(open);
    Entry("mnuFileClose")->setEnabled(open);
    Entry("mnuFileRevert")->setEnabled(revert);
}

bool frmMain::ConfirmDiscard()
{
    return AskYesNoCancel(BoxIcon::Warning, "Any changes to open files will be lost.\nContinue?") == BoxAnswer::Yes;
}

void frmMain::OpenFile(const std::string& filename)
{
    if (!FileExists(filename)) {
        ShowMessage(BoxIcon::Warning, "Cannot find file \"" + filename + "\".");
        return;
    }
    BeginBusy();
    const bool loaded = LoadMVM(filename);
    EndAllBusy();
    CancelGestures();
    if (EndAfterStop()) {
        return;
    }
    if (loaded) {
        LastPath = filename;
        CurrentFile = filename;
        ModelOpen = true;
        MarkSceneSaved();
        if (AliasesOn) {
            ApplyAliases();
        }
        FillBoneLists();
        SetCaption(CurrentFile);
        EnableDocument(true, true);
        if (FileExists(RescuePath(filename))) {
            LogLine("Changes that were not saved when the program was ended lie in \"" + RescuePath(filename) + "\".");
        }
        if (LogDirty) {
            ShowInfoLog();
        }
    } else {
        ShowMessage(BoxIcon::Stop, "A program error occurred. Please check the file you tried to open for errors.\n"
                                   "However, you can try to save the currently loaded data. Please restart " +
                                       std::string(ProgramTitle) + " before you open any other files.");
    }
    Redraw(true);
}

bool frmMain::CloseModel()
{
    if (!ModelOpen) {
        return true;
    }
    if (!ConfirmDiscard()) {
        return false;
    }
    CancelGestures();
    ForgetModel();
    SavedSkinBone = SavedShadowBone = 0;
    SetCaption();
    EnableDocument(false, false);
    ClearInfoLog();
    LogDirty = false;
    FillBoneLists();
    Redraw(true);
    return true;
}

void frmMain::mnuFileNew_Click()
{
    if (!CloseModel()) {
        return;
    }
    const bool loaded = ShowNewDialog();
    EndAllBusy();
    CancelGestures();
    if (EndAfterStop() || !loaded) {
        return;
    }
    ModelOpen = true;
    FillBoneLists();
    EnableDocument(true, false);
    ShowMessage(BoxIcon::Information, "Please select the model you want to use as skin.");
    const int16_t mesh = ChooseMesh(0);
    if (mesh != -1) {
        SelectSkinMesh(mesh);
        if (AliasesOn) {
            ApplyAliases();
            FillBoneLists();
        }
    }
    Redraw(true);
}

void frmMain::mnuFileOpen_Click()
{
    FileChooser chooser{.Title = "Open File", .Filter = modelFilter, .StartIn = LastPath};
    std::string path;
    while (ChooseFile(chooser, &path)) {
        if (!ServeEvents()) {
            return;
        }
        chooser.StartIn = LastPath = path;
        if (!FileExists(path)) {
            ShowMessage(BoxIcon::Warning, "File does not exist.");
            continue;
        }
        if (!CloseModel()) {
            return;
        }
        OpenFile(path);
        break;
    }
    SetPanelText("toolhelp", "Ready...");
}

void frmMain::mnuFileSave_Click()
{
    if (CurrentFile.empty()) {
        mnuFileSaveAs_Click();
        return;
    }
    if (SaveModelFile(CurrentFile) != SaveOutcome::Refused) {
        SetCaption(CurrentFile);
    }
    if (LogDirty) {
        ShowInfoLog();
    }
}

void frmMain::mnuFileSaveAs_Click()
{
    const FileChooser chooser{
        .Save = true, .Title = "Save File", .Filter = modelFilter, .StartIn = LastPath, .FileName = CurrentFile};
    std::string path;
    if (!ChooseFile(chooser, &path)) {
        return;
    }
    if (!ServeEvents()) {
        return;
    }
    LastPath = path;
    CurrentFile = path;
    mnuFileSave_Click();
}

void frmMain::mnuFileRevert_Click()
{
    const std::string path = CurrentFile;
    if (CloseModel()) {
        OpenFile(path);
    }
}

void frmMain::mnuFileClose_Click()
{
    CloseModel();
}
