// Keys, tools, mouse, wheel and view options on the real window.
#include <QAction>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QWheelEvent>

#include "app/modMvmDef.h"
#include "dialogs/frmLog.h"
#include "modCamera.h"
#include "modConsole.h"
#include "modDrag.h"
#include "modViewFlags.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"
#include "weights/modMirror.h"

namespace {

/// A turn of the wheel over a widget, as if from the window system: only such events travel on to the parents.
void Wheel(QWidget* widget, int distance)
{
    const QPointF at(10, 10);
    QWheelEvent event(at, widget->mapToGlobal(at), QPoint(), QPoint(0, distance), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event);
}

DialogSteps::Step Type(const std::string& title, const std::string& offered, const std::string& answer)
{
    return [=](QDialog* dialog) {
        auto* prompt = qobject_cast<QInputDialog*>(dialog);
        ASSERT_NE(prompt, nullptr);
        EXPECT_EQ(prompt->windowTitle().toStdString(), title);
        EXPECT_EQ(prompt->textValue().toStdString(), offered);
        prompt->setTextValue(QString::fromStdString(answer));
        prompt->accept();
    };
}

} // namespace

TEST(WindowInput, KeysChangeCameraToolAndView)
{
    const UiWindow window;
    const struct {
        int From;
        int Key;
        Qt::KeyboardModifiers Held;
        int Camera;
    } cameras[] = {{1, Qt::Key_C, {}, 2}, {8, Qt::Key_C, {}, 1}, {3, Qt::Key_C, Qt::ShiftModifier, 4},
                   {5, Qt::Key_P, {}, 1}, {5, Qt::Key_O, {}, 2}, {5, Qt::Key_F, {}, 3},
                   {5, Qt::Key_B, {}, 4}, {4, Qt::Key_B, {}, 8}, {8, Qt::Key_B, {}, 4},
                   {1, Qt::Key_L, {}, 5}, {1, Qt::Key_R, {}, 6}, {1, Qt::Key_T, {}, 7},
                   {1, Qt::Key_X, {}, 1}};
    for (const auto& c : cameras) {
        window->SetCamera(static_cast<int16_t>(c.From));
        QTest::keyClick(window->picMain, static_cast<Qt::Key>(c.Key), c.Held);
        EXPECT_EQ(CurrentCamera, c.Camera) << c.Key;
    }
    const struct {
        int Camera;
        int Key;
        Qt::KeyboardModifiers Held;
        int Tool;
    } tools[] = {{1, Qt::Key_2, {}, 1},
                 {1, Qt::Key_3, {}, 2},
                 {1, Qt::Key_4, {}, 3},
                 {1, Qt::Key_1, {}, 0},
                 {3, Qt::Key_2, {}, 0},
                 {3, Qt::Key_4, {}, 3},
                 {1, Qt::Key_1, Qt::KeypadModifier, 3}};
    for (const auto& c : tools) {
        window->SetCamera(static_cast<int16_t>(c.Camera));
        QTest::keyClick(window->picMain, static_cast<Qt::Key>(c.Key), c.Held);
        EXPECT_EQ(ToolMode, c.Tool) << c.Key;
        EXPECT_TRUE(window->toolButtons.at(static_cast<size_t>(c.Tool))->isChecked());
    }
    QTest::keyClick(window->picMain, Qt::Key_W);
    EXPECT_TRUE(ViewWire);
    EXPECT_FALSE(window->Entry("mnuViewIsolines")->isEnabled());
    QTest::keyClick(window->picMain, Qt::Key_W);
    EXPECT_FALSE(ViewWire);
    QTest::keyClick(window->picMain, Qt::Key_V);
    EXPECT_FALSE(ViewCullVerts);
    EXPECT_FALSE(window->Entry("mnuViewCullVerts")->isChecked());
}

