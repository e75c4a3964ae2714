// The keys for work that goes over many vertices, on the real window.
#include <gmock/gmock.h>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modPick.h"
#include "modTryJoint.h"
#include "modViewFlags.h"
#include "support/scene_bytes.h"
#include "support/ui_window.h"
#include "weights/modEdit.h"

namespace {

class EditKeys : public testing::Test {
protected:
    EditKeys()
    {
        window->Edit(1);
        Middle = QPoint((*window)->picMain->width() / 2, (*window)->picMain->height() / 2);
    }
    frmMain& Form() { return **window; }
    /// Moves the pointer, and waits until the view knows.
    void PointAt(QPoint place)
    {
        QTest::mouseMove(Form().picMain, place);
        EXPECT_TRUE(QTest::qWaitFor([&] { return MouseLastX == static_cast<float>(place.x()); }));
    }
    std::string Press(Qt::Key key)
    {
        QTest::keyClick(Form().picMain, key);
        return Form().panels[0]->text().toStdString();
    }
    std::unique_ptr<UiWindow> window = std::make_unique<UiWindow>(BoardModel(9));
    QPoint Middle;
};

} // namespace

TEST_F(EditKeys, UBringsAVertexToTheMiddleWhereETakesItsBone)
{
    for (const int16_t camera : {int16_t{5}, int16_t{7}, int16_t{2}, int16_t{1}}) {
        Form().SetCamera(camera);
        Press(Qt::Key_U);
        EXPECT_NE(VertexAt(SkinMesh, Middle.x(), Middle.y()), 0) << camera;
    }
    ReplaceBone(SkinMesh, 0, 3);
    ViewCullVerts = false;
    PointAt(Middle);
    const std::string said = Press(Qt::Key_E);
    EXPECT_EQ(ActiveBone, 3);
    const int32_t vertex = std::stoi(said.substr(7));
    EXPECT_EQ(said, "Vertex " + std::to_string(vertex) + " of Body: " + BoneLabel(3) + ".");
    EXPECT_EQ(Form().lstSkinBones->currentRow(), 3);
    Meshes[SkinMesh].VertexBones[vertex] = 0;
    EXPECT_EQ(Press(Qt::Key_E), "Vertex " + std::to_string(vertex) + " of Body has no bone.");
    EXPECT_EQ(ActiveBone, 0);
    PointAt({3, 3});
    EXPECT_EQ(Press(Qt::Key_E), "There is no vertex under the pointer.");
    ViewCullVerts = true;
}

TEST_F(EditKeys, GPassesOverVerticesWithABone)
{
    ReplaceBone(SkinMesh, 0, 2);
    Meshes[SkinMesh].VertexBones[1] = 0;
    ViewCullVerts = false;
    EXPECT_EQ(Press(Qt::Key_G), "Picks take only vertices without a bone.");
    Form().SetCamera(2);
    QTest::mousePress(Form().picMain, Qt::LeftButton, {}, {2, 2});
    QTest::mouseRelease(Form().picMain, Qt::LeftButton, {}, Middle * 2 - QPoint(2, 2));
    const int32_t count = Meshes[SkinMesh].VertexCount();
    EXPECT_EQ(Form().panels[0]->text().toStdString(),
              "Only vertices without a bone: 1 taken, " + std::to_string(count - 1) + " passed over.");
    EXPECT_EQ(CountBoneVerts(SkinMesh, 1), 1);
    QTest::keyClick(Form().picMain, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Form().panels[0]->text(), QStringLiteral("Undo: Pick (1 vertex)"));
    EXPECT_EQ(Press(Qt::Key_G), "Picks take all vertices.");
    ViewCullVerts = true;
}

TEST_F(EditKeys, DTurnsAJointForTheEyeAlone)
{
    ReplaceBone(SkinMesh, 0, 1);
    const std::string before = SceneBytes();
    const auto picture = [this] { return Form().picMain->grab().toImage(); };
    const QImage still = picture();
    PointAt(Middle);
    QTest::keyPress(Form().picMain, Qt::Key_D);
    PointAt(Middle + QPoint(80, 0));
    EXPECT_EQ(JointAngle, 10);
    EXPECT_EQ(Form().panels[0]->text().toStdString(), BoneLabel(1) + " turned by 10.0 degrees.");
    EXPECT_NE(picture(), still);
    EXPECT_EQ(SceneBytes(), before);
    QTest::keyRelease(Form().picMain, Qt::Key_D); // as a key that repeats
    QTest::keyPress(Form().picMain, Qt::Key_D);
    EXPECT_TRUE(TryingJoint);
    QTest::keyRelease(Form().picMain, Qt::Key_D);
    ASSERT_TRUE(QTest::qWaitFor([] { return !TryingJoint; }));
    EXPECT_EQ(picture(), still);
    QTest::keyPress(Form().picMain, Qt::Key_D);
    EXPECT_TRUE(TryingJoint);
    Form().OpenFile(std::string(CurrentFile));
    EXPECT_FALSE(TryingJoint) << "it does not outlive its scene";
    SetActiveBone(0);
    EXPECT_EQ(Press(Qt::Key_D), "Choose a bone to try its joint.");
    EXPECT_FALSE(TryingJoint);
}
