// Menus, layout and captions of the main window.
#include <utility>

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTabWidget>
#include <QToolButton>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "main/frmMainMenu.h"
#include "main/modApp.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modEvents.h"
#include "modViewFlags.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"

namespace {

/// One line for each entry: depth, caption, shortcut, "x" for a tick, "-" for one that is disabled.
void Tell(const QList<QAction*>& actions, int depth, std::string* lines)
{
    for (const QAction* action : actions) {
        if (action->isSeparator()) {
            *lines += std::string(static_cast<size_t>(depth), ' ') + "----\n";
            continue;
        }
        *lines += std::string(static_cast<size_t>(depth), ' ') + action->text().toStdString();
        const std::string shortcut = action->shortcut().toString().toStdString();
        *lines += (shortcut.empty() ? "" : " " + shortcut) + (action->isChecked() ? " x" : "");
        *lines += std::string(action->isEnabled() ? "" : " -") + "\n";
        if (action->menu() != nullptr) {
            Tell(action->menu()->actions(), depth + 1, lines);
        }
    }
}

constexpr const char* menuTree = R"(File
 New... Ctrl+N
 Open... Ctrl+O
 ----
 Save Ctrl+S -
 Save &As... -
 ----
 Revert Ctrl+R -
 Close -
 ----
 Exit Ctrl+X
View
 Camera
  Perspective x
  Orthographic
  ----
  Front
  Back
  Left
  Right
  Top
  Bottom
 ----
 Wireframe
 Solid x
 ----
 Grids x
 ----
 Textures x
 Lighting x
 Backfaces
 Isolines
 Normals
 ----
 Cull Vertices x
Tools
 Rename Mesh...
 Re-generate Normals...
 Auto-Assign Weights...
 ----
 Reload Textures
 ----
 Statistics
  List Meshes
  List Materials
  List Instances
  List Bones
  ----
  Mesh Names
  Material Names
  Instance Names
  Bone Names
  Texture Filenames
Options
 Bone Alias Names x
 ----
 Mirroring Vertex Threshold...
 Mirroring Bone Threshold...
 Point Size...
 ----
 Anti-Aliased Points/Lines x
 Filter/Mipmap Textures x
Window
 Info Log
Help
 Readme...
 ----
 OpenGL Info...
 ----
 About...
)";

} // namespace

TEST(WindowBuild, TheMenuTreeIsWhole)
{
    const UiWindow window;
    std::string lines;
    Tell(window->menuBar()->actions(), 0, &lines);
    EXPECT_EQ(lines, menuTree);
    for (const MenuEntry& entry : MenuTable()) {
        const QAction* action = window->Entry(entry.Name);
        EXPECT_EQ(entry.Handler == nullptr, action->isSeparator() || action->menu() != nullptr) << entry.Name;
    }
}

TEST(WindowBuild, TheWidgetsFollowTheSize)
{
    const UiWindow window;
    if (window->devicePixelRatioF() == 1) {
        EXPECT_EQ(window->frameGeometry().size(), QSize(660, 508));
    }
    for (const QSize outer : {QSize(0, 0), QSize(900, 600), QSize(1200, 1000), QSize(100, 700), QSize(700, 508)}) {
        if (!outer.isEmpty()) {
            window->resize(outer);
            QTest::qWait(50);
        }
        EXPECT_GE(window->frameGeometry().width(), 660);
        EXPECT_GE(window->frameGeometry().height(), 508);
        const int w = window->centralWidget()->width() - 183;
        const int h = window->centralWidget()->height() - 49;
        EXPECT_EQ(window->picMain->geometry(), QRect(2, 2, w, h + 26));
        EXPECT_EQ(window->tabMain->geometry(), QRect(w + 6, 2, 175, h));
        EXPECT_EQ(window->tlbMain->geometry(), QRect(w + 6, h + 4, 175, 26));
        EXPECT_EQ(window->fraViewing->geometry(), QRect(w + 12, 27, 163, 345));
        EXPECT_EQ(window->fraEditing->geometry(), QRect(w + 12, 27, 163, 377));
        EXPECT_EQ(window->pgbProgress->geometry(), QRect(w - 93, h + 34, 163, 13));
        EXPECT_EQ(window->txtProgress->geometry(), QRect(w + 69, h + 34, 33, 13));
        EXPECT_EQ(window->stsMain->geometry(), QRect(0, h + 30, w + 183, 19));
        EXPECT_GE(window->panels[0]->width(), 96);
        EXPECT_EQ(window->panels[1]->width(), 200);
        EXPECT_LE(window->panels[1]->geometry().right(), window->stsMain->width());
        EXPECT_NEAR(ViewAspect, static_cast<double>(w) / (h + 26), 0.005);
    }
}

TEST(WindowBuild, EveryCaptionFitsItsWidget)
{
    const UiWindow window;
    window->panels[1]->setText(QStringLiteral("32767 verts assigned to bone 32767"));
    int seen = 0;
    for (const QWidget* widget : window->centralWidget()->findChildren<QWidget*>()) {
        const auto* button = qobject_cast<const QPushButton*>(widget);
        const auto* label = qobject_cast<const QLabel*>(widget);
        if (button == nullptr && label == nullptr) {
            continue;
        }
        seen++;
        const QString text = button != nullptr ? button->text() : label->text();
        QSize room = widget->contentsRect().size();
        if (button != nullptr) {
            QStyleOptionButton option;
            option.initFrom(button);
            room = button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).size();
        }
        const QFontMetrics metrics(widget->font());
        EXPECT_LE(metrics.horizontalAdvance(text), room.width()) << text.toStdString();
        EXPECT_LE(metrics.tightBoundingRect(text).height(), room.height()) << text.toStdString();
        EXPECT_GE(QFontInfo(widget->font()).pixelSize(), 9) << text.toStdString();
    }
    EXPECT_EQ(seen, 19);
}

