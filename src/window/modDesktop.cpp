#include "modDesktop.h"

#include <QDesktopServices>
#include <QDir>
#include <QProcess>
#include <QUrl>

#include "modPaths.h"

namespace {

// On a desktop of the X world: without a shell and a terminal of the user's to write on.
bool OpenWithOpener([[maybe_unused]] const QString& target)
{
#ifdef Q_OS_WIN
    return false;
#else
    QProcess opener;
    opener.setProgram(QStringLiteral("xdg-open"));
    opener.setArguments({target});
    opener.setStandardInputFile(QProcess::nullDevice());
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    return opener.startDetached();
#endif
}

} // namespace

void OpenWithDesktop(const std::string& target)
{
    const QString text = TextOfPath(target);
    if (!OpenWithOpener(text)) {
        QDesktopServices::openUrl(QDir::isAbsolutePath(text) ? QUrl::fromLocalFile(text) : QUrl(text));
    }
}