TEST(WindowInput, OnlyTheListsAndTheToolbarKeepTheirKeys)
{
    const UiWindow window;
    window.Edit(0);
    const QList<QWidget*> forwarding = {window->cmdLoadWeights,      window->cmdMirror,  window->cmdReAssign,
                                        window->cmdSaveWeights,      window->cmdSwap,    window->cmdUnAssign,
                                        window->optMode[0],          window->optMode[2], window->optShadow[1],
                                        window->cmdSelectShadowMesh, window->picMain,    &*window,
                                        window->tabMain->tabBar()};
    for (QWidget* widget : forwarding) {
        window->SetCamera(1);
        if (QWidget* focus = window->focusWidget()) {
            focus->clearFocus();
        }
        QTest::keyClick(widget, Qt::Key_T);
        EXPECT_EQ(CurrentCamera, 7) << widget->objectName().toStdString();
    }
    window->SetCamera(1);
    const QList<QWidget*> keeping = {window->lstSkinBones, window->toolButtons[0]};
    for (QWidget* widget : keeping) {
        window->activateWindow();
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_T);
        EXPECT_EQ(CurrentCamera, 1) << widget->objectName().toStdString();
    }
    // Space still presses a button that hands its keys on.
    QTest::keyClick(window->optMode[0], Qt::Key_Space);
    EXPECT_EQ(DisplayMode, 0);
}

TEST(WindowInput, CtrlTurnsTheKeysOffUntilAKeyGoesUpOnTheView)
{
    const UiWindow window;
    QTest::keyPress(window->picMain, Qt::Key_Control);
    QTest::keyPress(window->cmdSwap, Qt::Key_T);
    EXPECT_EQ(CurrentCamera, 1);
    QTest::keyRelease(window->cmdSwap, Qt::Key_Control);
    QTest::keyPress(window->picMain, Qt::Key_T);
    EXPECT_EQ(CurrentCamera, 1);
    QTest::keyRelease(window->picMain, Qt::Key_T);
    QTest::keyPress(window->picMain, Qt::Key_T);
    EXPECT_EQ(CurrentCamera, 7);
}

TEST(WindowInput, TheConsoleOffersTheLastCommand)
{
    const UiWindow window;
    const bool before = NoSleep;
    const DialogSteps steps({Type("Command", "", "NoSleep now"), Type("Command", "NoSleep now", ""),
                             Type("Command", "NoSleep now", "nosleep")});
    QTest::keyClick(window->picMain, Qt::Key_F11);
    EXPECT_NE(NoSleep, before);
    EXPECT_TRUE(IsInfoLogVisible());
    QTest::keyClick(window->picMain, Qt::Key_F11);
    QTest::keyClick(window->picMain, Qt::Key_F11);
    EXPECT_EQ(NoSleep, before);
}

TEST(WindowInput, ToolsMoveTheCamera)
{
    const UiWindow window;
    const QPoint from(100, 100);
    const QPoint to(120, 150);
    InitCameras();
    window->SetToolMode(1);
    window.Drag(from, to);
    EXPECT_FLOAT_EQ(Cameras[1].Rotation.X, 10 + 50 / 5.0F);
    EXPECT_FLOAT_EQ(Cameras[1].Rotation.Y, -200 + 20 / 5.0F);
    window->SetToolMode(2);
    window.Drag(from, to);
    EXPECT_NEAR(Cameras[1].Position.X, 0.02, 1e-6);
    EXPECT_NEAR(Cameras[1].Position.Y, -0.05, 1e-6);
    window->SetToolMode(3);
    window.Drag(from, to);
    EXPECT_NEAR(Cameras[1].Position.Z, -2.5, 1e-6);
    window->SetToolMode(0);
    window.Drag(from, to);
    EXPECT_NEAR(Cameras[1].Position.X, 0.02, 1e-6);
    window.Drag(from, to, Qt::MiddleButton);
    EXPECT_NEAR(Cameras[1].Position.X, 0.04, 1e-6);
    EXPECT_EQ(MouseButton, 0);

    // A camera along an axis has no orbit tool.
    window->SetToolMode(1);
    window->SetCamera(3);
    EXPECT_EQ(ToolMode, 2);
    EXPECT_FALSE(window->toolButtons[1]->isEnabled());
    window->SetCamera(2);
    EXPECT_EQ(ToolMode, 2);
    EXPECT_TRUE(window->toolButtons[1]->isEnabled());
}

