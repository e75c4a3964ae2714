#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

#include "app/modFrontEnd.h"
#include "app/modMisc.h"
#include "main/frmMain.h"
#include "modCommand.h"
#include "model/modStrings.h"
#include "modPaths.h"

namespace {

/// The path of the first file of a drop in the file system's encoding, byte by byte; empty when there is none.
std::string FirstFile(const QMimeData& data)
{
    for (QByteArray line : data.data(QStringLiteral("text/uri-list")).split('\n')) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith('#')) {
            continue;
        }
        // Whatever stands for no part of an address belongs to the path.
        const QUrl url = QUrl::fromEncoded(line.toPercentEncoding("/:@!$&'()*+,;=[]").replace("%25", "%"));
        if (!url.isLocalFile()) {
            return {};
        }
#ifdef Q_OS_WIN
        const std::string path = PathOfText(url.toLocalFile());
#else
        // A name need not be UTF-8.
        const std::string path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()).toStdString();
#endif
        return std::string(TextBeforeNull(path));
    }
    return {};
}

} // namespace

void frmMain::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void frmMain::dropEvent(QDropEvent* event)
{
    const std::string path = FirstFile(*event->mimeData());
    event->acceptProposedAction();
    if (!path.empty()) {
        // The program that the file came from waits until this event is answered, so the load comes behind it.
        QTimer::singleShot(0, this, [this, path] { Perform("DropFile", [&] { DropFile(path); }); });
    }
}

void frmMain::DropFile(const std::string& path)
{
    if (unloaded || !FileExists(path) || LowerCase(ExtensionOf(path)) != "mvm") {
        return;
    }
    if (Busy() || QApplication::activeModalWidget() != nullptr) {
        SetPanelText("toolhelp", "The dropped file was not opened: the program is busy.");
        return;
    }
    if (CloseModel()) {
        OpenFile(path);
    }
}
