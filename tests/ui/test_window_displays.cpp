// What a scale of the desktop could break. The build runs these once more for each usual scale.
#include <algorithm>
#include <array>
#include <cmath>

#include <GL/gl.h>
#include <GL/glu.h>

#include <QAction>
#include <QGuiApplication>
#include <QImage>
#include <QOpenGLWidget>
#include <QWindow>

#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modGLState.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"

namespace {

/// Where a vertex lies in the view, in pixels of the window system from the top left corner.
QPointF PlaceOf(const frmMain& window, const Vec3& vertex)
{
    MakeViewCurrent();
    SetBaseState();
    ApplyCamera();
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    std::array<GLint, 4> viewport{};
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    GLdouble x = 0;
    GLdouble y = 0;
    GLdouble depth = 0;
    gluProject(vertex.X, vertex.Y, vertex.Z, modelview.data(), projection.data(), viewport.data(), &x, &y, &depth);
    const double width = window.picMain->width();
    const double height = window.picMain->height();
    return {x * width / viewport[2], height - y * height / viewport[3]};
}

/// The pixels in which two pictures differ, as a rectangle.
QRect Difference(const QImage& one, const QImage& other)
{
    QRect changed;
    for (int y = 0; y < one.height(); y++) {
        for (int x = 0; x < one.width(); x++) {
            if (one.pixel(x, y) != other.pixel(x, y)) {
                changed |= QRect(x, y, 1, 1);
            }
        }
    }
    return changed;
}

QImage Picture(const frmMain& window)
{
    return qobject_cast<QOpenGLWidget*>(window.picMain)->grabFramebuffer().convertToFormat(QImage::Format_RGB32);
}

/// Numbers of the vertices that have a bone.
std::vector<int32_t> Assigned()
{
    std::vector<int32_t> numbers;
    for (int32_t i = 1; i <= Meshes[SkinMesh].VertexCount(); i++) {
        if (Meshes[SkinMesh].VertexBones[i] != 0) {
            numbers.push_back(i);
        }
    }
    return numbers;
}

/// Flat points that lie well apart, 0.15 from one to the next.
std::string BoardModel()
{
    std::string text = BallModel(2);
    const size_t begin = text.find("v=(");
    const size_t end = text.find("}\r\n", begin);
    std::string points;
    for (int row = -4; row <= 4; row++) {
        for (int column = -4; column <= 4; column++) {
            points += "v=(" + std::to_string(column * 15) + "E-2," + std::to_string(row * 15) + "E-2,0),-1\r\n";
        }
    }
    return text.replace(begin, end - begin, points + "n=(0,0,1)\r\n");
}

} // namespace

TEST(WindowDisplays, AClickTakesExactlyTheVertexUnderIt)
{
    const TempFolder folder;
    PutFile(folder / "board.mvm", BoardModel());
    const UiWindow window(folder / "board.mvm");
    ASSERT_TRUE(ModelOpen);
    ASSERT_GE(SkinMesh, 1);
    window->SetCamera(2);
    window->Entry("mnuViewWire")->trigger();
    for (const QSize size : {QSize(660, 508), QSize(851, 703)}) {
        window->resize(size);
        QTest::qWait(100);
        window.Edit(1);
        const double scale = window->picMain->devicePixelRatioF();
        ASSERT_EQ(Picture(*window).size(), QSize(ViewWidth, ViewHeight));
        int tried = 0;
        for (int32_t i = 1; i <= Meshes[SkinMesh].VertexCount(); i += 3) {
            Meshes[SkinMesh].VertexBones.Items.assign(Meshes[SkinMesh].VertexBones.Items.size(), 0);
            const QPointF place = PlaceOf(*window, Meshes[SkinMesh].Vertices[i]);
            if (!QRectF(window->picMain->rect()).adjusted(8, 8, -8, -8).contains(place)) {
                continue;
            }
            tried++;
            const QImage before = Picture(*window);
            QTest::mouseClick(window->picMain, Qt::LeftButton, {}, place.toPoint());
            EXPECT_EQ(Assigned(), std::vector<int32_t>{i}) << "at " << place.x() << ", " << place.y();
            // The picture shows it under the mouse, too.
            const QRectF changed = Difference(before, Picture(*window));
            ASSERT_FALSE(changed.isEmpty());
            EXPECT_NEAR(changed.center().x() / scale, place.x(), 1) << "vertex " << i;
            EXPECT_NEAR(changed.center().y() / scale, place.y(), 1) << "vertex " << i;
            EXPECT_NEAR(changed.width() / scale, PointSize, 2);
            // Just beside it nothing is taken.
            Meshes[SkinMesh].VertexBones[i] = 0;
            QTest::mouseClick(window->picMain, Qt::LeftButton, {}, place.toPoint() + QPoint(PointSize, 0));
            EXPECT_TRUE(Assigned().empty());
        }
        EXPECT_GE(tried, 15);
    }
}

