// The window and its dialogs by keyboard, and what they tell a screen reader.
#include <algorithm>
#include <set>

#include <QAccessible>
#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"

namespace {

std::string NameOf(QWidget* widget)
{
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(widget);
    return access != nullptr ? access->text(QAccessible::Name).toStdString() : std::string();
}

/// The controls that Tab stops at, from the one that has the focus until it comes back there.
std::vector<std::string> Walk(QWidget* window, Qt::Key key = Qt::Key_Tab)
{
    std::vector<std::string> stops;
    std::set<const QWidget*> seen;
    for (QWidget* at = window->focusWidget(); at != nullptr && seen.insert(at).second; at = window->focusWidget()) {
        stops.push_back(at->objectName().toStdString());
        EXPECT_NE(NameOf(at), "") << stops.back() << " has no accessible name";
        EXPECT_TRUE(at->isVisible() && at->isEnabled()) << stops.back();
        QTest::keyClick(at, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
    return stops;
}

/// A letter that follows an ampersand, twice in one menu or dialog, would leave one of the two out of reach.
void ExpectDistinct(const QStringList& captions)
{
    std::set<QString> taken;
    for (const QString& caption : captions) {
        const QString key = QKeySequence::mnemonic(caption).toString();
        EXPECT_TRUE(key.isEmpty() || taken.insert(key).second) << caption.toStdString();
    }
}

DialogSteps::Step WalkDialog(const std::vector<std::string>& stops)
{
    return [stops](QDialog* dialog) {
        std::vector<std::string> walked = Walk(dialog);
        EXPECT_EQ(std::set(walked.begin(), walked.end()), std::set(stops.begin(), stops.end()))
            << dialog->objectName().toStdString();
        QTest::keyClick(dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog->isVisible());
    };
}

} // namespace

TEST(WindowAccess, TabReachesEveryControlInOrder)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(4));
    const UiWindow window(folder / "a.mvm");
    window->activateWindow();
    window->picMain->setFocus();
    EXPECT_EQ(Walk(&*window), (std::vector<std::string>{"picMain", "tabMainHeadings", "lstAnimation", "select"}));
    window->tabMain->tabBar()->setFocus();
    QTest::keyClick(window->tabMain->tabBar(), Qt::Key_Right);
    EXPECT_EQ(ActiveTab, 1);
    window->picMain->setFocus();
    std::vector<std::string> editing = {
        "picMain",     "tabMainHeadings", "optShadow0", "lstSkinBones", "cmdSelectSkinMesh", "cmdSelectShadowMesh",
        "cmdUnAssign", "cmdReAssign",     "cmdSwap",    "cmdMirror",    "cmdLoadWeights",    "cmdSaveWeights",
        "optMode2",    "select"};
    EXPECT_EQ(Walk(&*window), editing);
    window->picMain->setFocus();
    std::reverse(editing.begin() + 1, editing.end());
    EXPECT_EQ(Walk(&*window, Qt::Key_Backtab), editing);
    // A tool that was chosen by its key takes the stop over.
    window->SetToolMode(3);
    window->picMain->setFocus();
    EXPECT_EQ(Walk(&*window).back(), "zoom");
}

TEST(WindowAccess, ArrowsChooseWithinAGroup)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(4));
    const UiWindow window(folder / "a.mvm");
    window->activateWindow();
    window.Edit(1);
    window->optShadow[0]->setFocus();
    QTest::keyClick(window->optShadow[0], Qt::Key_Right);
    EXPECT_EQ(EditTarget, 1);
    EXPECT_EQ(window->focusWidget(), window->optShadow[1]);
    QTest::keyClick(window->optShadow[1], Qt::Key_Left);
    EXPECT_EQ(EditTarget, 0);
    window->optMode[2]->setFocus();
    QTest::keyClick(window->optMode[2], Qt::Key_Left);
    EXPECT_EQ(DisplayMode, 1);
    EXPECT_EQ(CurrentCamera, 1);
    window->toolButtons[0]->setFocus();
    QTest::keyClick(window->toolButtons[0], Qt::Key_Right);
    EXPECT_EQ(ToolMode, 1);
    window->lstSkinBones->setFocus();
    QTest::keyClick(window->lstSkinBones, Qt::Key_Down);
    EXPECT_EQ(ActiveBone, 2);
}

TEST(WindowAccess, DialogsAreWalkedToo)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(4));
    const UiWindow window(folder / "a.mvm");
    const DialogSteps steps({WalkDialog({"optMirror0", "chkReassign", "cmdOK", "cmdCancel"}),
                             WalkDialog({"lstBones", "cmdOK", "cmdCancel"}), WalkDialog({"labLink", "cmdOk"}),
                             WalkDialog({"lstExtensions", "cmdClose"})});
    window.Edit(1);
    window->cmdMirror->click();
    window->cmdReAssign->click();
    window->Entry("mnuHelpAbout")->trigger();
    window->Entry("mnuHelpOpenglInfo")->trigger();
}

TEST(WindowAccess, AccessKeysDoNotClash)
{
    const UiWindow window;
    QStringList letters;
    for (const QAction* menu : window->menuBar()->actions()) {
        letters += menu->text().left(1);
        QStringList captions;
        for (const QAction* entry : menu->menu()->actions()) {
            captions += entry->text();
        }
        ExpectDistinct(captions);
    }
    // Each menu opens with Alt and the first letter of its caption.
    EXPECT_EQ(QSet<QString>(letters.begin(), letters.end()).size(), letters.size());
    QTest::keyClick(window->picMain, Qt::Key_V, Qt::AltModifier);
    EXPECT_EQ(window->menuBar()->activeAction(), window->Entry("mnuView"));
    window->Entry("mnuView")->menu()->close();
}

TEST(WindowAccess, TheViewShowsThatItHasTheFocus)
{
    const UiWindow window;
    window->activateWindow();
    const auto rim = [&window] {
        const QImage picture = window->grab().toImage();
        const QPoint corner = window->picMain->mapTo(&*window, QPoint(0, 0));
        const double scale = picture.devicePixelRatio();
        return picture.pixelColor(qRound((corner.x() + 40) * scale), qRound((corner.y() - 1) * scale));
    };
    const auto focused = [&window](bool on) {
        QFocusEvent event(on ? QEvent::FocusIn : QEvent::FocusOut);
        QApplication::sendEvent(window->picMain, &event);
    };
    focused(false);
    const QColor plain = rim();
    focused(true);
    EXPECT_NE(rim(), plain);
    EXPECT_EQ(rim(), window->palette().color(QPalette::Highlight));
}

TEST(WindowAccess, KeysWorkOnOtherAlphabets)
{
    const UiWindow window;
    const struct {
        int Key;
        quint32 Scan;
        int Camera;
    } keys[] = {{0x415, 28, 7},         // Cyrillic, on the key of T
                {0x39B, 46, 5},         // Greek, on the key of L
                {0x6CC, 40, 1},         // Arabic, on the key of D, which does nothing
                {Qt::Key_T, 46, 7},     // a Latin layout of another order
                {0xD6, 46, 1},          // a Latin letter of its own
                {Qt::Key_Left, 28, 1}}; // no letter at all
    for (const auto& k : keys) {
        window->SetCamera(1);
        QKeyEvent event(QEvent::KeyPress, k.Key, Qt::NoModifier, k.Scan, 0, 0);
        QApplication::sendEvent(window->picMain, &event);
        EXPECT_EQ(CurrentCamera, k.Camera) << k.Key;
    }
}
