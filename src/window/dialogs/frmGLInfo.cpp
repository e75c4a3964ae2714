#include "dialogs/frmGLInfo.h"

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "dialogs/modFit.h"
#include "modOpenGL.h"
#include "modOwner.h"

namespace {

QLabel* InfoLabel(const char* name, const char* caption, const std::string& text)
{
    auto* label = new QLabel(QLatin1String(caption) + QString::fromStdString(text));
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

void ShowGLInfoDialog()
{
    MakeViewCurrent();
    const OpenGLInfo info = QueryOpenGLInfo();

    QDialog dialog(MainWindow);
    dialog.setObjectName(QStringLiteral("frmGLInfo"));
    dialog.setWindowTitle(QStringLiteral("OpenGL Info"));
    dialog.setFont(WindowFont());

    auto* list = new QListWidget;
    list->setObjectName(QStringLiteral("lstExtensions"));
    list->setAccessibleName(QStringLiteral("Supported extensions"));
    list->setFixedSize(320, 180);
    // The string ends with a blank, and the last piece is the empty one behind it.
    QStringList extensions = QString::fromStdString(info.Extensions).split(u' ');
    extensions.removeLast();
    list->addItems(extensions);

    auto* close = new QPushButton(QStringLiteral("Close"));
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::accept);

    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(InfoLabel("labVendor", "Vendor: ", info.Vendor));
    layout->addWidget(InfoLabel("labRenderer", "Renderer: ", info.Renderer));
    layout->addWidget(InfoLabel("labVersion", "Version: ", info.Version));
    layout->addWidget(InfoLabel("Label1", "Supported extensions:", {}));
    layout->addWidget(list);
    layout->addWidget(close, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    close->setFocus();
    dialog.exec();
}
