#include "dialogs/modFileChooser.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>

#include "app/modFrontEnd.h"
#include "dialogs/modBoxes.h"
#include "modFiles.h"
#include "modOwner.h"

namespace {

/// The toolkit's chooser, or the desktop's where it has one.
class Chooser : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    /// The toolkit may still be listing folders when a path has been typed, and greys the button until it has found the
    /// name. A path that begins with "/" needs no list.
    void KeepButtonForPaths()
    {
        field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        const auto* box = findChild<QDialogButtonBox*>();
        button = box == nullptr
                     ? nullptr
                     : box->button(acceptMode() == AcceptOpen ? QDialogButtonBox::Open : QDialogButtonBox::Save);
        if (field != nullptr && button != nullptr) {
            button->installEventFilter(this);
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange && watched == button && !button->isEnabled() &&
            field->text().startsWith(u'/')) {
            button->setEnabled(true);
        }
        return QFileDialog::eventFilter(watched, event);
    }

private:
    QLineEdit* field = nullptr;
    QPushButton* button = nullptr;
};

bool KeepsItsBytes(const std::string& path)
{
    const QByteArray bytes = QByteArray::fromStdString(path);
    return QFile::encodeName(QFile::decodeName(bytes)) == bytes;
}

QString StartFolder(std::string path)
{
    while (!path.empty() && (!IsFolder(path) || !KeepsItsBytes(path))) {
        const size_t slash = path.find_last_of('/');
        if (slash == std::string::npos) {
            return QDir::currentPath();
        }
        path.resize(slash == 0 && path.size() > 1 ? 1 : slash);
    }
    return path.empty() ? QDir::currentPath() : QFile::decodeName(QByteArray::fromStdString(path));
}

// "Name (*.ext)|*.ext|..." in the toolkit's form. The name keeps its own brackets; the pattern behind it is not shown.
QStringList NameFilters(const std::string& filter)
{
    const QStringList pieces = QString::fromStdString(filter).split(u'|');
    QStringList filters;
    for (qsizetype at = 0; at + 1 < pieces.size(); at += 2) {
        QString pattern = pieces[at + 1] == QStringLiteral("*.*") ? QStringLiteral("*") : pieces[at + 1];
        filters += pieces[at] + QStringLiteral(" (") + pattern.replace(u';', u' ') + u')';
    }
    return filters;
}

bool MayReplace(const std::string& path, const QString& shown)
{
    if (IsReadOnly(path)) {
        ShowMessage(BoxIcon::Warning, "Can't overwrite file.\nFile is marked read only.");
        return false;
    }
    if (!QFileInfo::exists(QFile::decodeName(QByteArray::fromStdString(path))) && !IsPlainFile(path)) {
        return true;
    }
    return AskToReplace(shown.toStdString());
}

} // namespace

bool ChooseFile(const FileChooser& chooser, std::string* path)
{
    // The toolkit's chooser would keep its history in a file of the user's; the program stores nothing between runs.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
    Chooser dialog(OwnerOfBoxes(), QString::fromStdString(chooser.Title), StartFolder(chooser.StartIn));
    dialog.setObjectName(QStringLiteral("cdlFile"));
    dialog.setOptions(QFileDialog::DontConfirmOverwrite | QFileDialog::HideNameFilterDetails);
    dialog.setAcceptMode(chooser.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(NameFilters(chooser.Filter));
    const QFileInfo preset(QFile::decodeName(QByteArray::fromStdString(chooser.FileName)));
    if (!chooser.FileName.empty()) {
        dialog.selectFile(preset.dir().exists() ? preset.filePath() : preset.fileName());
    }
    dialog.KeepButtonForPaths();
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const QString shown = dialog.selectedFiles().constFirst();
        // A preset name that is not UTF-8 cannot be shown, but it is still the name that the user left standing.
        *path = shown == preset.filePath() ? chooser.FileName : QFile::encodeName(shown).toStdString();
        if (!chooser.Save || MayReplace(*path, QFileInfo(shown).fileName())) {
            return true;
        }
    }
    return false;
}
