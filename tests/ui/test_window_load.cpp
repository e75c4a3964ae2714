// What a user does while a long file is being read.
#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QWheelEvent>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "main/frmMainMenu.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "modEvents.h"
#include "modFiles.h"
#include "support/model_text.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"

namespace {

constexpr int mostRounds = 20;
constexpr const char* question = "Any changes to open files will be lost.\nContinue?";

/// Does something at each event round while a load is under way, `mostRounds` times at most.
class DuringLoad {
public:
    explicit DuringLoad(std::function<void()> action) : act(std::move(action))
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
            if (LoadRunning && !acting && Rounds < mostRounds) {
                Rounds++;
                acting = true;
                act();
                acting = false;
            }
        });
        timer.start(0);
        PumpInterval = 0; // however fast the machine is, each step of the load serves events
    }
    ~DuringLoad() { PumpInterval = usualInterval; }
    DuringLoad(const DuringLoad&) = delete;
    DuringLoad& operator=(const DuringLoad&) = delete;
    int Rounds = 0;

private:
    std::function<void()> act;
    bool acting = false; // what it does can serve events of its own
    QTimer timer;
    int64_t usualInterval = PumpInterval;
};

void Wheel(QWidget* view)
{
    QWheelEvent event(QPointF(20, 20), view->mapToGlobal(QPointF(20, 20)), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view, &event);
}

/// All that a hand can reach in the window, except what ends the program or asks the desktop to open something.
void DoEverything(const UiWindow& window)
{
    for (const MenuEntry& entry : MenuTable()) {
        const std::string name = entry.Name;
        if (entry.Handler != nullptr && name != "mnuFileExit" && name != "mnuHelpReadme") {
            window->Entry(entry.Name)->trigger();
        }
    }
    for (auto* button : window->fraEditing->findChildren<QPushButton*>()) {
        QTest::mouseClick(button, Qt::LeftButton);
    }
    for (QListWidget* list : {static_cast<QListWidget*>(window->lstSkinBones), window->lstAnimation}) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
    }
    QTest::keySequence(&*window, QKeySequence(Qt::CTRL | Qt::Key_O));
    QTest::keyRelease(window->picMain, Qt::Key_Control);
    for (int key = Qt::Key_0; key <= Qt::Key_Z; ++key) {
        QTest::keyClick(window->picMain, static_cast<Qt::Key>(key));
    }
    for (QToolButton* tool : window->toolButtons) {
        QTest::mouseClick(tool, Qt::LeftButton);
        window.Drag(QPoint(5, 5), QPoint(300, 300));
        window.Drag(QPoint(5, 5), QPoint(50, 90), Qt::MiddleButton);
        Wheel(window->picMain);
    }
    QTest::keyClick(window->picMain, Qt::Key_1);
    QTest::mouseClick(window->picMain, Qt::RightButton, {}, QPoint(9, 9));
    window->mnuViewCamera->close();
    window->tabMain->setCurrentIndex(1 - window->tabMain->currentIndex());
    window.Drag(QPoint(5, 5), QPoint(300, 300));
}

/// What a load leaves: all that a file would hold, and what the roles and the assignments are.
std::string SceneText()
{
    std::string text = ModelText();
    for (const int16_t index : {SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}) {
        text += " " + std::to_string(index);
    }
    for (const MvmMesh& mesh : Meshes) {
        for (const int16_t bone : mesh.VertexBones) {
            text += " " + std::to_string(bone);
        }
    }
    return text;
}

} // namespace

