#include "support/ui_script.h"

namespace {

std::string Shown(QDialog* dialog)
{
    const std::string title = dialog->windowTitle().toStdString();
    if (const auto* box = qobject_cast<QMessageBox*>(dialog)) {
        EXPECT_EQ(title, "Beastwright");
        return std::string(1, " i!x?"[box->icon()]) + " " + box->text().replace(u'\n', u'|').toStdString();
    }
    if (const auto* prompt = qobject_cast<QInputDialog*>(dialog)) {
        return title + "|" + prompt->labelText().toStdString() + "|" + prompt->textValue().toStdString();
    }
    if (const auto* chooser = qobject_cast<QFileDialog*>(dialog)) {
        return title + (chooser->acceptMode() == QFileDialog::AcceptSave ? "|save " : "|open ") +
               chooser->directory().absolutePath().toStdString() + "/|" +
               chooser->findChild<QLineEdit*>()->text().toStdString() + "|" +
               Part<QComboBox>(chooser, "fileTypeCombo")->currentText().toStdString();
    }
    const auto* list = dialog->findChild<QListWidget*>();
    return title + (list == nullptr ? "" : " " + std::to_string(list->currentRow()));
}

void Type(QDialog* dialog, const std::string& text)
{
    // Without the focus a file chooser keeps the row of an earlier name selected.
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    auto* field = dialog->findChild<QLineEdit*>();
    field->setFocus();
    const QString wanted = QString::fromStdString(text.starts_with("~/") ? TestFolder + text.substr(2) : text);
    const auto* chooser = qobject_cast<QFileDialog*>(dialog);
    // A chooser that is still reading its folder may take up the row of another name.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        field->setText(QStringLiteral("/none"));
        field->setText(wanted);
        return chooser == nullptr || QFileInfo(chooser->selectedFiles()[0]).fileName() == QFileInfo(wanted).fileName();
    })) << text;
    QTest::keyClick(field, Qt::Key_Return);
}

void Perform(const Step& step, QDialog* dialog)
{
    // Before it stands, its parts have no places yet, and clicks are lost.
    EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog));
    if (dialog->layout() != nullptr) {
        dialog->layout()->activate();
    }
    const size_t arrow = step.Line.rfind(" > ");
    if (arrow != std::string::npos) {
        const std::string wanted = step.Line.substr(0, arrow);
        std::string shown = Tilde(Shown(dialog));
        if (wanted.ends_with("...")) {
            shown = shown.substr(0, wanted.size() - 3) + "...";
        }
        EXPECT_EQ(shown, wanted);
    }
    if (step.Look) {
        step.Look(dialog);
    }
    if (!step.Line.empty()) {
        Answer(dialog, arrow == std::string::npos ? step.Line : step.Line.substr(arrow + 3));
    }
}

} // namespace

std::string Tilde(std::string text)
{
    // The toolkit writes every separator as a slash.
    for (const std::string& folder :
         {TestFolder, QDir::fromNativeSeparators(QString::fromStdString(TestFolder)).toStdString()}) {
        for (size_t at = 0; !folder.empty() && (at = text.find(folder)) != std::string::npos;) {
            text.replace(at, folder.size(), "~/");
        }
    }
    return text;
}

void Answer(QDialog* dialog, const std::string& answer)
{
    if (answer == "Esc") {
        QTest::keyClick(dialog, Qt::Key_Escape);
    } else if (answer == "Close") {
        dialog->close();
    } else if (const auto* box = qobject_cast<QMessageBox*>(dialog)) {
        for (QAbstractButton* button : box->buttons()) {
            if (button->text().remove(u'&').toStdString() == answer) {
                button->click();
                return;
            }
        }
        ADD_FAILURE() << "no button " << answer;
        dialog->reject();
    } else if (qobject_cast<QInputDialog*>(dialog) != nullptr || qobject_cast<QFileDialog*>(dialog) != nullptr) {
        Type(dialog, answer);
    } else {
        for (const QString& word : QString::fromStdString(answer).split(u' ')) {
            bool isRow = false;
            const int row = word.toInt(&isRow);
            auto* list = dialog->findChild<QListWidget*>();
            if (isRow) {
                list->setCurrentRow(row);
            } else if (list != nullptr && !list->findItems(word, Qt::MatchExactly).isEmpty()) {
                list->setCurrentItem(list->findItems(word, Qt::MatchExactly)[0]);
            } else {
                Press(dialog, word.toStdString());
            }
        }
    }
}

Script::Script(std::deque<Step> planned) : steps(std::move(planned))
{
    Wait();
}

Script::~Script()
{
    EXPECT_TRUE(steps.empty()) << "did not come up: " << steps.front().Line;
}

// Each turn is a timer of its own: a step may open the next dialog before it returns.
void Script::Wait()
{
    QTimer::singleShot(2, &owner, [this] { Poll(); });
}

void Script::Poll()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    // A dialog whose step still runs only stands below the one that the step opened; one that has closed may come
    // again.
    const bool fresh = dialog != nullptr && !dialog->property("stepRuns").toBool() &&
                       (dialog != lastDialog || !dialog->property("stepDone").toBool());
    if (!fresh || !dialog->isVisible()) {
        Wait();
        return;
    }
    lastDialog = dialog;
    if (steps.empty()) {
        ADD_FAILURE() << "an unexpected dialog: " << Shown(dialog);
        dialog->reject();
        Wait();
        return;
    }
    dialog->setProperty("stepRuns", true);
    const Step step = steps.front();
    steps.pop_front();
    Wait();
    const QPointer<QDialog> standing = dialog;
    Perform(step, dialog);
    if (standing) {
        standing->setProperty("stepRuns", false);
        standing->setProperty("stepDone", true);
    }
}

void Press(const QWidget* parent, const std::string& name)
{
    auto* button = Part<QAbstractButton>(parent, name);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
}
