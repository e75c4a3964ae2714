#include <QAction>
#include <QOpenGLWidget>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "main/frmMain.h"
#include "model/modTexture.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "weights/modBoneAlias.h"

void Redraw(bool /*swap*/)
{
    if (GLContext && MainForm() != nullptr) {
        MainForm()->picMain->update();
    }
}

void MakeViewCurrent()
{
    if (const frmMain* window = MainForm()) {
        if (auto* view = qobject_cast<QOpenGLWidget*>(window->picMain)) {
            view->makeCurrent();
        }
    }
}

void frmMain::ReadFlagsFromTicks()
{
    ViewWire = Entry("mnuViewWire")->isChecked();
    ViewLighting = Entry("mnuViewLighting")->isChecked();
    ViewBackfaces = Entry("mnuViewBackfaces")->isChecked();
    ViewCullVerts = Entry("mnuViewCullVerts")->isChecked();
    ViewGrid = Entry("mnuViewGrid")->isChecked();
    ViewTextures = Entry("mnuViewTextures")->isChecked();
    ViewNormals = Entry("mnuViewNormals")->isChecked();
    AliasesOn = Entry("mnuOptionsAlias")->isChecked();
    LineAA = Entry("mnuOptionsLineAA")->isChecked();
    FilterTextures = Entry("mnuOptionFilterTextures")->isChecked();
}

void frmMain::ToggleFlag(bool* flag, const char* entry)
{
    *flag = !*flag;
    Entry(entry)->setChecked(*flag);
    Redraw(true);
}

void frmMain::SetWire(bool wire)
{
    ViewWire = wire;
    Entry("mnuViewWire")->setChecked(wire);
    Entry("mnuViewSolid")->setChecked(!wire);
    Entry("mnuViewIsolines")->setEnabled(!wire);
    Entry("mnuViewCullVerts")->setEnabled(!wire);
    Redraw(true);
}

void frmMain::mnuToolsReloadTextures_Click()
{
    FreeTextures();
    LoadTextures(CurrentFile);
    if (EndAfterStop()) {
        return;
    }
    if (LogDirty) {
        ShowInfoLog();
    }
    Redraw(true);
}
