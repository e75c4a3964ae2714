#include <QPushButton>

#include "app/modFrontEnd.h"
#include "app/modMisc.h"
#include "app/modMvmDef.h"
#include "dialogs/frmBones.h"
#include "dialogs/frmMeshes.h"
#include "dialogs/frmMirror.h"
#include "dialogs/modBoxes.h"
#include "dialogs/modFileChooser.h"
#include "main/frmMain.h"
#include "modCodePage.h"
#include "model/modMvmBind.h"
#include "weights/modEdit.h"
#include "weights/modMvmXTools.h"
#include "weights/modWeights.h"

namespace {

constexpr const char* weightsFilter = "Weights Information File (*.wif)|*.wif";

} // namespace

void frmMain::cmdSelectSkinMesh_Click()
{
    const int16_t mesh = ChooseMesh(SkinMesh);
    if (mesh != -1) {
        SelectSkinMesh(mesh);
    }
}

void frmMain::cmdSelectShadowMesh_Click()
{
    const int16_t mesh = ChooseMesh(ShadowMesh);
    if (mesh != -1) {
        SelectShadowMesh(mesh);
    }
}

void frmMain::cmdUnAssign_Click()
{
    const int16_t mesh = TargetMesh();
    if (!IsValidMesh(mesh)) {
        return;
    }
    if (ActiveBone != 0) {
        ReplaceBone(mesh, ActiveBone, 0);
    } else if (AskYesNoCancel(BoxIcon::Question, "No bone selected, would you like to unassign all bones?") ==
               BoxAnswer::Yes) {
        UnassignAll(mesh);
    }
    Redraw(true);
}

void frmMain::cmdReAssign_Click()
{
    const int16_t bone = ChooseBone(ActiveBone);
    if (!IsValidBone(bone)) {
        return;
    }
    ReplaceBone(TargetMesh(), ActiveBone, bone);
    SetActiveBone(bone);
}

void frmMain::cmdSwap_Click()
{
    if (!IsValidBone(ActiveBone)) {
        return;
    }
    const int16_t other = ChooseBone(ActiveBone);
    if (!IsValidBone(other)) {
        return;
    }
    SwapBones(TargetMesh(), ActiveBone, other);
    SetActiveBone(other);
}

void frmMain::cmdMirror_Click()
{
    if (IsValidMesh(TargetMesh())) {
        ShowMirrorDialog();
        Redraw(true);
    }
}

void frmMain::cmdLoadWeights_Click()
{
    FileChooser chooser{.Title = "Load Weights", .Filter = weightsFilter, .StartIn = LastPath};
    std::string path;
    while (ChooseFile(chooser, &path)) {
        chooser.StartIn = LastPath = path;
        if (FileExists(path)) {
            LoadWeights(path, TargetMesh());
            break;
        }
        ShowMessage(BoxIcon::Warning, "File does not exist.");
    }
    Redraw(true);
}

void frmMain::cmdSaveWeights_Click()
{
    const FileChooser chooser{.Save = true, .Title = "Save Weights", .Filter = weightsFilter, .StartIn = LastPath};
    std::string path;
    if (ChooseFile(chooser, &path)) {
        LastPath = path;
        SaveWeights(path, TargetMesh());
        if (LogDirty) {
            ShowInfoLog();
        }
    }
}

void frmMain::optShadow_Click(int16_t index)
{
    // A press on the button that is down already changes nothing; taken for a change it would overwrite the remembered
    // bone of the other list.
    if (index == EditTarget) {
        return;
    }
    ShowTarget(index, index == 0 ? SavedSkinBone : SavedShadowBone);
}

void frmMain::ShowTarget(int16_t target, int16_t bone)
{
    if (target != EditTarget) {
        (target == 0 ? SavedShadowBone : SavedSkinBone) = ActiveBone;
        EditTarget = target;
        optShadow.at(static_cast<size_t>(target))->setChecked(true);
        lstSkinBones->setVisible(target == 0);
        lstShadowBones->setVisible(target == 1);
    }
    SetActiveBone(bone);
}

void frmMain::optMode_Click(int16_t index)
{
    DisplayMode = index;
    Redraw(true);
}

void frmMain::mnuToolsRenameMesh_Click()
{
    const int16_t mesh = ChooseMesh(0);
    if (!IsValidMesh(mesh)) {
        return;
    }
    const std::string name = AskText("Rename Mesh", "New mesh name:", Utf8FromCodePage(Meshes[mesh].Name));
    if (!name.empty()) {
        RenameMesh(mesh, name);
    }
}

void frmMain::mnuViewToolsRegenNormals_Click()
{
    const int16_t mesh = ChooseMesh(0);
    if (IsValidMesh(mesh)) {
        RegenerateNormals(mesh);
        Redraw(true);
    }
}

void frmMain::mnuViewToolsAutoAssign_Click()
{
    const int16_t mesh = ChooseMesh(0);
    if (IsValidMesh(mesh)) {
        AutoAssign(mesh);
    }
}
