#include <gtest/gtest.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QSurface>

#include "app/modFrontEnd.h"
#include "modOpenGL.h"
#include "support/scripted.h"

// Contexts that cannot draw are refused with a message.

namespace {

class BadContext : public testing::Test {
protected:
    void SetUp() override
    {
        scripted::Reset();
        usual = QOpenGLContext::currentContext();
        surface = usual->surface();
    }
    void TearDown() override { ASSERT_TRUE(usual->makeCurrent(surface)); }

    static void ExpectRefusal()
    {
        EXPECT_FALSE(InitOpenGL());
        EXPECT_FALSE(GLContext);
        ASSERT_EQ(scripted::Messages.size(), 1U);
        EXPECT_EQ(scripted::Messages[0].Icon, BoxIcon::Stop);
        EXPECT_EQ(scripted::Messages[0].Text, "Initalizing OpenGL failed.");
    }

    void ExpectRefusalOf(const QSurfaceFormat& format)
    {
        QOpenGLContext context;
        context.setFormat(format);
        QOffscreenSurface other;
        other.setFormat(format);
        other.create();
        ASSERT_TRUE(context.create());
        ASSERT_TRUE(context.makeCurrent(&other));
        ExpectRefusal();
        context.doneCurrent();
    }

    QOpenGLContext* usual = nullptr;
    QSurface* surface = nullptr;
};

TEST_F(BadContext, None)
{
    usual->doneCurrent();
    ExpectRefusal();
}

TEST_F(BadContext, CoreProfile)
{
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    ExpectRefusalOf(format);
}

TEST_F(BadContext, EmbeddedProfile)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGLES);
    format.setVersion(2, 0);
    ExpectRefusalOf(format);
}

} // namespace