TEST(WindowBuild, TheFirstMomentHasItsDefaults)
{
    const UiWindow window;
    EXPECT_EQ(CurrentCamera, 1);
    EXPECT_EQ(ToolMode, 0);
    EXPECT_EQ(DisplayMode, 2);
    EXPECT_TRUE(window->optMode[2]->isChecked() && window->optShadow[0]->isChecked());
    EXPECT_TRUE(window->toolButtons[0]->isChecked());
    EXPECT_TRUE(window->fraViewing->isVisible());
    EXPECT_FALSE(window->fraEditing->isVisible() || window->pgbProgress->isVisible());
    EXPECT_FALSE(window->cmdPlay->isEnabled() || window->cmdStop->isEnabled());
    EXPECT_EQ(window->panels[0]->text(), QStringLiteral("Ready..."));
    EXPECT_EQ(window->panels[1]->text(), QStringLiteral("0 verts assigned to bone 0"));
    EXPECT_EQ(window->lstAnimation->count(), 1);
    EXPECT_TRUE(GLReady);
    EXPECT_FALSE(QApplication::windowIcon().isNull()) << "windows without an owner have no icon";
    for (const QWidget* widget : {window->picMain, static_cast<QWidget*>(window->lstSkinBones),
                                  static_cast<QWidget*>(window->toolButtons[2])}) {
        EXPECT_FALSE(widget->accessibleName().isEmpty());
    }
}

TEST(WindowBuild, TheProgressStandsOnTheStatusBar)
{
    const UiWindow window;
    ProgressBegin(0);
    EXPECT_EQ(window->pgbProgress->maximum(), 1);
    EXPECT_TRUE(window->pgbProgress->isVisible() && window->txtProgress->isVisible());
    ProgressEnd();
    const struct {
        int32_t Maximum, Value;
        const char* Percent;
    } cases[] = {{1000, 0, "0%"}, {1000, 5, "0%"}, {1000, 15, "2%"}, {200, 199, "100%"}, {1000, 5000, "100%"}};
    for (const auto& c : cases) {
        ProgressBegin(c.Maximum);
        QTest::qWait(20);
        ProgressStep(c.Value);
        EXPECT_EQ(window->txtProgress->text().toStdString(), c.Percent) << c.Value << " of " << c.Maximum;
        ProgressEnd();
        EXPECT_FALSE(window->pgbProgress->isVisible() || window->txtProgress->isVisible());
    }
    // A load that fails leaves them where it ended, also when no event was served on the way.
    const TempFolder folder;
    std::string half(512, '\r');
    half += "mesh \"a\"\r{\rv=(1E99,0,0)\r";
    half.resize(1024, '\r');
    PutFile(folder / "half.mvm", half);
    const int64_t usual = std::exchange(PumpInterval, 1'000'000'000);
    const auto seen = [&](QDialog* dialog) {
        EXPECT_EQ(window->txtProgress->text(), QStringLiteral("50%"));
        EXPECT_EQ(window->pgbProgress->value(), 512);
        dialog->accept();
    };
    const DialogSteps steps({seen, seen});
    window->OpenFile(folder / "half.mvm");
    EXPECT_TRUE(window->pgbProgress->isVisible() && window->txtProgress->isVisible());
    PumpInterval = usual;
}

// Runs itself once more on a desktop that gives no OpenGL at all.
TEST(WindowBuild, WorksWithoutOpenGL)
{
    if (qgetenv("QT_XCB_GL_INTEGRATION") != "none") {
        QProcess self;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_XCB_GL_INTEGRATION"), QStringLiteral("none"));
        self.setProcessEnvironment(environment);
        self.setProcessChannelMode(QProcess::MergedChannels);
        self.start(QApplication::applicationFilePath(),
                   {QStringLiteral("--gtest_filter=WindowBuild.WorksWithoutOpenGL")});
        ASSERT_TRUE(self.waitForFinished(120000));
        EXPECT_EQ(self.exitCode(), 0) << self.readAll().toStdString();
        EXPECT_EQ(self.exitStatus(), QProcess::NormalExit);
        return;
    }
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(6));
    const DialogSteps steps(
        {Box("Initalizing OpenGL failed.", QMessageBox::Ok), Box("Error initializing OpenGL.", QMessageBox::Ok)});
    const UiWindow window(folder / "a.mvm");
    EXPECT_FALSE(GLReady);
    ASSERT_TRUE(ModelOpen);
    window.Edit(2);
    window.Drag(QPoint(2, 2), QPoint(300, 300));
    QTest::keyClick(window->picMain, Qt::Key_C);
    EXPECT_EQ(CurrentCamera, 2);
    EXPECT_EQ(ActiveBone, 2);
    window->resize(900, 700);
    QTest::qWait(50);
    window->Entry("mnuToolsReloadTextures")->trigger();
}
