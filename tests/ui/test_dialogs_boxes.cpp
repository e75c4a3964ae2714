#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>

#include "app/modFrontEnd.h"
#include "dialogs/modBoxes.h"
#include "dialogs/modFileChooser.h"
#include "modDesktop.h"
#include "modFiles.h"
#include "ui/dialog_steps.h"

namespace {

void Write(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

DialogSteps::Step Typing(const QString& name)
{
    return [name](QDialog* dialog) {
        auto* field = Part<QLineEdit>(dialog, "fileNameEdit");
        // Without the focus the chooser keeps the row of an earlier name selected.
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
        field->setFocus();
        field->setText(name);
        QTest::keyClick(field, Qt::Key_Return);
    };
}

DialogSteps::Step Answering(QMessageBox::StandardButton button, const QString& expected)
{
    return [=](QDialog* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_NE(box, nullptr) << dialog->windowTitle().toStdString();
        EXPECT_TRUE(box->text().contains(expected)) << box->text().toStdString();
        QTest::mouseClick(box->button(button), Qt::LeftButton);
    };
}

TEST(Boxes, ShowTheirTextAsItStandsUnderTheProgramsTitle)
{
    struct Case {
        BoxIcon Icon;
        QMessageBox::Icon Shown;
    };
    for (const Case& each :
         {Case{BoxIcon::Information, QMessageBox::Information}, Case{BoxIcon::Warning, QMessageBox::Warning},
          Case{BoxIcon::Stop, QMessageBox::Critical}, Case{BoxIcon::Question, QMessageBox::Question}}) {
        const DialogSteps steps({[&](QDialog* dialog) {
            auto* box = qobject_cast<QMessageBox*>(dialog);
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->windowTitle(), QStringLiteral("Beastwright"));
            EXPECT_EQ(box->icon(), each.Shown);
            EXPECT_EQ(box->textFormat(), Qt::PlainText);
            EXPECT_GE(box->width(), 240) << "a narrow frame cuts the title";
            EXPECT_EQ(box->text(), QStringLiteral("<b>\u00e9</b>\nsecond\nthird"));
            QTest::keyClick(box, Qt::Key_Return);
        }});
        ShowMessage(each.Icon, "<b>\xC3\xA9</b>\r\nsecond\nthird");
    }
}

TEST(Boxes, StayOnTheScreenWhateverTheTextIs)
{
    const DialogSteps steps({[](QDialog* dialog) {
        EXPECT_LT(dialog->width(), 1280);
        EXPECT_LT(dialog->height(), 1024);
        QTest::keyClick(dialog, Qt::Key_Escape);
    }});
    ShowMessage(BoxIcon::Warning, std::string(200'000, 'x'));
}

TEST(Boxes, ClosingAQuestionIsCancel)
{
    struct Case {
        DialogSteps::Step Step;
        BoxAnswer Answer;
    };
    const auto press = [](QMessageBox::StandardButton button) {
        return [button](QDialog* dialog) {
            QTest::mouseClick(qobject_cast<QMessageBox*>(dialog)->button(button), Qt::LeftButton);
        };
    };
    const std::vector<Case> cases{{press(QMessageBox::Yes), BoxAnswer::Yes},
                                  {press(QMessageBox::No), BoxAnswer::No},
                                  {press(QMessageBox::Cancel), BoxAnswer::Cancel},
                                  {[](QDialog* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); }, BoxAnswer::Cancel},
                                  {[](QDialog* dialog) { dialog->close(); }, BoxAnswer::Cancel}};
    for (const Case& each : cases) {
        const DialogSteps steps({each.Step});
        EXPECT_EQ(AskYesNoCancel(BoxIcon::Warning, "Continue?"), each.Answer);
    }
}

TEST(Boxes, TheTextPromptGivesWhatWasTypedAndNothingWhenCancelled)
{
    const auto look = [](QDialog* dialog) {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Rename Mesh"));
        auto* field = dialog->findChild<QLineEdit*>();
        EXPECT_EQ(field->text(), QStringLiteral("old <i>"));
        return field;
    };
    {
        const DialogSteps steps({[&](QDialog* dialog) {
            auto* field = look(dialog);
            field->setText(QStringLiteral("n\u00e9w"));
            QTest::keyClick(field, Qt::Key_Return);
        }});
        EXPECT_EQ(AskText("Rename Mesh", "New mesh name:", "old <i>"), "n\xC3\xA9w");
    }
    const DialogSteps steps({[&](QDialog* dialog) { QTest::keyClick(look(dialog), Qt::Key_Escape); }});
    EXPECT_EQ(AskText("Rename Mesh", "New mesh name:", "old <i>"), "");
}

class Chooser : public testing::Test {
protected:
    std::string Place(const std::string& name) const { return folder.path().toStdString() + "/" + name; }
    FileChooser Asking(bool save) const
    {
        return {save, save ? "Save File" : "Open File", "Morvane Models (*.mvm)|*.mvm|All Files (*.*)|*.*",
                folder.path().toStdString(), ""};
    }

    QTemporaryDir folder;
    std::string path = "untouched";
};

TEST_F(Chooser, OpensFromTheFolderThatItIsTold)
{
    Write(Place("one.mvm"), "1");
    std::filesystem::create_directory(Place("sub"));
    struct Case {
        std::string StartIn;
        std::string Typed;
        std::string Expected;
    };
    for (const Case& each :
         {Case{Place(""), "one.mvm", Place("one.mvm")}, Case{Place("one.mvm"), "one.mvm", Place("one.mvm")},
          Case{Place("sub"), "new", Place("sub/new")}, Case{Place("gone/away/x.mvm"), "one.mvm", Place("one.mvm")},
          Case{Place("bad\xFF/x.mvm"), "absent.txt", Place("absent.txt")}}) {
        FileChooser chooser = Asking(false);
        chooser.StartIn = each.StartIn;
        const DialogSteps steps({Typing(QString::fromStdString(each.Typed))});
        EXPECT_TRUE(ChooseFile(chooser, &path));
        EXPECT_EQ(path, each.Expected) << each.StartIn;
    }
}

TEST_F(Chooser, OffersItsFiltersByNameAndMatchesAnyCase)
{
    for (const char* name : {"a.mvm", "B.MVM", "c.txt", "README"}) {
        Write(Place(name), "");
    }
    const auto names = [](QFileDialog* dialog) {
        QStringList rows;
        const auto* view = dialog->findChild<QAbstractItemView*>(QStringLiteral("listView"));
        for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row) {
            rows += view->model()->index(row, 0, view->rootIndex()).data().toString();
        }
        rows.sort();
        return rows;
    };
    const DialogSteps steps({[&](QDialog* dialog) {
        auto* chooser = qobject_cast<QFileDialog*>(dialog);
        auto* filters = Part<QComboBox>(dialog, "fileTypeCombo");
        ASSERT_EQ(filters->count(), 2);
        EXPECT_EQ(filters->itemText(0), QStringLiteral("Morvane Models (*.mvm)"));
        EXPECT_EQ(filters->itemText(1), QStringLiteral("All Files (*.*)"));
        const QStringList models{QStringLiteral("B.MVM"), QStringLiteral("a.mvm")};
        EXPECT_TRUE(QTest::qWaitFor([&] { return names(chooser) == models; }))
            << names(chooser).join(u' ').toStdString();
        filters->setCurrentIndex(1);
        Q_EMIT filters->activated(1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return names(chooser).size() == 4; }))
            << names(chooser).join(u' ').toStdString();
        dialog->close();
    }});
    EXPECT_FALSE(ChooseFile(Asking(false), &path));
    EXPECT_EQ(path, "untouched");
}

