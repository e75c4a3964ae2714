#include "dialogs/frmLog.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScreen>
#include <QTextCursor>
#include <QTimer>
#include <QWidget>

#include "app/modFrontEnd.h"
#include "main/modApp.h"
#include "modSetup.h"

namespace {

constexpr qsizetype charactersPerTurn = 200'000;
// The field lays a line out as a whole. A name of many megabytes, which a file can hold, would stop the window, so it
// goes on in rows of its own.
constexpr qsizetype longestRow = 1'000'000;

class LogWindow : public QWidget {
public:
    LogWindow();
    void Add(const std::string& text);
    void Clear();
    void Flush();
    void Present();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QPlainTextEdit* txtLog;
    QTimer turn;
    QString waiting;     ///< lines that the field does not show yet
    qsizetype taken = 0; ///< characters of `waiting` that it does show
    bool shownBefore = false;
};

QPointer<LogWindow> logWindow;

LogWindow::LogWindow() : txtLog(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("frmLog"));
    setWindowTitle(QStringLiteral("Info Log"));
    setWindowIcon(ProgramIcon());
    setAttribute(Qt::WA_QuitOnClose, false);
    resize(395, 269);

    QFont font;
    font.setFamilies(
        {QStringLiteral("Courier New"), QStringLiteral("Liberation Mono"), QStringLiteral("DejaVu Sans Mono")});
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(9);
    txtLog->setObjectName(QStringLiteral("txtLog"));
    txtLog->setAccessibleName(QStringLiteral("Info Log"));
    txtLog->setFont(font);
    txtLog->setReadOnly(true);
    txtLog->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtLog->setTabChangesFocus(true);
    txtLog->setUndoRedoEnabled(false);
    txtLog->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtLog->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtLog->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusProxy(txtLog);

    turn.setInterval(0);
    QObject::connect(&turn, &QTimer::timeout, this, [this] { Flush(); });
}

void LogWindow::Add(const std::string& text)
{
    QString line = QString::fromStdString(text);
    for (qsizetype at = longestRow; at < line.size(); at += longestRow + 1) {
        line.insert(at, u'\n');
    }
    line += u'\n';
    waiting += line;
    turn.start();
}

void LogWindow::Clear()
{
    waiting.clear();
    taken = 0;
    turn.stop();
    txtLog->clear();
}

// One insertion of many lines costs a fraction of as many insertions, and pieces of a bounded size keep the windows
// alive.
void LogWindow::Flush()
{
    const QString piece = waiting.mid(taken, charactersPerTurn);
    taken += piece.size();
    if (taken == waiting.size()) {
        waiting.clear();
        taken = 0;
        turn.stop();
    }
    QTextCursor end(txtLog->document());
    end.movePosition(QTextCursor::End);
    end.insertText(piece);
    txtLog->setTextCursor(end);
    txtLog->ensureCursorVisible();
}

void LogWindow::Present()
{
    Flush();
    if (!shownBefore) {
        shownBefore = true;
        const QRect screenArea = QGuiApplication::primaryScreen()->availableGeometry();
        move(screenArea.center() - rect().center());
    }
    if (isMinimized()) {
        showNormal();
    }
    show();
    raise();
    activateWindow();
    txtLog->setFocus();
}

void LogWindow::closeEvent(QCloseEvent* event)
{
    if (!AppClosing) {
        event->ignore();
        hide();
    }
}

void LogWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    txtLog->setGeometry(2, 2, std::max(width() - 3, 0), std::max(height() - 3, 0));
}

LogWindow& TheLog()
{
    if (logWindow.isNull()) {
        logWindow = new LogWindow;
    }
    return *logWindow;
}

} // namespace

void LogLine(const std::string& text)
{
    TheLog().Add(text);
    LogDirty = true;
}

void ShowInfoLog()
{
    TheLog().Present();
    LogDirty = false;
}

bool IsInfoLogVisible()
{
    return !logWindow.isNull() && logWindow->isVisible();
}

void HideInfoLog()
{
    if (!logWindow.isNull()) {
        logWindow->hide();
    }
}

void ClearInfoLog()
{
    if (!logWindow.isNull()) {
        logWindow->Clear();
    }
}

void FocusInfoLog()
{
    if (IsInfoLogVisible()) {
        logWindow->Present();
    }
}

void CloseInfoLog()
{
    delete logWindow;
}