TEST(WindowLoad, NothingTheUserDoesHarmsTheLoad)
{
    const TempFolder folder;
    PutFile(folder / "long.mvm", BallModel(180));
    PutFile(folder / "other.mvm", BallModel(4));
    const UiWindow window;
    window->OpenFile(folder / "long.mvm");
    const std::string undisturbed = SceneText();
    {
        const DialogSteps steps({Box(question, QMessageBox::Yes)});
        window->Entry("mnuFileClose")->trigger();
    }
    window.Edit(0);
    bool refused = false;
    {
        const DuringLoad user([&] {
            DoEverything(window);
            window->DropFile(folder / "other.mvm");
            refused = refused || window->panels[0]->text().startsWith(QStringLiteral("The dropped file"));
            EXPECT_FALSE(window->Entry("mnuFileOpen")->isEnabled());
            EXPECT_FALSE(window->fraEditing->isEnabled());
        });
        // The console is a question in the middle of the load, and can be answered there.
        const DialogSteps steps({[&](QDialog* console) {
            EXPECT_TRUE(LoadRunning);
            window->DropFile(folder / "other.mvm");
            console->reject();
        }});
        QTimer::singleShot(0, [&] { QTest::keyClick(window->picMain, Qt::Key_F11); });
        window->OpenFile(folder / "long.mvm");
        EXPECT_GT(user.Rounds, 5) << "the load was too short to be disturbed";
    }
    EXPECT_TRUE(refused);
    EXPECT_TRUE(ModelOpen);
    EXPECT_TRUE(SceneText() == undisturbed);
    EXPECT_TRUE(window->Entry("mnuFileOpen")->isEnabled() && window->fraEditing->isEnabled());
    EXPECT_FALSE(window->Busy());
}

TEST(WindowLoad, ClosingTheWindowEndsTheLoadAndTheProgram)
{
    const TempFolder folder;
    PutFile(folder / "long.mvm", BallModel(120));
    for (const int when : {1, 4, 15}) {
        const UiWindow window;
        const DialogSteps noDialogs({});
        int round = 0;
        const DuringLoad user([&] {
            if (++round >= when) {
                window->close();
            }
        });
        window->OpenFile(folder / "long.mvm");
        EXPECT_GE(round, when);
        EXPECT_TRUE(window->Unloaded());
        EXPECT_FALSE(window->isVisible());
        EXPECT_FALSE(ModelOpen);
    }
}

TEST(WindowLoad, ClosingTheWindowEndsTheLoadOfANewModelAndTheProgram)
{
    const std::string name = "load test " + std::to_string(QCoreApplication::applicationPid());
    const std::string preset = ProgramFolder() + "/presets/" + name + ".preset";
    const TempFolder folder;
    PutFile(preset, BallModel(120));
    PutFile(folder / "skin.mvm", BallModel(4));
    {
        const UiWindow window;
        LastPath = folder.Path;
        const DuringLoad user([&] {
            DoEverything(window);
            window->close();
        });
        const DialogSteps steps({[&](QDialog* dialog) {
                                     auto* list = Part<QListWidget>(dialog, "lstPresets");
                                     list->setCurrentItem(
                                         list->findItems(QString::fromStdString(name), Qt::MatchExactly).value(0));
                                     Press(dialog, "cmdBrowse");
                                     Press(dialog, "cmdOK");
                                 },
                                 Choose(folder / "skin.mvm")});
        window->Entry("mnuFileNew")->trigger();
        EXPECT_GT(user.Rounds, 0);
        EXPECT_TRUE(window->Unloaded());
        EXPECT_FALSE(StopRequested || ModelOpen);
        EXPECT_EQ(MeshCount(), 0);
    }
    std::filesystem::remove(preset);
}

TEST(WindowLoad, AStandingQuestionIsAnsweredFirst)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(6));
    PutFile(folder / "other.mvm", BallModel(4));
    const UiWindow window(folder / "a.mvm");
    const std::string before = SceneText();
    const auto disturb = [&](QDialog* dialog) {
        EXPECT_FALSE(window->close());
        EXPECT_EQ(window->panels[0]->text(), QStringLiteral("Please answer the open dialog first."));
        window->DropFile(folder / "other.mvm");
        EXPECT_TRUE(window->panels[0]->text().startsWith(QStringLiteral("The dropped file")));
        window.Drag(QPoint(5, 5), QPoint(300, 300));
        Wheel(window->picMain);
        EXPECT_TRUE(dialog->isVisible());
        dialog->reject();
    };
    for (const char* entry : {"mnuFileClose", "mnuFileOpen", "mnuFileSaveAs", "mnuToolsRenameMesh", "mnuHelpAbout",
                              "mnuOptionsPointsize", "mnuHelpOpenglInfo"}) {
        SCOPED_TRACE(entry);
        const DialogSteps steps({disturb});
        window->Entry(entry)->trigger();
    }
    EXPECT_TRUE(ModelOpen);
    EXPECT_TRUE(SceneText() == before);
}
