// The dialogs and the Info Log beyond what the commands show of them.

#include "dialogs/frmBones.h"
#include "dialogs/frmMeshes.h"
#include "dialogs/modBoxes.h"
#include "dialogs/modFileChooser.h"
#include "support/ui_window.h"

TEST(Boxes, ShowAnyTextAndAnswerToTheirKeys)
{
    const auto box = [](const QString& text) {
        return [text](QDialog* dialog) {
            EXPECT_EQ(qobject_cast<QMessageBox*>(dialog)->textFormat(), Qt::PlainText);
            EXPECT_GE(dialog->width(), 240) << "a narrow frame cuts the title";
            EXPECT_LT(dialog->width(), 1280);
            EXPECT_LT(dialog->height(), 1024);
            EXPECT_TRUE(text.isEmpty() || qobject_cast<QMessageBox*>(dialog)->text() == text);
            QTest::keyClick(dialog, Qt::Key_Return);
        };
    };
    const QString x(120, u'x');
    const Script script({Step("", box(QStringLiteral("<b>\u00e9</b>\nsecond\nthird fourth"))), Step("", box(QString())),
                         Step("", box(x + u'\n' + x + u' ' + x)), "? Go on? > Yes", "? Go on? > No",
                         "? Go on? > Cancel", "! Go on? > Esc", "! Go on? > Close", Step("", box(QString())),
                         Step("", box(QString()))});
    ShowMessage(BoxIcon::Information, std::string("<b>\xC3\xA9</b>\r\nsecond\rthird\0fourth", 30));
    ShowMessage(BoxIcon::Warning, std::string(200'000, 'x'));
    ShowMessage(BoxIcon::Warning, std::string(240, 'x') + " " + std::string(120, 'x'));
    for (const BoxAnswer answer : {BoxAnswer::Yes, BoxAnswer::No, BoxAnswer::Cancel}) {
        EXPECT_EQ(AskYesNoCancel(BoxIcon::Question, "Go on?"), answer);
    }
    EXPECT_EQ(AskYesNoCancel(BoxIcon::Warning, "Go on?"), BoxAnswer::Cancel);
    EXPECT_EQ(AskYesNoCancel(BoxIcon::Warning, "Go on?"), BoxAnswer::Cancel);
    EXPECT_EQ(AskYesNoCancel(BoxIcon::Warning, "Return loses nothing"), BoxAnswer::Cancel);
    EXPECT_FALSE(AskToReplace("a.mvm")) << "Return must not replace";
}

TEST(Choosers, OfferTheRowsAndKeepOneMarked)
{
    const UiWindow window;
    Meshes.Add().Name = "skin_<b>\xE9";
    Bones.Add().Name = "leg01";
    Bones[1].Alias = "Left leg";
    const auto row = [](const char* text) {
        return [text](QDialog* dialog) {
            auto* list = dialog->findChild<QListWidget*>();
            EXPECT_EQ(list->item(1)->text().toStdString(), text);
            const QPoint place = list->visualItemRect(list->item(1)).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
            QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, place);
            EXPECT_TRUE(dialog->isVisible() && list->item(1)->isSelected());
        };
    };
    const auto full = [](QDialog* dialog) {
        EXPECT_EQ(dialog->findChild<QListWidget*>()->count(), 32'768) << "no row that the answer cannot hold";
    };
    const Script script({Step("Meshes 0 > Close", row("skin_<b>\u00e9")), "Meshes 0 > cmdOK",
                         Step("Meshes 0 > cmdOK", row("skin_<b>\u00e9")), Step("Bones 1 > cmdOK", row("Left leg")),
                         Step("Bones 0 > Esc", row("leg01")), Step("Meshes 0 > 32767 cmdOK", full)});
    EXPECT_EQ(ChooseMesh(2), -1);
    EXPECT_EQ(ChooseMesh(-1), 0);
    EXPECT_EQ(ChooseMesh(0), 1);
    EXPECT_EQ(ChooseBone(1), 1);
    AliasesOn = false;
    EXPECT_EQ(ChooseBone(0), -1);
    Meshes.Items.resize(40'000);
    EXPECT_EQ(ChooseMesh(0), 32'767);
}

TEST(FileChoosers, StartWhereTheyAreToldAndGuardWhatIsThere)
{
    const UiWindow window;
    const TempFolder& folder = window.Folder;
    for (const char* name : {"a.mvm", "B.MVM", "c.txt", "locked.mvm"}) {
        PutFile(folder / name, "1");
    }
    std::filesystem::permissions(folder / "locked.mvm", std::filesystem::perms::owner_read);
    std::filesystem::create_directory(folder / "sub");
    const auto lists = [](QDialog* dialog) {
        const auto* view = Part<QListView>(dialog, "listView");
        EXPECT_TRUE(QTest::qWaitFor([view] { return view->model()->rowCount(view->rootIndex()) == 4; }))
            << "three models of any case and a folder";
        EXPECT_EQ(Part<QComboBox>(dialog, "fileTypeCombo")->itemText(1), QStringLiteral("All Files (*.*)"));
        EXPECT_EQ(qobject_cast<QFileDialog*>(dialog)->nameFilters()[1], QStringLiteral("All Files (*.*) (*)"));
        auto* open = Part<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Open);
        for (const bool whole : {false, true}) {
            dialog->findChild<QLineEdit*>()->setText(QLatin1String(whole ? "/a.mvm" : "a.mvm"));
            open->setEnabled(false); // as while the folder is being read
            EXPECT_EQ(open->isEnabled(), whole);
        }
    };
    const std::string withSlashes =
        QDir(QString::fromStdString(folder.Path)).filePath(QStringLiteral("sub")).toStdString();
    const std::string drive = QDir::currentPath().section(u'/', 0, 0).toStdString(); // empty where there are none
    const std::tuple<bool, std::string, std::deque<Step>, std::string> cases[] = {
        {false, folder.Path, {Step("Title|open ~/||Models (*.mvm) > ~/a.mvm", lists)}, folder / "a.mvm"},
        {false, folder / "a.mvm", {"Title|open ~/|... > new"}, folder / "new"},
        {false, withSlashes, {"Title|open ~/sub/|... > \u00e9"}, folder / "sub/\u00e9"},
        {false, folder / "gone/away/x.mvm", {"Title|open ~/|... > Esc"}, "none"},
        {false, folder / "bad\xFF/x.mvm", {"Title|open ~/|... > Esc"}, "none"},
        {false, "", {"Title|open " + QDir::currentPath().toStdString() + "/|... > Esc"}, "none"},
        {false, drive + "/none", {"Title|open " + drive + "//|... > Esc"}, "none"},
        {true, folder.Path, {"Title|save ~/|... > new"}, folder / "new"},
        {true,
         folder.Path,
         {"T... > ~/locked.mvm", "! Can't overwrite file.|File is marked read only. > OK", "T... > ~/a.mvm",
          "! a.mvm already exists.|Do you want to replace it? > No", "T... > ~/a.mvm",
          "! a.mvm already exists.... > Yes"},
         folder / "a.mvm"}};
    for (const auto& [saves, startIn, steps, wanted] : cases) {
        const Script script(steps);
        std::string path = "none";
        EXPECT_EQ(ChooseFile({saves, "Title", "Models (*.mvm)|*.mvm|All Files (*.*)|*.*", startIn, ""}, &path),
                  wanted != "none");
        EXPECT_EQ(path, wanted);
    }
    std::filesystem::permissions(folder / "locked.mvm", std::filesystem::perms::owner_all); // else it stays on Windows
}

#ifndef Q_OS_WIN // where each name is text
TEST(FileChoosers, KeepANameThatIsNoUtf8)
{
    const UiWindow window;
    const Step save("", [](QDialog* dialog) {
        QTest::mouseClick(Part<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Save), Qt::LeftButton);
    });
    const std::string name = window.Folder / "caf\xE9.mvm";
    const std::deque<Step> steps[] = {{save}, {save, "! caf\uFFFD.mvm already exists.... > Yes"}};
    for (const std::deque<Step>& one : steps) {
        const Script script(one);
        std::string path;
        EXPECT_TRUE(ChooseFile({true, "Title", "Models (*.mvm)|*.mvm|All Files (*.*)|*.*", "/", name}, &path));
        EXPECT_EQ(path, name);
        PutFile(name, "1");
    }
}
#endif

TEST(NewModel, GoesOnOnlyWithAPresetAndAModelAndStopsWhenClosed)
{
    const UiWindow window;
    const std::string preset = ProgramFolder() + "/presets/test.PRESET";
    PutFile(preset, BoardModel(100));
    PutFile(window.Folder / "b.mvm", "bone \"a\"\r\n{\r\n}\r\n");
    LastPath = window.Folder.Path;
    const auto can = [](const std::string& presses, bool go) {
        return [presses, go](QDialog* dialog) {
            Answer(dialog, presses);
            EXPECT_EQ(Part<QPushButton>(dialog, "cmdOK")->isEnabled(), go);
        };
    };
    window.Do("mnuFileNew", {Step("Close", can("test", false))});
    window.Do("mnuFileNew", {Step("Close", can("cmdBrowse", false)), "V... > ~/b.mvm"});
    window.Do("mnuFileNew", {Step("Close", can("test cmdBrowse", true)), "V... > ~/b.mvm"});
    EXPECT_EQ(LastPath, window.Folder / "b.mvm");
    QTimer closer;
    bool closed = false;
    const auto close = [&](QDialog* dialog) {
        can("cmdBrowse test", true)(dialog);
        EXPECT_EQ(Part<QLineEdit>(dialog, "txtModel")->text().toStdString(), window.Folder / "b.mvm");
        QObject::connect(&closer, &QTimer::timeout, dialog, [&closed, dialog] {
            closed = closed || !dialog->isEnabled();
            if (closed) {
                dialog->close();
            }
        });
        closer.start(0);
    };
    PumpInterval = 0;
    window.Do("mnuFileNew", {Step("cmdOK", close), "V... > ~/b.mvm"});
    PumpInterval = 1000;
    EXPECT_TRUE(closed);
    EXPECT_FALSE(StopRequested || ModelOpen || window->Unloaded());
    EXPECT_EQ(MeshCount() + BoneCount(), 0);
    PutFile(preset, "bone \"a\"\r\n{\r\nposition=(1E300,0,0)\r\n}\r\n");
    closer.stop();
    window.Do("mnuFileNew",
              {"New Vorrel -1 > cmdBrowse test cmdOK", "V... > ~/b.mvm", "x Runtime error in LoadMVM... > OK",
               "! Cannot load selected preset. Please verify the content of this file. > OK"});
    window.Do("mnuFileNew", {Step("Esc", can("test", true))}); // it has come back as it was
    std::filesystem::remove(preset);
}

TEST(InfoLog, KeepsItsTextWhileItIsHidden)
{
    const UiWindow window;
    LogLine("first <b> \xC3\xA9");
    LogLine("");
    LogLine("  third\t&");
    EXPECT_TRUE(LogDirty && !IsInfoLogVisible());
    ShowInfoLog();
    EXPECT_TRUE(!LogDirty && IsInfoLogVisible());
    QPlainTextEdit* field = LogField();
    QWidget* log = field->window();
    const QString text = QStringLiteral("first <b> \u00e9\n\n  third\t&\n");
    EXPECT_EQ(field->toPlainText(), text);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(log));
    EXPECT_EQ(log->windowTitle(), QStringLiteral("Info Log"));
    EXPECT_EQ(log->size(), QSize(395, 269));
    EXPECT_LT((log->geometry().center() - log->screen()->availableGeometry().center()).manhattanLength(), 60);
    EXPECT_EQ(field->geometry(), QRect(2, 2, 392, 266));
    EXPECT_TRUE(field->isReadOnly() && field->hasFocus());
    EXPECT_EQ(field->lineWrapMode(), QPlainTextEdit::NoWrap);
    EXPECT_TRUE(field->horizontalScrollBar()->isVisible() && field->verticalScrollBar()->isVisible());
    EXPECT_TRUE(QFontInfo(field->font()).fixedPitch() && field->font().pointSize() == 9);
    log->resize(500, 300);
    EXPECT_TRUE(QTest::qWaitFor([&] { return field->geometry() == QRect(2, 2, 497, 297); }));
    log->close();
    EXPECT_FALSE(IsInfoLogVisible() || log->testAttribute(Qt::WA_QuitOnClose));
    field->moveCursor(QTextCursor::Start);
    LogLine("later");
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->textCursor().atEnd()) << "the field scrolls to a new line";
    EXPECT_EQ(field->toPlainText(), text + QStringLiteral("later\n"));
    LogLine("waiting");
    ClearInfoLog();
    QCoreApplication::processEvents();
    EXPECT_EQ(field->toPlainText(), QString());
    log->showMinimized();
    ShowInfoLog();
    EXPECT_FALSE(log->isMinimized());
}

TEST(InfoLog, TakesALongReportAndALongLineWhole)
{
    const UiWindow window;
    constexpr int lines = 30'000;
    LogLine(std::string(1'500'000, 'x'));
    for (int line = 1; line < lines; ++line) {
        LogLine("Bone " + std::to_string(line) + " of a long report");
    }
    ShowInfoLog();
    QPlainTextEdit* field = LogField();
    EXPECT_LT(field->blockCount(), lines / 2) << "not all in one turn";
    EXPECT_TRUE(QTest::qWaitFor([&] { return field->blockCount() == lines + 2; }, 20'000));
    const QString first = field->document()->firstBlock().text();
    EXPECT_EQ(first.size(), 1'000'000) << "the rest is in a row of its own";
    EXPECT_EQ(field->document()->firstBlock().next().length(), 500'001);
    EXPECT_TRUE(field->toPlainText().endsWith(QStringLiteral("Bone 29999 of a long report\n")));
    EXPECT_EQ(field->verticalScrollBar()->value(), field->verticalScrollBar()->maximum());
    AppClosing = true;
    EXPECT_TRUE(field->window()->close());
    CloseInfoLog();
    AppClosing = false;
    EXPECT_EQ(LogField(), nullptr);
}
