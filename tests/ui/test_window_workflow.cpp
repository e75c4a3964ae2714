// From the mouse to the file and back: open, choose a bone, drag a box, unassign, swap, save, close, open again.
#include <QAction>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"
#include "weights/modEdit.h"

namespace {

constexpr const char* question = "Any changes to open files will be lost.\nContinue?";

std::string Count(const UiWindow& window)
{
    return window->panels[1]->text().toStdString();
}

} // namespace

TEST(WindowWorkflow, AssignSaveCloseAndOpenAgain)
{
    const TempFolder folder;
    const std::string path = folder / "ball with blank.mvm";
    PutFile(path, BallModel(12));
    UiWindow window("\"" + path + "\"");
    ASSERT_TRUE(ModelOpen);
    EXPECT_EQ(window->windowTitle().toStdString(), "BWRT 0.2.7 - [" + path + "]");
    EXPECT_EQ(Count(window), "156 verts assigned to bone 0");

    window.Edit(2);
    EXPECT_EQ(ActiveBone, 2);
    EXPECT_EQ(Count(window), "0 verts assigned to bone 2");
    const QPoint corner(window->picMain->width() - 3, window->picMain->height() - 3);
    window.Drag(QPoint(3, 3), corner);
    const int32_t front = CountBoneVerts(SkinMesh, 2);
    EXPECT_GT(front, 20);
    EXPECT_LT(front, 140) << "vertices behind the surface were taken";
    EXPECT_EQ(Count(window), std::to_string(front) + " verts assigned to bone 2");

    // Through the surface: the whole mesh, for another bone.
    window->Entry("mnuViewCullVerts")->trigger();
    window.Edit(3);
    window.Drag(corner, QPoint(3, 3));
    EXPECT_EQ(CountBoneVerts(SkinMesh, 3), 156);
    window->Entry("mnuViewCullVerts")->trigger();
    window.Edit(2);
    window.Drag(QPoint(3, 3), corner);
    EXPECT_EQ(CountBoneVerts(SkinMesh, 2), front);

    {
        const DialogSteps steps({Row("lstBones", 4)});
        QTest::mouseClick(window->cmdSwap, Qt::LeftButton);
    }
    EXPECT_EQ(ActiveBone, 4);
    EXPECT_EQ(CountBoneVerts(SkinMesh, 4), front);
    window.Edit(3);
    QTest::mouseClick(window->cmdUnAssign, Qt::LeftButton);
    EXPECT_EQ(CountBoneVerts(SkinMesh, 3), 0);
    const auto assigned = Meshes[SkinMesh].VertexBones.Items;

    window->Entry("mnuFileSave")->trigger();
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"ball with blank.mvm"});
    {
        const DialogSteps steps({Box(question, QMessageBox::No)});
        window->Entry("mnuFileClose")->trigger();
        EXPECT_TRUE(ModelOpen);
    }
    {
        const DialogSteps steps({Box(question, QMessageBox::Yes)});
        window->Entry("mnuFileClose")->trigger();
        EXPECT_FALSE(ModelOpen);
    }
    EXPECT_EQ(window->windowTitle().toStdString(), "BWRT 0.2.7");
    EXPECT_FALSE(window->Entry("mnuFileSave")->isEnabled());
    {
        const DialogSteps steps(
            {Choose(folder / "missing.mvm"), Box("File does not exist.", QMessageBox::Ok), Choose(path)});
        window->Entry("mnuFileOpen")->trigger();
    }
    ASSERT_TRUE(ModelOpen);
    EXPECT_EQ(Meshes[SkinMesh].VertexBones.Items, assigned);
    {
        const DialogSteps steps({Box(question, QMessageBox::Cancel)});
        EXPECT_FALSE(window->close());
        EXPECT_TRUE(window->isVisible());
    }
    const DialogSteps steps({Box(question, QMessageBox::Yes)});
    EXPECT_TRUE(window->close());
    EXPECT_EQ(BoneCount(), 0);
}

