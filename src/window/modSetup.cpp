#include "modSetup.h"

#include <clocale>

#include <QApplication>
#include <QFile>
#include <QProxyStyle>

#include "dialogs/modFit.h"
#include "main/frmView.h"

namespace {

/// Fusion with plain buttons in every dialog, whatever the desktop puts on those of its own.
class PlainStyle : public QProxyStyle {
public:
    PlainStyle() : QProxyStyle(QStringLiteral("Fusion")) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
    }
};

} // namespace

void PrepareApplication()
{
    // The application object has set the locale of the C library from the environment.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName(QStringLiteral("beastwright"));
    QGuiApplication::setDesktopFileName(QStringLiteral("example.beastwright.Beastwright"));
    QApplication::setStyle(new PlainStyle);
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
