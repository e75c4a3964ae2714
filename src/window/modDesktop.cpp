#include "modDesktop.h"

#include <QDesktopServices>
#include <QFile>
#include <QProcess>
#include <QUrl>

void OpenWithDesktop(const std::string& target)
{
    const QString text = QFile::decodeName(QByteArray::fromStdString(target));
    QProcess opener;
    opener.setProgram(QStringLiteral("xdg-open"));
    opener.setArguments({text});
    opener.setStandardInputFile(QProcess::nullDevice());
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    if (!opener.startDetached()) {
        QDesktopServices::openUrl(text.startsWith(u'/') ? QUrl::fromLocalFile(text) : QUrl(text));
    }
}
