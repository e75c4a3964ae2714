#include "dialogs/modFileChooser.h"

#include <algorithm>
#include <filesystem>

#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>

#include "app/modFrontEnd.h"
#include "dialogs/modBoxes.h"
#include "modFiles.h"
#include "modOwner.h"
#include "modPaths.h"

namespace {

/// The program stores nothing between runs, but the toolkit's chooser keeps its history for all of the user's programs:
/// in a file, which it is given none of, or on Windows in a place that cannot be moved, which gets back what it held.
class NoHistory {
public:
    NoHistory()
    {
#ifdef Q_OS_WIN
        for (const QString& key : software.allKeys()) {
            held[key] = software.value(key);
        }
#else
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
#endif
    }
#ifdef Q_OS_WIN
    ~NoHistory()
    {
        software.sync();
        for (const QString& key : software.allKeys()) {
            if (!held.contains(key)) {
                software.remove(key);
            }
        }
        for (const auto& [key, value] : held.asKeyValueRange()) {
            software.setValue(key, value);
        }
        if (held.isEmpty()) {
            software.remove(QString());
        }
    }
    NoHistory(const NoHistory&) = delete;
    NoHistory& operator=(const NoHistory&) = delete;

private:
    QSettings software{QStringLiteral("HKEY_CURRENT_USER\\Software\\QtProject"), QSettings::NativeFormat};
    QMap<QString, QVariant> held;
#endif
};

/// The toolkit's chooser, or the desktop's where it has one.
class Chooser : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    /// The toolkit may still be listing folders when a path has been typed, and greys the button until it has found the
    /// name. A whole path needs no list.
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
            QDir::isAbsolutePath(field->text())) {
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
    return PathOfText(TextOfPath(path)) == path;
}

QString StartFolder(std::string path)
{
    constexpr auto separator = static_cast<char>(std::filesystem::path::preferred_separator);
    std::replace(path.begin(), path.end(), '/', separator);
    while (!path.empty() && (!IsFolder(path) || !KeepsItsBytes(path))) {
        const size_t slash = path.rfind(separator);
        if (slash == std::string::npos) {
            return QDir::currentPath();
        }
        // A drive without the separator behind it is the folder that is current on it.
        const bool ofRoot = slash == 0 || path[slash - 1] == ':';
        path.resize(ofRoot && path.size() > slash + 1 ? slash + 1 : slash);
    }
    return path.empty() ? QDir::currentPath() : TextOfPath(path);
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
    if (!QFileInfo::exists(TextOfPath(path)) && !IsPlainFile(path)) {
        return true;
    }
    return AskToReplace(shown.toStdString());
}

} // namespace

bool ChooseFile(const FileChooser& chooser, std::string* path)
{
    const NoHistory none;
    Chooser dialog(OwnerOfBoxes(), QString::fromStdString(chooser.Title), StartFolder(chooser.StartIn));
    dialog.setObjectName(QStringLiteral("cdlFile"));
    dialog.setOptions(QFileDialog::DontConfirmOverwrite | QFileDialog::HideNameFilterDetails);
    dialog.setAcceptMode(chooser.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(NameFilters(chooser.Filter));
    const QFileInfo preset(TextOfPath(chooser.FileName));
    if (!chooser.FileName.empty()) {
        dialog.selectFile(preset.dir().exists() ? preset.filePath() : preset.fileName());
    }
    dialog.KeepButtonForPaths();
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const QString shown = dialog.selectedFiles().constFirst();
        // A preset name that is not UTF-8 cannot be shown, but it is still the name that the user left standing.
        *path = shown == preset.filePath() ? chooser.FileName : PathOfText(shown);
        if (!chooser.Save || MayReplace(*path, QFileInfo(shown).fileName())) {
            return true;
        }
    }
    return false;
}
