#include "dialogs/modBoxes.h"

#include <limits>

#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>

#include "app/modFrontEnd.h"
#include "app/modVersion.h"
#include "modOwner.h"

namespace {

// A box must stay on the screen, whatever a file put into the names that it shows.
constexpr qsizetype longestWord = 120;
constexpr qsizetype longestText = 3000;
constexpr int roomForTitle = 240; ///< pixels that a box is wide at least; a narrow frame would cut its title

QString BoxText(const std::string& text)
{
    QString lines = QString::fromStdString(text);
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
    QMessageBox box(OwnerOfBoxes());
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

} // namespace

void ShowMessage(BoxIcon icon, const std::string& text)
{
    ShowBox(icon, text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
}

BoxAnswer AskYesNoCancel(BoxIcon icon, const std::string& text)
{
    // Every such question stands before a loss of work, so a hasty Enter must not be a Yes.
    switch (ShowBox(icon, text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Cancel,
                    QMessageBox::Cancel)) {
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    default:
        return BoxAnswer::Cancel;
    }
}

bool AskToReplace(const std::string& name)
{
    const std::string text = name + " already exists.\nDo you want to replace it?";
    return ShowBox(BoxIcon::Warning, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No, QMessageBox::No) ==
           QMessageBox::Yes;
}

std::string AskText(const std::string& title, const std::string& prompt, const std::string& initial)
{
    QInputDialog dialog(OwnerOfBoxes());
    dialog.setWindowTitle(QString::fromStdString(title));
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setLabelText(QString::fromStdString(prompt));
    if (auto* label = dialog.findChild<QLabel*>(); label != nullptr) {
        label->setTextFormat(Qt::PlainText);
    }
    if (auto* field = dialog.findChild<QLineEdit*>(); field != nullptr) {
        field->setMaxLength(std::numeric_limits<int>::max());
        field->setAccessibleName(QString::fromStdString(prompt));
        field->setMinimumWidth(260);
    }
    dialog.setTextValue(QString::fromStdString(initial));
    return dialog.exec() == QDialog::Accepted ? dialog.textValue().toStdString() : std::string();
}
