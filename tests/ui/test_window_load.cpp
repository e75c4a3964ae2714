// What a user does while a long file is being read, or while a dialog stands.

#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "support/model_text.h"
#include "support/scene_bytes.h"
#include "support/ui_window.h"

namespace {

/// Does something at each event round of a load, 8 times at most. Gives how often.
int WhileLoading(const std::function<void()>& act, const std::function<void()>& load)
{
    int rounds = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&rounds, &act, acting = false]() mutable {
        if (LoadRunning && !acting && rounds < 8) {
            PumpInterval = ++rounds < 8 ? 0 : 1'000'000'000; // then the rest is read in one go
            acting = true;                                   // what it does can serve events of its own
            act();
            acting = false;
        }
    });
    timer.start(0);
    const int64_t usual = std::exchange(PumpInterval, 0); // however fast the machine is, each step serves events
    load();
    PumpInterval = usual;
    return rounds;
}

/// All that a hand can reach in the window, except what ends the program or asks the desktop to open something.
void DoEverything(const UiWindow& window)
{
    for (const MenuEntry& entry : MenuTable()) {
        const std::string name = entry.Name;
        if (entry.Handler != nullptr && name != "mnuFileExit" && name != "mnuHelpReadme") {
            window.Do(name);
        }
    }
    for (auto* button : window->fraEditing->findChildren<QPushButton*>()) {
        QTest::mouseClick(button, Qt::LeftButton);
    }
    window.Do("row 0");
    for (int key = Qt::Key_0; key <= Qt::Key_Z; ++key) {
        QTest::keyClick(window->picMain, static_cast<Qt::Key>(key));
    }
    for (QToolButton* tool : window->toolButtons) {
        QTest::mouseClick(tool, Qt::LeftButton);
        window.Drag(QPoint(5, 5), QPoint(300, 300));
        window.Drag(QPoint(5, 5), QPoint(50, 90), Qt::MiddleButton);
        UiWindow::Wheel(window->picMain, 120);
    }
    window.Do("mnuViewSolid");
    window.Do("select");
    window.Drag(QPoint(5, 5), QPoint(300, 300));
    QTest::mouseClick(window->picMain, Qt::RightButton, {}, QPoint(9, 9));
    window->mnuViewCamera->close();
}

} // namespace

TEST(WindowLoad, NothingTheUserDoesHarmsTheLoad)
{
    const UiWindow window(BoardModel(100));
    PutFile(window.Folder / "other.mvm", BoardModel(4));
    const std::string undisturbed = ModelText() + SceneBytes();
    window.Do("mnuFileClose", {Question + "Yes"});
    window.Edit(0);
    window->lstSkinBones->setFocus();
    const auto disturb = [&] {
        window->DropFile(window.Folder / "other.mvm");
        EXPECT_TRUE(window->panels[0]->text().startsWith(QStringLiteral("The dropped file was not opened")));
        std::string off;
        for (const MenuEntry& entry : MenuTable()) {
            off += entry.Handler == nullptr || window->Entry(entry.Name)->isEnabled()
                       ? ""
                       : std::string(entry.Name + 3) + " ";
        }
        EXPECT_EQ(off,
                  "FileNew FileOpen FileSave FileSaveAs FileRevert FileClose ToolsRenameMesh ViewToolsRegenNormals "
                  "ViewToolsAutoAssign ToolsReloadTextures ToolsStatsMeshes ToolsStatsMaterials ToolsStatsInstances "
                  "ToolsStatsBones ToolsStatsMeshNames ToolsStatsMaterialNames ToolsStatsInstanceNames "
                  "ToolsStatsBoneNames ToolsStatsTextureFilenames OptionsAlias OptionsMirrorVertThreshold "
                  "OptionsMirrorBoneThreshold OptionsPointsize HelpOpenglInfo HelpAbout ");
        EXPECT_FALSE(window->fraEditing->isEnabled());
        EXPECT_TRUE(window->Entry("mnuFileExit")->isEnabled() && window->pgbProgress->isVisible());
        DoEverything(window);
    };
    EXPECT_GT(WhileLoading(disturb, [&] { window->OpenFile(window.Folder / "a.mvm"); }), 5);
    EXPECT_TRUE(ModelOpen);
    EXPECT_TRUE(undisturbed == ModelText() + SceneBytes());
    EXPECT_TRUE(window->Entry("mnuFileOpen")->isEnabled() && window->fraEditing->isEnabled());
    EXPECT_TRUE(window->focusWidget() == window->lstSkinBones && !window->Busy());
}

TEST(WindowLoad, ClosingTheWindowEndsTheLoadAndTheProgram)
{
    const std::string preset = ProgramFolder() + "/presets/test.PRESET";
    PutFile(preset, BoardModel(120));
    for (const bool fromNew : {false, true}) {
        const UiWindow window;
        LastPath = window.Folder.Path;
        PutFile(window.Folder / "long.mvm", BoardModel(120));
        const auto close = [&] {
            EXPECT_FALSE(window->close());
            EXPECT_EQ(window->panels[0]->text(), QStringLiteral("Closing..."));
        };
        const auto load = [&] {
            const std::deque<Step> both = {"New Vorrel -1 > test cmdBrowse cmdOK", "V... > ~/long.mvm"};
            window.Do(fromNew ? "mnuFileNew" : "mnuFileOpen", fromNew ? both : std::deque<Step>{"O... > ~/long.mvm"});
        };
        EXPECT_GT(WhileLoading(close, load), 0);
        EXPECT_TRUE(window->Unloaded() && !window->isVisible());
        EXPECT_FALSE(StopRequested || ModelOpen);
    }
    std::filesystem::remove(preset);
}

TEST(WindowLoad, AStandingDialogIsAnsweredFirst)
{
    const UiWindow window(SmallModel());
    const std::string before = ModelText() + SceneBytes();
    const Step disturb("Esc", [&](QDialog* dialog) {
        EXPECT_FALSE(window->close());
        EXPECT_EQ(window->panels[0]->text(), QStringLiteral("Please answer the open dialog first."));
        window->DropFile(window.Folder / "a.mvm");
        EXPECT_TRUE(window->panels[0]->text().startsWith(QStringLiteral("The dropped file")));
        window.Drag(QPoint(5, 5), QPoint(300, 300));
        EXPECT_TRUE(dialog->isVisible());
    });
    for (const char* entry :
         {"mnuFileClose", "mnuFileOpen", "mnuToolsRenameMesh", "mnuHelpAbout", "mnuOptionsPointsize"}) {
        window.Do(entry, {disturb});
    }
    EXPECT_TRUE(ModelOpen);
    EXPECT_TRUE(before == ModelText() + SceneBytes());
}

// What waited while a chooser stood comes when it has closed, in the middle of the command.
TEST(WindowLoad, ACloseThatWaitedForAChooserEndsTheCommand)
{
    for (const char* entry : {"mnuFileOpen", "mnuFileSaveAs"}) {
        const UiWindow window(SmallModel());
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (window->Busy()) {
                window->close();
            }
        });
        timer.start(0);
        window.Do(entry, {"... > ~/none", Question + "Yes"});
        EXPECT_TRUE(window->Unloaded());
        EXPECT_EQ(window.Folder.Names(), std::vector<std::string>{"a.mvm"});
    }
}
