#include <gmock/gmock.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>

#include "modOpenGL.h"
#include "support/fresh.h"

TEST(BadContext, IsRefusedWithAMessage)
{
    QOpenGLContext* const usual = QOpenGLContext::currentContext();
    QSurface* const surface = usual->surface();
    QSurfaceFormat core;
    core.setVersion(3, 3);
    core.setProfile(QSurfaceFormat::CoreProfile);
    QSurfaceFormat embedded;
    embedded.setRenderableType(QSurfaceFormat::OpenGLES);
    embedded.setVersion(2, 0);
    const QSurfaceFormat* const cases[] = {nullptr, &core, &embedded};
    for (const QSurfaceFormat* format : cases) {
        SCOPED_TRACE(format == nullptr ? "no context" : format == &core ? "core profile" : "embedded profile");
        scripted::Reset();
        QOpenGLContext context;
        QOffscreenSurface other;
        usual->doneCurrent();
        if (format != nullptr) {
            context.setFormat(*format);
            other.setFormat(*format);
            other.create();
            ASSERT_TRUE(context.create() && context.makeCurrent(&other));
        }
        EXPECT_FALSE(InitOpenGL());
        EXPECT_FALSE(GLContext);
        EXPECT_THAT(scripted::Messages, testing::ElementsAre(IsBox(BoxIcon::Stop, "Initalizing OpenGL failed.")));
        context.doneCurrent();
    }
    ASSERT_TRUE(usual->makeCurrent(surface));
}
