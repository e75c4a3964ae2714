// What a scale of the desktop could break. The build runs these once more for each usual scale.
#include <GL/gl.h>

#include <QOpenGLWidget>

#include "modGLState.h"
#include "modOpenGL.h"
#include "support/ui_window.h"
#include "weights/modEdit.h"

namespace {

/// Where a vertex lies in the view, in pixels of the window system from the top left corner.
QPointF PlaceOf(const frmMain& window, const Vec3& vertex)
{
    MakeViewCurrent();
    SetBaseState();
    ApplyCamera();
    QMatrix4x4 modelview;
    QMatrix4x4 projection;
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview.data());
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    const QVector3D place = (projection * modelview).map(QVector3D(vertex.X, vertex.Y, vertex.Z));
    return {(place.x() + 1) / 2.0 * window.picMain->width(), (1 - place.y()) / 2.0 * window.picMain->height()};
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

} // namespace

TEST(WindowDisplays, AClickTakesExactlyTheVertexUnderIt)
{
    const UiWindow window(BoardModel(9));
    window->SetCamera(2);
    window.Do("mnuViewWire");
    for (const QSize size : {QSize(660, 508), QSize(851, 703)}) {
        window->resize(size);
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->width() >= size.width() - 20; }));
        QCoreApplication::processEvents();
        window.Edit(1);
        const double scale = window->picMain->devicePixelRatioF();
        ASSERT_EQ(Picture(*window).size(), QSize(ViewWidth, ViewHeight));
        int tried = 0;
        for (int32_t i = 1; i <= Meshes[SkinMesh].VertexCount(); i += 4) {
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
            EXPECT_NEAR(changed.center().x() / scale, place.x(), 1) << "vertex " << i;
            EXPECT_NEAR(changed.center().y() / scale, place.y(), 1) << "vertex " << i;
            EXPECT_NEAR(changed.width() / scale, PointSize, 2);
            // Just beside it nothing is taken.
            Meshes[SkinMesh].VertexBones[i] = 0;
            QTest::mouseClick(window->picMain, Qt::LeftButton, {}, place.toPoint() + QPoint(PointSize, 0));
            EXPECT_TRUE(Assigned().empty());
        }
        EXPECT_GE(tried, 12);
        QTest::mousePress(window->picMain, Qt::LeftButton, {}, QPoint(61, 47));
        const QImage before = Picture(*window);
        QTest::mouseMove(window->picMain, QPoint(317, 251));
        const QRectF band = Difference(before, Picture(*window));
        EXPECT_NEAR(band.left() / scale, 61, 1.5);
        EXPECT_NEAR(band.bottom() / scale, 251, 1.5);
        QTest::mouseRelease(window->picMain, Qt::LeftButton, {}, QPoint(61, 47));
        UnassignAll(SkinMesh);
    }
}
