#include <QGuiApplication>
#include <QKeyEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QWheelEvent>

#include "interaction/frmMain.h"
#include "interaction/modCamera.h"
#include "interaction/modConsole.h"
#include "interaction/modTools.h"
#include "platform/modDialogs.h"
#include "render/modRedraw.h"
#include "render/modViewFlags.h"

namespace {

constexpr int32_t codeCtrl = 17;
constexpr int32_t codeF11 = 122;
constexpr quint32 scanCodeOfDigit1 = 10;

/// The code of the digit key under the finger, whatever a held Shift or the layout makes of it; 0 for other keys.
int32_t DigitOfScanCode(const QKeyEvent& event)
{
    static const bool known = QGuiApplication::platformName() == QStringLiteral("xcb") ||
                              QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
    const quint32 scan = event.nativeScanCode();
    return known && scan >= scanCodeOfDigit1 && scan < scanCodeOfDigit1 + 4
               ? static_cast<int32_t>('1' + (scan - scanCodeOfDigit1))
               : 0;
}

int32_t CodeOf(const QKeyEvent& event)
{
    if (event.modifiers().testFlag(Qt::KeypadModifier)) {
        return 0;
    }
    const int key = event.key();
    if (key == Qt::Key_Control) {
        return codeCtrl;
    }
    if (key == Qt::Key_F11) {
        return codeF11;
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) {
        return key;
    }
    return DigitOfScanCode(event);
}

} // namespace

void frmMain::picMain_KeyDown(int32_t code)
{
    if (CtrlHeld) {
        return;
    }
    switch (code) {
    case codeCtrl:
        CtrlHeld = true;
        break;
    case 'C':
        SetCamera(CurrentCamera >= CameraCount ? int16_t{1} : static_cast<int16_t>(CurrentCamera + 1));
        break;
    case 'P':
        SetCamera(1);
        break;
    case 'O':
        SetCamera(2);
        break;
    case 'F':
        SetCamera(3);
        break;
    case 'B':
        SetCamera(CurrentCamera == 4 ? 8 : 4);
        break;
    case 'L':
        SetCamera(5);
        break;
    case 'R':
        SetCamera(6);
        break;
    case 'T':
        SetCamera(7);
        break;
    case 'W':
        SetWire(!ViewWire);
        break;
    case 'V':
        ToggleFlag(&ViewCullVerts, "mnuViewCullVerts");
        break;
    case '1':
        SetToolMode(0);
        break;
    case '2':
        if (CurrentCamera < 3) {
            SetToolMode(1);
        }
        break;
    case '3':
        SetToolMode(2);
        break;
    case '4':
        SetToolMode(3);
        break;
    case codeF11:
        OpenConsole();
        break;
    default:
        break;
    }
    Redraw(true);
}

void frmMain::OpenConsole()
{
    const std::string input = AskText("Command", "Command:", LastCommand);
    if (!input.empty()) {
        LastCommand = input;
        RunCommand(input);
    }
}

void frmMain::keyPressEvent(QKeyEvent* event)
{
    // What a list or the toolbar leaves over comes here too, and is not for the view.
    const QWidget* focus = focusWidget();
    if (focus == nullptr || focus == this || focus == centralWidget()) {
        picMain_KeyDown(CodeOf(*event));
    }
    QMainWindow::keyPressEvent(event);
}

bool frmMain::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        const int32_t code = CodeOf(*static_cast<QKeyEvent*>(event));
        picMain_KeyDown(code);
        // The others still press buttons and move the focus.
        return code != 0;
    }
    case QEvent::KeyRelease:
        // A held key repeats as releases too, though the finger has not left it.
        if (watched == picMain && !static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
            CtrlHeld = false;
        }
        return false;
    case QEvent::Wheel:
        if (watched == tabMain->tabBar()) {
            wheelEvent(static_cast<QWheelEvent*>(event));
            return true;
        }
        return false;
    default:
        break;
    }
    if (watched != picMain) {
        return QMainWindow::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!(mouse->button() & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton))) {
            return false;
        }
        if (event->type() == QEvent::MouseButtonRelease) {
            picMain_MouseUp(mouse->position());
        } else {
            picMain->setFocus();
            picMain_MouseDown(mouse->button(), mouse->position(), mouse->globalPosition().toPoint());
        }
        return true;
    }
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!(mouse->buttons() & (Qt::LeftButton | Qt::MiddleButton))) {
            CancelDrag();
        }
        picMain_MouseMove(mouse->position());
        return true;
    }
    default:
        return QMainWindow::eventFilter(watched, event);
    }
}
