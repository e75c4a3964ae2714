// What a user does while a long file is being read.
#include <QAction>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "interaction/frmMainMenu.h"
#include "interaction/modTools.h"
#include "model/modMvmRead.h"
#include "platform/modFiles.h"
#include "support/ui_window.h"
#include "weights/modEdit.h"

namespace {

constexpr int mostRounds = 20;

/// Does something at each event round while a load is under way, `mostRounds` times at most.
class DuringLoad {
public:
    explicit DuringLoad(std::function<void()> action) : act(std::move(action))
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
            if (LoadRunning && Rounds < mostRounds) {
                Rounds++;
                act();
            }
        });
        timer.start(0);
    }
    int Rounds = 0;

private:
    std::function<void()> act;
    QTimer timer;
};

} // namespace

TEST(WindowLoad, NothingTheUserDoesHarmsTheLoad)
{
    const TempFolder folder;
    PutFile(folder / "long.mvm", BallModel(180));
    PutFile(folder / "other.mvm", BallModel(4));
    const UiWindow window;
    window.Edit(0);
    bool refused = false;
    {
        const DuringLoad user([&] {
            for (const MenuEntry& entry : MenuTable()) {
                if (entry.Handler != nullptr && std::string(entry.Name) != "mnuFileExit" &&
                    std::string(entry.Name) != "mnuHelpReadme") {
                    window->Entry(entry.Name)->trigger();
                }
            }
            for (auto* button : window->fraEditing->findChildren<QPushButton*>()) {
                QTest::mouseClick(button, Qt::LeftButton);
            }
            QTest::mouseClick(window->lstSkinBones->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
            QTest::keySequence(&*window, QKeySequence(Qt::CTRL | Qt::Key_O));
            window->tabMain->setCurrentIndex(1 - window->tabMain->currentIndex());
            window.Drag(QPoint(5, 5), QPoint(300, 300));
            window->DropFile(folder / "other.mvm");
            refused = refused || window->panels[0]->text().startsWith(QStringLiteral("The dropped file"));
            EXPECT_FALSE(window->Entry("mnuFileOpen")->isEnabled());
        });
        window->OpenFile(folder / "long.mvm");
        EXPECT_GT(user.Rounds, 1) << "the load was too short to be disturbed";
    }
    EXPECT_TRUE(refused);
    EXPECT_TRUE(ModelOpen);
    EXPECT_EQ(BoneCount(), 8);
    EXPECT_EQ(MeshCount(), 2);
    EXPECT_EQ(CountBoneVerts(SkinMesh, 0), 181 * 180);
    EXPECT_TRUE(window->Entry("mnuFileOpen")->isEnabled() && window->fraEditing->isEnabled());
    EXPECT_FALSE(window->Busy());
}

TEST(WindowLoad, ClosingTheWindowEndsTheLoadAndTheProgram)
{
    const TempFolder folder;
    PutFile(folder / "long.mvm", BallModel(120));
    const UiWindow window;
    const DialogSteps noDialogs({});
    const DuringLoad user([&] { window->close(); });
    window->OpenFile(folder / "long.mvm");
    EXPECT_GT(user.Rounds, 0);
    EXPECT_TRUE(window->Unloaded());
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(ModelOpen);
}

TEST(WindowLoad, ClosingTheWindowEndsTheLoadOfANewModelAndTheProgram)
{
    const TempFolder folder;
    const std::string name = "window test " + std::to_string(QCoreApplication::applicationPid());
    const std::string preset = ProgramFolder() + "/presets/" + name + ".preset";
    PutFile(preset, BallModel(120));
    PutFile(folder / "skin.mvm", BallModel(4));
    const UiWindow window;
    {
        const DialogSteps steps(
            {[&](QDialog* dialog) {
                 Press(dialog, "cmdBrowse");
                 auto* list = Part<QListWidget>(dialog, "lstPresets");
                 list->findItems(QString::fromStdString(name), Qt::MatchExactly).constFirst()->setSelected(true);
                 Press(dialog, "cmdOK");
             },
             Choose(folder / "skin.mvm")});
        const DuringLoad user([&] { window->close(); });
        window->mnuFileNew_Click();
        EXPECT_GT(user.Rounds, 0);
    }
    QFile::remove(QString::fromStdString(preset));
    EXPECT_TRUE(window->Unloaded());
    EXPECT_FALSE(StopRequested) << "every later load would end at once";
    EXPECT_FALSE(ModelOpen);
    EXPECT_EQ(BoneCount(), 0);
}
