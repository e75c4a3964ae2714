#include <QAction>

#include "app/modFrontEnd.h"
#include "app/modMisc.h"
#include "app/modMvmDef.h"
#include "dialogs/modBoxes.h"
#include "dialogs/modOptions.h"
#include "main/frmMain.h"
#include "modDesktop.h"
#include "model/modNumbers.h"
#include "modFiles.h"
#include "modViewFlags.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"
#include "weights/modMirror.h"

void frmMain::mnuOptionsAlias_Click()
{
    AliasesOn = !AliasesOn;
    Entry("mnuOptionsAlias")->setChecked(AliasesOn);
    if (AliasesOn) {
        ApplyAliases();
    } else {
        ClearBoneAliases();
    }
    FillBoneLists();
    Redraw(true);
}

void frmMain::mnuOptionsMirrorVertThreshold_Click()
{
    MirrorVertexThreshold =
        ThresholdFromAnswer(AskText("Mirror Vertex Threshold", "New value:", FloatToText(MirrorVertexThreshold)));
}

void frmMain::mnuOptionsMirrorBoneThreshold_Click()
{
    MirrorBoneThreshold =
        ThresholdFromAnswer(AskText("Mirror Bone Threshold", "New value:", FloatToText(MirrorBoneThreshold)));
}

void frmMain::mnuOptionsPointsize_Click()
{
    PointSize =
        PointSizeFromAnswer(AskText("Point Size", "Point size (in pixels):", std::to_string(PointSize)), PointSize);
    Redraw(true);
}

void frmMain::mnuHelpReadme_Click()
{
    const std::string path = ProgramFolder() + "/readme.html";
    if (FileExists(path)) {
        OpenWithDesktop(path);
    } else {
        ShowMessage(BoxIcon::Warning, "Cannot find readme file.");
    }
}
