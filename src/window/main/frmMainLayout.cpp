#include <algorithm>
#include <cmath>

#include <QLabel>
#include <QLineEdit>
#include <QMoveEvent>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>
#include <QWindow>

#include "app/modFrontEnd.h"
#include "dialogs/frmLog.h"
#include "main/frmMain.h"
#include "modCamera.h"
#include "modOpenGL.h"
#include "modViewFlags.h"

namespace {

constexpr QSize leastOuterSize(660, 508);
constexpr int statusHeight = 19;
constexpr int countPanelWidth = 200;
constexpr int leastTextPanelWidth = 96;

/// What two opposite sides of the frame take at least. The toolkit tells each rounded from the pixels of the screen, so
/// at a scale that leaves parts of pixels the frame may be thinner than it says.
int LeastFrame(int one, int other, double scale)
{
    const auto pixels = [scale](int side) { return std::max(std::ceil((side - 0.5) * scale), 0.0); };
    return static_cast<int>(std::floor((pixels(one) + pixels(other)) / scale));
}

} // namespace

void frmMain::LayOut()
{
    const int clientWidth = centralWidget()->width();
    const int clientHeight = centralWidget()->height();
    const int w = clientWidth - 183;
    const int h = clientHeight - 49;
    picMain->setGeometry(2, 2, std::max(w, 1), std::max(h + 26, 1));
    viewEdge->setGeometry(picMain->geometry().adjusted(-1, -1, 1, 1));
    tabMain->setGeometry(w + 6, 2, 175, h);
    tlbMain->setGeometry(w + 6, h + 4, 175, 26);
    fraViewing->move(w + 12, 27);
    fraEditing->move(w + 12, 27);
    pgbProgress->move(w - 93, h + 34);
    txtProgress->move(w + 69, h + 34);

    // The text panel takes what the count leaves, so that the progress bar covers as little of the text as it can.
    stsMain->setGeometry(0, clientHeight - statusHeight, clientWidth, statusHeight);
    const int textWidth = std::max(leastTextPanelWidth, clientWidth - countPanelWidth - 2);
    panels[0]->setGeometry(0, 1, textWidth, statusHeight - 1);
    panels[1]->setGeometry(textWidth + 2, 1, countPanelWidth, statusHeight - 1);

    ViewAspect = static_cast<float>(picMain->width()) / static_cast<float>(picMain->height());
    PixelScale = static_cast<float>(devicePixelRatioF());
    MakeViewCurrent();
    ResizeViewport(qRound(picMain->width() * devicePixelRatioF()), qRound(picMain->height() * devicePixelRatioF()));
}

void frmMain::FitFrame()
{
    if (windowHandle() == nullptr || isMaximized() || isFullScreen()) {
        return;
    }
    const QMargins frame = windowHandle()->frameMargins();
    if (minimumWidth() > 0 && frame == frameMargins) {
        return;
    }
    const bool first = frameMargins.isNull() && size() == minimumSize();
    frameMargins = frame;
    const double scale = devicePixelRatioF();
    const QSize least(leastOuterSize.width() - LeastFrame(frame.left(), frame.right(), scale),
                      leastOuterSize.height() - LeastFrame(frame.top(), frame.bottom(), scale));
    setMinimumSize(least);
    if (first) {
        resize(least);
        const QRect screen = this->screen()->availableGeometry();
        move(screen.center() - QPoint(leastOuterSize.width() / 2, leastOuterSize.height() / 2));
    }
}

void frmMain::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    if (isMinimized()) {
        return;
    }
    FitFrame();
    LayOut();
    resized = true;
}

void frmMain::moveEvent(QMoveEvent* event)
{
    QMainWindow::moveEvent(event);
    FitFrame();
}

void frmMain::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && MainForm() != nullptr) {
        FollowTheme();
    }
    if (event->type() == QEvent::WindowStateChange && isMinimized() && IsInfoLogVisible()) {
        HideInfoLog();
    }
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) {
        if (CancelDrag()) {
            SetPanelText("toolhelp", "The drag was given up: another window came to the front.");
        }
        EndTryJoint();
        ListDragging = false;
    }
}

void frmMain::tabMain_Click(int index)
{
    ActiveTab = static_cast<int16_t>(index);
    fraViewing->setVisible(index == 0);
    fraEditing->setVisible(index == 1);
    Redraw(true);
}