TEST_F(Chooser, AsksBeforeItReplacesAndRefusesAReadOnlyFile)
{
    Write(Place("there.mvm"), "1");
    Write(Place("locked.mvm"), "1");
    std::filesystem::permissions(Place("locked.mvm"), std::filesystem::perms::owner_read);
    const DialogSteps steps(
        {Typing(QStringLiteral("locked.mvm")), Answering(QMessageBox::Ok, QStringLiteral("read only")),
         Typing(QStringLiteral("there.mvm")), Answering(QMessageBox::No, QStringLiteral("there.mvm already exists")),
         Typing(QStringLiteral("there.mvm")), Answering(QMessageBox::Yes, QStringLiteral("there.mvm already exists"))});
    EXPECT_TRUE(ChooseFile(Asking(true), &path));
    EXPECT_EQ(path, Place("there.mvm"));
}

TEST_F(Chooser, TakesANewNameAsTypedAndPresetNamesToTheByte)
{
    {
        const DialogSteps steps({Typing(QStringLiteral("plain \u00e9"))});
        EXPECT_TRUE(ChooseFile(Asking(true), &path));
        EXPECT_EQ(path, Place("plain \xC3\xA9"));
    }
    for (const std::string name : {"model.mvm", "caf\xE9.mvm"}) {
        FileChooser chooser = Asking(true);
        chooser.StartIn = "/";
        chooser.FileName = Place(name);
        const DialogSteps steps({[](QDialog* dialog) {
            EXPECT_TRUE(Part<QLineEdit>(dialog, "fileNameEdit")->text().endsWith(QStringLiteral(".mvm")));
            auto* buttons = Part<QDialogButtonBox>(dialog, "buttonBox");
            QTest::mouseClick(buttons->button(QDialogButtonBox::Save), Qt::LeftButton);
        }});
        EXPECT_TRUE(ChooseFile(chooser, &path));
        EXPECT_EQ(path, Place(name));
    }
}

TEST_F(Chooser, TheDesktopsHandlerGetsTheTargetAndIsNotWaitedFor)
{
    const std::string note = Place("note");
    Write(Place("xdg-open"), "#!/bin/sh\nprintf %s \"$1\" > \"" + note + ".part\" && mv \"" + note + ".part\" \"" +
                                 note + "\"\nsleep 2\n");
    std::filesystem::permissions(Place("xdg-open"), std::filesystem::perms::owner_all);
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", folder.path().toLocal8Bit() + ':' + before);
    OpenWithDesktop("/tmp/a b/readme.html");
    qputenv("PATH", before);
    std::string target;
    std::string error;
    EXPECT_TRUE(QTest::qWaitFor([&] { return ReadWhole(note, &target, &error); }));
    EXPECT_EQ(target, "/tmp/a b/readme.html");
}

} // namespace
