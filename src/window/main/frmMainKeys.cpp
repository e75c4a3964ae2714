#include <array>
#include <cstring>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QWheelEvent>

#include "app/modFrontEnd.h"
#include "dialogs/modBoxes.h"
#include "main/frmMain.h"
#include "modCamera.h"
#include "modCommand.h"
#include "modConsole.h"
#include "modDrag.h"
#include "modTryJoint.h"
#include "modViewFlags.h"

namespace {

constexpr int32_t codeCtrl = 17;
constexpr int32_t codeF11 = 122;
constexpr int longestRepeatGap = 60; ///< milliseconds from the release of a repetition to its press

/// The keys of a Latin keyboard by their place: what lies on a row, from the scan code of its first key on.
struct KeyRow {
    quint32 First;
    const char* Keys;
};
constexpr KeyRow digitRow = {10, "1234"};
constexpr std::array<KeyRow, 3> letterRows = {{{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}}};

int32_t KeyInRow(const KeyRow& row, quint32 scan)
{
    const bool held = scan >= row.First && scan - row.First < std::strlen(row.Keys);
    return held ? row.Keys[scan - row.First] : 0;
}

/// Where a key lies, as X counts the places; 0 where the system does not tell. Windows counts eight less.
quint32 PlaceOf(const QKeyEvent& event)
{
    static const QString system = QGuiApplication::platformName();
    const quint32 scan = event.nativeScanCode();
    if (system == QStringLiteral("windows")) {
        return scan == 0 ? 0 : scan + 8;
    }
    return system == QStringLiteral("xcb") || system.startsWith(QStringLiteral("wayland")) ? scan : 0;
}

/// The code of the key under the finger where the layout gives none: a digit that Shift or the layout has made a sign,
/// a letter of an alphabet other than the Latin one. 0 for other keys.
int32_t CodeOfPlace(const QKeyEvent& event)
{
    constexpr int lastLatin = 0x24F;
    if (event.key() > lastLatin && event.key() < Qt::Key_Escape) {
        for (const KeyRow& row : letterRows) {
            if (const int32_t key = KeyInRow(row, PlaceOf(event))) {
                return key;
            }
        }
    }
    return KeyInRow(digitRow, PlaceOf(event));
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
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        return key == Qt::Key_PageUp ? codePageUp : codePageDown;
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) {
        return key;
    }
    return CodeOfPlace(event);
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
        EditKey(code);
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
        Perform("picMain_KeyDown", [&] { picMain_KeyDown(CodeOf(*event)); });
    }
    QMainWindow::keyPressEvent(event);
}

bool frmMain::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mnuViewCamera) {
        // The menu that came up during a drag takes the release that ends it.
        if (event->type() == QEvent::MouseButtonRelease && MouseButton != 0) {
            const QPoint screen = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
            Perform("picMain_MouseUp", [&] { picMain_MouseUp(picMain->mapFromGlobal(screen)); });
        }
        return false;
    }
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        const int32_t code = CodeOf(*key);
        if (code == 'D' && TryingJoint) {
            jointRelease.stop();
            return true; // each repetition would ask for a frame of its own
        }
        if (code == 'D' && !CtrlHeld) {
            Perform("BeginTryJoint", [this] { BeginTryJoint(); });
        }
        if (key->key() == Qt::Key_Escape) {
            EndTryJoint();
        }
        Perform("picMain_KeyDown", [&] { picMain_KeyDown(code); });
        // The others still press buttons and move the focus.
        return code != 0;
    }
    case QEvent::KeyRelease:
        // A held key repeats as releases too, though the finger has not left it.
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
            CtrlHeld = CtrlHeld && watched != picMain;
            if (CodeOf(*static_cast<QKeyEvent*>(event)) == 'D') {
                // A held key can repeat as releases that do not tell so; the press that follows one stops the timer.
                jointRelease.start(longestRepeatGap);
            }
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
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        EndTryJoint();
        viewEdge->setAutoFillBackground(event->type() == QEvent::FocusIn);
        viewEdge->update();
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!(mouse->button() & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton))) {
            return false;
        }
        if (event->type() == QEvent::MouseButtonRelease) {
            Perform("picMain_MouseUp", [&] { picMain_MouseUp(mouse->position()); });
        } else {
            picMain->setFocus();
            Perform("picMain_MouseDown",
                    [&] { picMain_MouseDown(mouse->button(), mouse->position(), mouse->globalPosition().toPoint()); });
        }
        return true;
    }
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!(mouse->buttons() & (Qt::LeftButton | Qt::MiddleButton))) {
            CancelDrag();
        }
        Perform("picMain_MouseMove", [&] { picMain_MouseMove(mouse->position()); });
        return true;
    }
    default:
        return QMainWindow::eventFilter(watched, event);
    }
}
