#include "main/modApp.h"

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/frmLog.h"
#include "dialogs/frmNew.h"
#include "main/frmMain.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modOpenGL.h"
#include "modSession.h"
#include "modViewFlags.h"
#include "weights/modBoneAlias.h"

void InitApp()
{
    AppClosing = false;
    ResetSession();
    ResetViewFlags();
    ResetDrag();
    MakeViewCurrent();
    GLReady = InitOpenGL();
    if (GLReady) {
        const QWidget* view = MainForm()->picMain;
        PixelScale = static_cast<float>(view->devicePixelRatioF());
        ResizeViewport(qRound(view->width() * view->devicePixelRatioF()),
                       qRound(view->height() * view->devicePixelRatioF()));
    } else {
        ShowMessage(BoxIcon::Stop, "Error initializing OpenGL.");
    }
    InitCameras();
    LoadAlias();
}

void ShutdownApp()
{
    AppClosing = true;
    if (ModelOpen) {
        ForgetModel();
    }
    FreeAliases();
    if (GLReady) {
        // What a failed load left behind still holds textures of the context.
        FreeTextures();
        ShutdownOpenGL();
        GLReady = false;
    }
    CloseInfoLog();
    ForgetNewDialog();
}
