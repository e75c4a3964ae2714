#include "dialogs/frmAbout.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/modVersion.h"
#include "dialogs/modFit.h"
#include "modDesktop.h"
#include "modOwner.h"

namespace {

constexpr const char* webPage = "https://beastwright.example/";

QString TitleLines()
{
    return QStringList{QLatin1String(ProgramTitle),
                       QStringLiteral("Version %1.%2.%3").arg(VersionMajor).arg(VersionMinor).arg(VersionRevision),
                       QString(), QStringLiteral("The Beastwright developers"),
                       QStringLiteral("Copyright (c) 2026 The Beastwright developers")}
        .join(QStringLiteral("\r\n"));
}

// Blue, red under the pointer, and both readable on a dark desktop: there the link stands on a light ground.
QString LinkStyle(const QPalette& palette)
{
    const bool dark = palette.color(QPalette::Window).lightness() < 128;
    return QStringLiteral("QPushButton { color: #0000ff; background-color: %1; border: 1px solid transparent;"
                          " padding: 1px 0px; text-decoration: underline; }"
                          "QPushButton:hover { color: #ff0000; }"
                          "QPushButton:focus { border: 1px dotted %2; }")
        .arg(QLatin1String(dark ? "#ffffff" : "transparent"), QLatin1String(dark ? "#000000" : "#404040"));
}

} // namespace

void ShowAboutDialog()
{
    QDialog dialog(MainWindow);
    dialog.setObjectName(QStringLiteral("frmAbout"));
    dialog.setWindowTitle(QStringLiteral("About"));
    dialog.setFont(WindowFont());

    auto* image = new QLabel;
    image->setObjectName(QStringLiteral("Image1"));
    image->setPixmap(QIcon(QStringLiteral(":/icon/beastwright.png")).pixmap(64, 64));
    auto* title = new QLabel(TitleLines());
    title->setObjectName(QStringLiteral("labTitle"));
    title->setTextFormat(Qt::PlainText);

    // A button, so that the keyboard reaches it.
    auto* link = new QPushButton(QLatin1String(webPage));
    link->setObjectName(QStringLiteral("labLink"));
    link->setAccessibleName(QStringLiteral("Web page"));
    link->setFont(WindowFont()); // a widget with a style of its own does not take its parent's
    link->setCursor(Qt::PointingHandCursor);
    link->setStyleSheet(LinkStyle(dialog.palette()));
    QObject::connect(link, &QPushButton::clicked, [] { OpenWithDesktop(webPage); });

    auto* ok = new QPushButton(QStringLiteral("OK"));
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setDefault(true);
    QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addWidget(link, 0, Qt::AlignLeft);
    auto* upper = new QHBoxLayout;
    upper->addWidget(image, 0, Qt::AlignTop);
    upper->addSpacing(8);
    upper->addLayout(texts);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addLayout(upper);
    layout->addWidget(ok, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    ok->setFocus();
    dialog.exec();
}