TEST(WindowDisplays, ABoxTakesWhatItsRubberBandHolds)
{
    const TempFolder folder;
    PutFile(folder / "board.mvm", BoardModel());
    const UiWindow window(folder / "board.mvm");
    window->SetCamera(2);
    window->Entry("mnuViewWire")->trigger();
    window.Edit(1);
    const QPoint from(61, 47);
    const QPoint to(317, 251);
    const double scale = window->picMain->devicePixelRatioF();
    QTest::mousePress(window->picMain, Qt::LeftButton, {}, from);
    const QImage before = Picture(*window);
    QTest::mouseMove(window->picMain, to);
    const QRectF band = Difference(before, Picture(*window));
    EXPECT_NEAR(band.left() / scale, from.x(), 1.5);
    EXPECT_NEAR(band.top() / scale, from.y(), 1.5);
    EXPECT_NEAR(band.right() / scale, to.x(), 1.5);
    EXPECT_NEAR(band.bottom() / scale, to.y(), 1.5);
    QTest::mouseRelease(window->picMain, Qt::LeftButton, {}, to);
    // What lies on its edge may go either way.
    const QRectF box(from, to);
    int inside = 0;
    for (int32_t i = 1; i <= Meshes[SkinMesh].VertexCount(); i++) {
        const QPointF place = PlaceOf(*window, Meshes[SkinMesh].Vertices[i]);
        if (box.adjusted(1, 1, -1, -1).contains(place)) {
            inside++;
            EXPECT_NE(Meshes[SkinMesh].VertexBones[i], 0) << place.x() << ", " << place.y();
        } else if (!box.adjusted(-1, -1, 1, 1).contains(place)) {
            EXPECT_EQ(Meshes[SkinMesh].VertexBones[i], 0) << place.x() << ", " << place.y();
        }
    }
    EXPECT_GT(inside, 10);
    EXPECT_LT(inside, 75);
}

TEST(WindowDisplays, TheCameraLabelKeepsItsSize)
{
    const UiWindow window;
    const double scale = window->picMain->devicePixelRatioF();
    window->SetCamera(3);
    const QImage front = Picture(*window);
    window->SetCamera(4);
    // With no model and no grid the label is all that two cameras along an axis differ in.
    window->Entry("mnuViewGrid")->trigger();
    const QImage back = Picture(*window);
    window->SetCamera(3);
    const QRectF label = Difference(Picture(*window), back);
    ASSERT_FALSE(label.isEmpty());
    EXPECT_LE(label.width() / scale, 81);
    EXPECT_LE(label.height() / scale, 17);
    EXPECT_GE(label.height() / scale, 6);
    EXPECT_LE(label.right() / scale, 90);
    EXPECT_EQ(front.size(), QSize(ViewWidth, ViewHeight));
}

TEST(WindowDisplays, TheOuterSizeIsHeld)
{
    const UiWindow window;
    for (const QSize wish : {QSize(), QSize(100, 100)}) {
        if (wish.isValid()) {
            window->resize(wish);
        }
        QTest::qWait(100);
        // A scale that leaves parts of pixels may make it a little larger, never smaller.
        EXPECT_GE(window->frameGeometry().width(), 660);
        EXPECT_GE(window->frameGeometry().height(), 508);
        if (QGuiApplication::platformName() == QStringLiteral("xcb")) {
            EXPECT_LE(window->frameGeometry().width(), 662);
            EXPECT_LE(window->frameGeometry().height(), 510);
        }
    }
}
