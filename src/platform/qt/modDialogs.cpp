#include "platform/modDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSettings>

#include <limits>

#include "app/modVersion.h"
#include "platform/modFiles.h"
#include "platform/qt/modOwner.h"

namespace {

// A box must stay on the screen, whatever a file put into the names that it shows.
constexpr qsizetype longestWord = 120;
constexpr qsizetype longestText = 3000;
constexpr int roomForTitle = 240; ///< pixels that a box is wide at least; a narrow frame would cut its title

QString FromUtf8(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString BoxText(const std::string& text)
{
    QString lines = FromUtf8(text);
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n').replace(QChar(0), u' ');
    if (lines.size() > longestText) {
        lines = lines.left(longestText / 2) + QStringLiteral(" ... ") + lines.right(longestText / 2);
    }
    qsizetype run = 0;
    for (qsizetype at = 0; at < lines.size(); ++at) {
        run = lines[at].isSpace() ? 0 : run + 1;
        if (run > longestWord && !lines[at].isLowSurrogate()) {
            lines.insert(at, u'\n');
            run = 0;
        }
    }
    return lines;
}

// A box over an open dialog belongs to that dialog, or it could come up behind it.
QWidget* Owner()
{
    QWidget* dialog = QApplication::activeModalWidget();
    return dialog != nullptr ? dialog : MainWindow;
}

QMessageBox::Icon IconOf(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::Information:
        return QMessageBox::Information;
    case BoxIcon::Warning:
        return QMessageBox::Warning;
    case BoxIcon::Stop:
        return QMessageBox::Critical;
    case BoxIcon::Question:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton ShowBox(BoxIcon icon, const std::string& text, QMessageBox::StandardButtons buttons,
                                    QMessageBox::StandardButton first, QMessageBox::StandardButton escape)
{
    QMessageBox box(Owner());
    box.setWindowTitle(QLatin1String(ProgramTitle));
    box.setIcon(IconOf(icon));
    box.setTextFormat(Qt::PlainText);
    box.setText(BoxText(text));
    box.setStandardButtons(buttons);
    box.setDefaultButton(first);
    box.setEscapeButton(escape);
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout()); grid != nullptr) {
        grid->addItem(new QSpacerItem(roomForTitle, 0), grid->rowCount(), 0, 1, grid->columnCount());
    }
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

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
    const QStringList pieces = FromUtf8(filter).split(u'|');
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
    const std::string text = shown.toStdString() + " already exists.\nDo you want to replace it?";
    return ShowBox(BoxIcon::Warning, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No, QMessageBox::No) ==
           QMessageBox::Yes;
}

} // namespace

void ShowMessage(BoxIcon icon, const std::string& text)
{
    ShowBox(icon, text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
}

BoxAnswer AskYesNoCancel(BoxIcon icon, const std::string& text)
{
    switch (ShowBox(icon, text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
                    QMessageBox::Cancel)) {
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    default:
        return BoxAnswer::Cancel;
    }
}

std::string AskText(const std::string& title, const std::string& prompt, const std::string& initial)
{
    QInputDialog dialog(Owner());
    dialog.setWindowTitle(FromUtf8(title));
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setLabelText(FromUtf8(prompt));
    if (auto* label = dialog.findChild<QLabel*>(); label != nullptr) {
        label->setTextFormat(Qt::PlainText);
    }
    if (auto* field = dialog.findChild<QLineEdit*>(); field != nullptr) {
        field->setMaxLength(std::numeric_limits<int>::max());
        field->setAccessibleName(FromUtf8(prompt));
        field->setMinimumWidth(260);
    }
    dialog.setTextValue(FromUtf8(initial));
    return dialog.exec() == QDialog::Accepted ? dialog.textValue().toStdString() : std::string();
}

bool ChooseFile(const FileChooser& chooser, std::string* path)
{
    // The toolkit's chooser would keep its history in a file of the user's; the program stores nothing between runs.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
    QFileDialog dialog(Owner(), FromUtf8(chooser.Title), StartFolder(chooser.StartIn));
    dialog.setObjectName(QStringLiteral("cdlFile"));
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                      QFileDialog::HideNameFilterDetails);
    dialog.setAcceptMode(chooser.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(NameFilters(chooser.Filter));
    const QFileInfo preset(QFile::decodeName(QByteArray::fromStdString(chooser.FileName)));
    if (!chooser.FileName.empty()) {
        dialog.selectFile(preset.dir().exists() ? preset.filePath() : preset.fileName());
    }
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