TEST(WindowWorkflow, TheTargetsKeepTheirBones)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(6));
    UiWindow window(folder / "a.mvm");
    window.Edit(3);
    QTest::mouseClick(window->optShadow[1], Qt::LeftButton);
    EXPECT_EQ(EditTarget, 1);
    EXPECT_EQ(ActiveBone, 0);
    EXPECT_TRUE(window->lstShadowBones->isVisible());
    window.Edit(1);
    EXPECT_EQ(ActiveBone, 6);
    // Pressed again, the selected option must not take the shadow's bone for the skin's.
    QTest::mouseClick(window->optShadow[1], Qt::LeftButton);
    EXPECT_EQ(ActiveBone, 6);
    QTest::mouseClick(window->optShadow[0], Qt::LeftButton);
    EXPECT_EQ(ActiveBone, 3);
    EXPECT_EQ(window->lstSkinBones->currentRow(), 3);
    QTest::mouseClick(window->optShadow[1], Qt::LeftButton);
    EXPECT_EQ(ActiveBone, 6);

    // All bones away, with the question; then a bone of the other kind has no row and leaves the selection.
    window->lstShadowBones->setCurrentRow(0);
    Meshes[ShadowMesh].VertexBones[1] = 7;
    {
        const DialogSteps steps({Box("No bone selected, would you like to unassign all bones?", QMessageBox::No)});
        QTest::mouseClick(window->cmdUnAssign, Qt::LeftButton);
        EXPECT_EQ(Meshes[ShadowMesh].VertexBones[1], 7);
    }
    {
        const DialogSteps steps({Box("No bone selected, would you like to unassign all bones?", QMessageBox::Yes)});
        QTest::mouseClick(window->cmdUnAssign, Qt::LeftButton);
        EXPECT_EQ(Meshes[ShadowMesh].VertexBones[1], 0);
    }
    const DialogSteps steps({Row("lstBones", 2)});
    QTest::mouseClick(window->cmdReAssign, Qt::LeftButton);
    EXPECT_EQ(ActiveBone, 2);
    EXPECT_EQ(window->lstShadowBones->currentRow(), 0);
    EXPECT_EQ(CountBoneVerts(ShadowMesh, 2), Meshes[ShadowMesh].VertexCount());
}

TEST(WindowWorkflow, ADragThroughTheListWalksTheBone)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(6));
    UiWindow window(folder / "a.mvm");
    window.Edit(1);
    BoneList* list = window->lstSkinBones;
    const auto row = [list](int i) { return list->visualItemRect(list->item(i)).center(); };
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, row(1));
    for (const int bone : {2, 3, 4, 3}) {
        QTest::mouseMove(list->viewport(), row(bone));
        EXPECT_EQ(ActiveBone, bone);
    }
    QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, row(3));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, row(3));
    EXPECT_TRUE(list->item(3)->isSelected());
    EXPECT_EQ(ActiveBone, 3);
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(ActiveBone, 4);
    FillBoneLists();
    EXPECT_EQ(ActiveBone, 0);
    EXPECT_EQ(list->currentRow(), 0);
    EXPECT_EQ(window->lstShadowBones->currentRow(), -1);
}

TEST(WindowWorkflow, ADropOpensTheFirstModelOfIt)
{
    const TempFolder folder;
    const std::string path = folder / "a%20\xC3\xB6.MVM";
    PutFile(path, BallModel(4));
    PutFile(folder / "b.txt", BallModel(4));
    UiWindow window;
    const auto drop = [&window](const std::string& first, const std::string& second) {
        QMimeData data;
        data.setUrls(
            {QUrl::fromLocalFile(QString::fromStdString(first)), QUrl::fromLocalFile(QString::fromStdString(second))});
        QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
        static_cast<QObject&>(*window).event(&event);
        EXPECT_FALSE(ModelOpen) << "the load must wait until the drop has been answered";
        QApplication::processEvents();
    };
    drop(folder / "b.txt", path);
    drop(folder.Path, path);
    EXPECT_FALSE(ModelOpen);
    drop(path, folder / "b.txt");
    EXPECT_EQ(CurrentFile, path);
}

TEST(WindowWorkflow, ADroppedPathEndsAtItsFirstNul)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(4));
    UiWindow window;
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), QByteArray::fromStdString("file://" + (folder / "a.mvm%00.txt")));
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    static_cast<QObject&>(*window).event(&event);
    QApplication::processEvents();
    EXPECT_EQ(CurrentFile, folder / "a.mvm");
}

TEST(WindowWorkflow, AFailedLoadLeavesNoDocument)
{
    const TempFolder folder;
    PutFile(folder / "bad.mvm", "bone \"a\"\r\n{\r\nposition=(1E300,0,0)\r\n}\r\n");
    UiWindow window;
    int boxes = 0;
    const DialogSteps::Step any = [&boxes](QDialog* dialog) {
        boxes++;
        dialog->reject();
    };
    {
        const DialogSteps steps({any, any});
        window->OpenFile(folder / "bad.mvm");
    }
    EXPECT_EQ(boxes, 2);
    EXPECT_FALSE(ModelOpen);
    EXPECT_FALSE(window->Entry("mnuFileSave")->isEnabled());
    EXPECT_EQ(window->windowTitle().toStdString(), "BWRT 0.2.7");
    const DialogSteps steps({Box("Cannot find file \"" + folder.Path + "\".", QMessageBox::Ok)});
    window->OpenFile(folder.Path);
}
