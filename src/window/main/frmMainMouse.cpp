#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QWheelEvent>

#include "app/modFrontEnd.h"
#include "main/frmMain.h"
#include "modCamera.h"
#include "modCommand.h"
#include "modDrag.h"
#include "modOpenGL.h"
#include "modPick.h"
#include "modTryJoint.h"

namespace {

constexpr int32_t notch = 120; ///< wheel distance of one notch

struct ToolCursor {
    const char* Name;
    int HotX, HotY;
    Qt::CursorShape Fallback; ///< when the picture is missing
};

constexpr std::array<ToolCursor, 4> toolCursors = {{{"select", 15, 15, Qt::CrossCursor},
                                                    {"arcrot", 16, 16, Qt::SizeAllCursor},
                                                    {"pan1", 15, 15, Qt::OpenHandCursor},
                                                    {"zoom", 12, 13, Qt::SizeVerCursor}}};
constexpr ToolCursor grabCursor = {"pan2", 15, 15, Qt::ClosedHandCursor};

QCursor CursorOf(const ToolCursor& cursor)
{
    const QPixmap picture(QStringLiteral(":/cursors/%1.png").arg(QString::fromUtf8(cursor.Name)));
    return picture.isNull() ? QCursor(cursor.Fallback) : QCursor(picture, cursor.HotX, cursor.HotY);
}

} // namespace

void frmMain::SetCamera(int16_t camera)
{
    constexpr std::array<const char*, CameraCount> entries = {
        "mnuViewCameraPerspective", "mnuViewCameraOrthographic", "mnuViewCameraFront", "mnuViewCameraBack",
        "mnuViewCameraLeft",        "mnuViewCameraRight",        "mnuViewCameraTop",   "mnuViewCameraBottom"};
    CurrentCamera = camera;
    for (size_t i = 0; i < entries.size(); i++) {
        Entry(entries[i])->setChecked(static_cast<int16_t>(i) + 1 == camera);
    }
    if (camera >= 3 && ToolMode == 1) {
        SetToolMode(2);
    }
    toolButtons[1]->setEnabled(camera < 3);
    Redraw(true);
}

void frmMain::SetToolMode(int16_t tool)
{
    ToolMode = tool;
    picMain->setCursor(CursorOf(toolCursors.at(static_cast<size_t>(tool))));
    toolButtons.at(static_cast<size_t>(tool))->setChecked(true);
}

void frmMain::picMain_MouseDown(Qt::MouseButton button, QPointF position, QPoint screen)
{
    if (button == Qt::RightButton) {
        if (ToolMode != 0) {
            SetToolMode(0);
        } else {
            mnuViewCamera->popup(screen);
        }
        return;
    }
    if (button == Qt::MiddleButton || ToolMode == 2) {
        picMain->setCursor(CursorOf(grabCursor));
    }
    MouseButton = button == Qt::LeftButton ? 1 : 4;
    MouseLastX = MouseStartX = static_cast<float>(position.x());
    MouseLastY = MouseStartY = static_cast<float>(position.y());
    Redraw(true);
}

void frmMain::picMain_MouseMove(QPointF position)
{
    const auto x = static_cast<float>(position.x());
    const auto y = static_cast<float>(position.y());
    if (MouseButton > 0) {
        const float dx = x - MouseLastX;
        const float dy = y - MouseLastY;
        if (MouseButton == 4 || ToolMode == 2) {
            PanCamera(dx, dy);
        } else if (ToolMode == 1) {
            RotateCamera(dy, dx);
        } else if (ToolMode == 3) {
            ZoomCamera(dy / 100);
        }
        Redraw(true);
    }
    if (TryingJoint) {
        TurnJoint(position);
    }
    MouseLastX = x;
    MouseLastY = y;
}

void frmMain::picMain_MouseUp(QPointF position)
{
    const auto x = static_cast<float>(position.x());
    const auto y = static_cast<float>(position.y());
    if (ToolMode == 2) {
        picMain->setCursor(CursorOf(toolCursors[2]));
    }
    // A model that is still being read takes no assignments.
    if (MouseButton == 1 && ActiveTab == 1 && ToolMode == 0 && !Busy()) {
        const PickBox box = BoxOfDrag(MouseStartX, MouseStartY, x, y, picMain->height());
        MakeViewCurrent();
        PickVertices(TargetMesh(), box.X, box.Y, box.Width, box.Height);
    }
    if (MouseButton == 4) {
        SetToolMode(ToolMode);
    }
    MouseButton = 0;
    MouseLastX = x;
    MouseLastY = y;
    Redraw(true);
}

bool frmMain::CancelDrag()
{
    if (MouseButton == 0) {
        return false;
    }
    MouseButton = 0;
    SetToolMode(ToolMode);
    Redraw(true);
    return true;
}

void frmMain::CancelGestures()
{
    CancelDrag();
    EndTryJoint();
    ListDragging = false;
    shownVertex = 0;
    PickOnlyFree = false;
}

void frmMain::MouseWheel(int32_t notches)
{
    ZoomCamera(static_cast<float>(-notches) * 0.1F);
    Redraw(true);
}

void frmMain::wheelEvent(QWheelEvent* event)
{
    event->accept();
    // A list at its end hands the wheel on; the view must not jump then.
    for (QWidget* at = childAt(event->position().toPoint()); at != nullptr; at = at->parentWidget()) {
        if (at == lstSkinBones || at == lstShadowBones || at == lstAnimation) {
            return;
        }
    }
    // The toolkit turns the wheel by a quarter while Alt is held.
    const bool turned = event->modifiers().testFlag(Qt::AltModifier) && event->angleDelta().y() == 0;
    const int distance = turned ? event->angleDelta().x() : event->angleDelta().y();
    if ((distance > 0) != (wheelRest > 0)) {
        wheelRest = 0;
    }
    wheelRest += distance;
    const int32_t notches = wheelRest / notch;
    wheelRest %= notch;
    if (notches != 0) {
        Perform("MouseWheel", [&] { MouseWheel(notches); });
    }
}
