// Drags that something cuts short, and presses that end on another widget than they began on.
#include <QtWidgets>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modPick.h"
#include "support/ui_window.h"
#include "weights/modEdit.h"

namespace {

int Assigned()
{
    return IsValidMesh(SkinMesh) ? Meshes[SkinMesh].VertexCount() - CountBoneVerts(SkinMesh, 0) : 0;
}

} // namespace

TEST(Gestures, ABoxDoesNotOutliveItsScene)
{
    const UiWindow window(BoardModel(9));
    const std::string path = CurrentFile;
    window.Edit(1);
    const QPoint corner(2, 2);
    const QPoint other(window->picMain->width() - 3, window->picMain->height() - 3);
    const auto boxAround = [&](const std::function<void()>& meanwhile) {
        QTest::mousePress(window->picMain, Qt::LeftButton, {}, corner);
        QTest::mouseMove(window->picMain, other / 2);
        window->ListDragging = true;
        meanwhile();
        ActiveBone = 1;
        QTest::mouseRelease(window->picMain, Qt::LeftButton, {}, other);
        EXPECT_FALSE(window->ListDragging);
        return Assigned();
    };
    const auto reopen = [&] {
        PickOnlyFree = true;
        window->OpenFile(path);
        EXPECT_FALSE(PickOnlyFree);
    };
    EXPECT_EQ(boxAround(reopen), 0);
    EXPECT_EQ(boxAround([&] { window.Do("mnuFileRevert", {Question + "Yes"}); }), 0);
    window->ListDragging = false;
    EXPECT_GT(boxAround([&] { window->ListDragging = false; }), 0);
    UnassignAll(SkinMesh);
    boxAround([&] { window->ListDragging = false, EditTarget = 1, std::swap(SkinMesh, ShadowMesh); });
    std::swap(SkinMesh, ShadowMesh);
    EXPECT_GT(Assigned(), 0) << "as the shadow";
}

TEST(Gestures, OnlyTheLeftButtonOfTheSelectToolAssignsAndOnlyWhileEditing)
{
    const UiWindow window(BoardModel(9));
    window.Edit(1);
    const auto box = [&](Qt::MouseButton button) {
        QTest::mousePress(window->picMain, button, {}, {2, 2});
        QTest::mouseRelease(window->picMain, button, {}, window->picMain->rect().bottomRight());
        return Assigned();
    };
    EXPECT_EQ(box(Qt::MiddleButton), 0);
    window.Do("zoom");
    EXPECT_EQ(box(Qt::LeftButton), 0);
    window.Do("select");
    window.Do("tab 0");
    EXPECT_EQ(box(Qt::LeftButton), 0);
    window.Do("tab 1");
    EXPECT_GT(box(Qt::LeftButton), 0);
}

// The menu that comes up takes the releases.
TEST(Gestures, AReleaseOverTheCameraMenuEndsTheDrag)
{
    for (const Qt::MouseButton released : {Qt::LeftButton, Qt::RightButton}) {
        const UiWindow window;
        QTest::mousePress(window->picMain, Qt::LeftButton, {}, {20, 20});
        QTest::mousePress(window->picMain, Qt::RightButton, {}, {60, 60});
        ASSERT_TRUE(QTest::qWaitFor([&] { return window->mnuViewCamera->isVisible(); }));
        EXPECT_EQ(MouseButton, 1);
        QTest::mouseRelease(window->mnuViewCamera, released, {}, {-5, -5});
        EXPECT_EQ(MouseButton, 0);
        window->mnuViewCamera->close();
    }
}

TEST(Gestures, ADragOutOfABoneListKeepsItsRow)
{
    const UiWindow window(SOURCE_FOLDER "/samples/vorrel/vorrel.mvm");
    window.Edit(0);
    for (const int16_t target : {int16_t{0}, int16_t{1}}) {
        QTest::mouseClick(window->optShadow[static_cast<size_t>(target)], Qt::LeftButton);
        BoneList* list = window->ListOf(target);
        FillBoneLists();
        QWidget* rows = list->viewport();
        QTest::mousePress(rows, Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
        QTest::mouseMove(rows, {20, rows->height() + 5});
        QTest::mouseMove(rows, {30, rows->height() + 20});
        QTest::qWait(120); // the list scrolls by a timer of its own
        QTest::mouseRelease(rows, Qt::LeftButton, {}, {30, rows->height() + 20});
        ASSERT_EQ(list->selectedItems().size(), 1);
        EXPECT_EQ(list->selectedItems().first()->data(Qt::UserRole).toInt(), ActiveBone);
    }
}

TEST(Gestures, TheWheelZoomsWithAltHeld)
{
    const UiWindow window;
    const float before = Cameras[1].Position.Z;
    QWheelEvent event({}, {}, QPoint(), QPoint(120, 0), Qt::NoButton, Qt::AltModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(window->picMain, &event);
    EXPECT_NE(Cameras[1].Position.Z, before);
}
