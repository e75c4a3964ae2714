#include "modSetup.h"

#include <clocale>

#include <QApplication>
#include <QFile>
#include <QStyleFactory>

#include "dialogs/modFit.h"
#include "main/frmView.h"

void PrepareApplication()
{
    // The application object has set the locale of the C library from the environment.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName(QStringLiteral("beastwright"));
    QGuiApplication::setDesktopFileName(QStringLiteral("example.beastwright.Beastwright"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(WindowFont());
    QSurfaceFormat::setDefaultFormat(ViewFormat());
}

QIcon ProgramIcon()
{
    for (const QString& file : {QStringLiteral(":/icon/beastwright.png"), QStringLiteral(":/icon/beastwright.svg")}) {
        if (QFile::exists(file)) {
            return QIcon(file);
        }
    }
    return {};
}
