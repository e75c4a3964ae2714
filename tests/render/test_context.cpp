#include <gmock/gmock.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>

#include "modOpenGL.h"
#include "support/fresh.h"

namespace {

/// Starts with another context than that of the other tests, or with none, and puts theirs back.
void ExpectRefusal(const QSurfaceFormat* format)
{
    scripted::Reset();
    QOpenGLContext* const usual = QOpenGLContext::currentContext();
    QSurface* const surface = usual->surface();
    QOpenGLContext context;
    QOffscreenSurface other;
    usual->doneCurrent();
    bool isThere = true;
    if (format != nullptr) {
        context.setFormat(*format);
        other.setFormat(*format);
        other.create();
        isThere = context.create() && context.makeCurrent(&other);
    }
    EXPECT_TRUE(isThere);
    if (isThere) {
        EXPECT_FALSE(InitOpenGL());
        EXPECT_FALSE(GLContext);
        EXPECT_THAT(scripted::Messages, testing::ElementsAre(IsBox(BoxIcon::Stop, "Initalizing OpenGL failed.")));
        context.doneCurrent();
    }
    ASSERT_TRUE(usual->makeCurrent(surface));
}

} // namespace

TEST(BadContext, NoneIsRefused)
{
    ExpectRefusal(nullptr);
}

TEST(BadContext, TheCoreProfileIsRefused)
{
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    ExpectRefusal(&format);
}

TEST(BadContext, TheEmbeddedProfileIsRefused)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGLES);
    format.setVersion(2, 0);
    ExpectRefusal(&format);
}