TEST(WindowInput, TheRightButtonEndsAToolOrOpensTheCameras)
{
    const UiWindow window;
    window->SetToolMode(3);
    QTest::mouseClick(window->picMain, Qt::RightButton, {}, QPoint(50, 50));
    EXPECT_EQ(ToolMode, 0);
    EXPECT_FALSE(window->mnuViewCamera->isVisible());
    QTest::mousePress(window->picMain, Qt::LeftButton, {}, QPoint(20, 20));
    QTest::mousePress(window->picMain, Qt::RightButton, {}, QPoint(60, 60));
    EXPECT_TRUE(window->mnuViewCamera->isVisible());
    EXPECT_EQ(MouseButton, 1);
    window->mnuViewCamera->close();
    // The release went elsewhere: the next move with no button held ends the drag.
    QTest::mouseRelease(window->cmdSwap, Qt::LeftButton);
    QMouseEvent move(QEvent::MouseMove, QPointF(70, 70), QPointF(70, 70), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(window->picMain, &move);
    EXPECT_EQ(MouseButton, 0);
    EXPECT_FLOAT_EQ(MouseLastX, 70);
}

TEST(WindowInput, TheWheelZoomsByWholeNotches)
{
    const UiWindow window;
    InitCameras();
    const struct {
        int Distance;
        double Z;
    } steps[] = {{120, -1.9}, {-240, -2.1}, {30, -2.1}, {60, -2.1}, {30, -2.0}, {90, -2.0}, {-30, -2.0}, {-90, -2.1}};
    for (const auto& s : steps) {
        Wheel(window->picMain, s.Distance);
        EXPECT_NEAR(Cameras[1].Position.Z, s.Z, 1e-5) << s.Distance;
    }
    Wheel(window->tabMain->tabBar(), 120);
    EXPECT_NEAR(Cameras[1].Position.Z, -2.0, 1e-5);
    EXPECT_EQ(ActiveTab, 0);
    window.Edit(0);
    Wheel(window->lstSkinBones->viewport(), 120);
    EXPECT_NEAR(Cameras[1].Position.Z, -2.0, 1e-5);
}

TEST(WindowInput, EveryFlagHasItsTick)
{
    const UiWindow window;
    const struct {
        const char* Entry;
        bool* Flag;
    } flags[] = {{"mnuViewGrid", &ViewGrid},
                 {"mnuViewTextures", &ViewTextures},
                 {"mnuViewLighting", &ViewLighting},
                 {"mnuViewBackfaces", &ViewBackfaces},
                 {"mnuViewIsolines", &ViewIsolines},
                 {"mnuViewNormals", &ViewNormals},
                 {"mnuViewCullVerts", &ViewCullVerts},
                 {"mnuOptionsLineAA", &LineAA},
                 {"mnuOptionFilterTextures", &FilterTextures}};
    for (const auto& f : flags) {
        for (int turn = 0; turn < 2; turn++) {
            const bool before = *f.Flag;
            window->Entry(f.Entry)->trigger();
            EXPECT_EQ(*f.Flag, !before) << f.Entry;
            EXPECT_EQ(window->Entry(f.Entry)->isChecked(), *f.Flag) << f.Entry;
        }
    }
    for (int turn = 0; turn < 2; turn++) {
        window->Entry("mnuViewWire")->trigger();
        EXPECT_TRUE(ViewWire && window->Entry("mnuViewWire")->isChecked());
        EXPECT_FALSE(window->Entry("mnuViewSolid")->isChecked());
    }
    window->Entry("mnuViewSolid")->trigger();
    EXPECT_FALSE(ViewWire);
}

TEST(WindowInput, TheOptionsAskForTheirNumbers)
{
    const UiWindow window;
    const DialogSteps steps({Type("Mirror Vertex Threshold", "0.01", "0.5x"),
                             Type("Mirror Bone Threshold", "0.01", "1,5"), Type("Mirror Vertex Threshold", "0.5", "-1"),
                             Type("Point Size", "5", "99"), Type("Point Size", "10", "none")});
    window->Entry("mnuOptionsMirrorVertThreshold")->trigger();
    EXPECT_EQ(MirrorVertexThreshold, 0.5F);
    window->Entry("mnuOptionsMirrorBoneThreshold")->trigger();
    EXPECT_EQ(MirrorBoneThreshold, 1);
    window->Entry("mnuOptionsMirrorVertThreshold")->trigger();
    EXPECT_EQ(MirrorVertexThreshold, 0.01F);
    window->Entry("mnuOptionsPointsize")->trigger();
    window->Entry("mnuOptionsPointsize")->trigger();
    EXPECT_EQ(PointSize, 10);
}
