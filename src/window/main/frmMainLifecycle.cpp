#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include <QApplication>
#include <QCloseEvent>
#include <QElapsedTimer>
#include <QListWidget>
#include <QOpenGLWidget>
#include <QScreen>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QWindow>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "dialogs/frmLog.h"
#include "main/frmMain.h"
#include "main/modApp.h"
#include "modCommand.h"
#include "model/modRescue.h"
#include "modEvents.h"
#include "modFiles.h"
#include "modOpenGL.h"
#include "modSignals.h"
#include "weights/modEdit.h"

namespace {

/// How long a start waits for the window manager to put the window on the screen.
constexpr qint64 patience = 1000;

void WaitUntilShown(const QWindow& window)
{
    QElapsedTimer time;
    time.start();
    while (!window.isExposed() && time.elapsed() < patience) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    PumpEvents();
}

/// Keeps what would be lost, and says where on the only channel that is sure to be left.
void Rescue()
{
    std::string path;
    std::string error;
    if (!RescueModel(&path, &error)) {
        std::fprintf(stderr, "beastwright: The changes could not be written to \"%s\": %s\n", path.c_str(),
                     error.c_str());
    } else if (!path.empty()) {
        std::fprintf(stderr, "beastwright: The unsaved changes are in \"%s\".\n", path.c_str());
    }
}

} // namespace

void frmMain::WatchForEnd()
{
    const int signals = CatchEndSignals();
    if (signals >= 0) {
        auto* notifier = new QSocketNotifier(signals, QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, [] {
            if (const int number = TakeEndSignal(); number != 0) {
                Rescue();
                // Dialogs and long operations may be on the way here, and none of them must go on.
                std::_Exit(128 + number);
            }
        });
    }
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& session) {
        if (!ModelOpen || !IsSceneChanged()) {
            return;
        }
        if (!session.allowsInteraction()) {
            Rescue();
            return;
        }
        const bool leave = QApplication::activeModalWidget() == nullptr && !Busy() && ConfirmDiscard();
        session.release();
        if (!leave) {
            session.cancel();
        }
    });
}

void frmMain::Start(const std::string& commandLine)
{
    resize(660, 508);
    setMinimumSize(660, 508);
    move(screen()->availableGeometry().center() - QPoint(330, 254));
    winId();
    if (auto* view = qobject_cast<QOpenGLWidget*>(picMain)) {
        // A first picture that nobody sees makes the context, so that it stands before the window shows.
        LayOut();
        view->grabFramebuffer();
    }
    InitApp();
    ReadFlagsFromTicks();
    SetCamera(1);
    SetToolMode(0);
    lstAnimation->addItem(QStringLiteral("NONE"));
    SetCaption();
    FillBoneLists();
    LastPath = ProgramFolder();
    // The window's first picture waits for a model that is there at once; a longer load shows it as it goes on.
    setUpdatesEnabled(false);
    show();
    // The driver makes ready for the grid and the label while the window manager brings up the window.
    MakeViewCurrent();
    PaintFrame();
    WaitUntilShown(*windowHandle());
    FitFrame();
    PumpEvents();
    setUpdatesEnabled(true);
    WatchForEnd();
    if (!unloaded) {
        Perform("OpenFile", [&] { OpenCommandLine(commandLine); });
    }
    if (!unloaded && IsInfoLogVisible()) {
        FocusInfoLog();
    }
}

void frmMain::OpenCommandLine(const std::string& commandLine)
{
    std::string path = commandLine;
    std::erase(path, '"');
    if (!path.empty()) {
        OpenFile(path);
    }
}

void frmMain::closeEvent(QCloseEvent* event)
{
    event->setAccepted(unloaded);
    if (!unloaded) {
        Perform("mnuFileExit", [this, event] { Unload(event); });
    }
}

void frmMain::Unload(QCloseEvent* event)
{
    if (Busy()) {
        StopRequested = true;
        closeWhenDone = true;
        SetPanelText("toolhelp", "Closing...");
        return;
    }
    // A dialog or question that stands is a command half done; it must end before what it works on goes.
    if (QApplication::activeModalWidget() != nullptr) {
        SetPanelText("toolhelp", "Please answer the open dialog first.");
        return;
    }
    if (ModelOpen && !ConfirmDiscard()) {
        return;
    }
    unloaded = true;
    setAcceptDrops(false);
    ShutdownApp();
    event->accept();
}

bool frmMain::ServeEvents()
{
    BeginBusy();
    PumpEvents();
    EndBusy();
    return !EndAfterStop();
}

bool frmMain::EndAfterStop()
{
    StopRequested = false;
    if (!std::exchange(closeWhenDone, false)) {
        return false;
    }
    close();
    return unloaded;
}
