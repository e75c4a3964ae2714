#include "main/frmView.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QScreen>

#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "modGL.h"
#include "modOpenGL.h"
#include "modViewFlags.h"

QSurfaceFormat ViewFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    format.setDepthBufferSize(24);
    format.setSamples(0);
    return format;
}

bool CanHaveView()
{
    QOpenGLContext context;
    context.setFormat(ViewFormat());
    if (!context.create() || context.isOpenGLES() || context.format().profile() == QSurfaceFormat::CoreProfile) {
        return false;
    }
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface)) {
        return false;
    }
    // The toolkit's view paints into a framebuffer object and its windows are composed by the shaders of OpenGL 2.
    // Systems without a driver of their own may give OpenGL 1.1, where it would call functions that are not there.
    const QOpenGLFunctions functions(&context);
    const bool enough =
        context.format().majorVersion() >= 2 && functions.hasOpenGLFeature(QOpenGLFunctions::Framebuffers);
    context.doneCurrent();
    return enough;
}

GLView::GLView(QWidget* parent) : QOpenGLWidget(parent)
{
    setFormat(ViewFormat());
    setTextureFormat(GL_RGB8);
    // The toolkit's composition of windows loses the view where the screen has no eight bits for each colour.
    constexpr int fullDepth = 24;
    setAttribute(Qt::WA_AlwaysStackOnTop, QGuiApplication::primaryScreen()->depth() < fullDepth);
}

void GLView::paintGL()
{
    // The window has moved to a screen with another scale.
    const auto scale = static_cast<float>(devicePixelRatioF());
    if (GLContext && scale != PixelScale) {
        PixelScale = scale;
        ResizeViewport(qRound(width() * devicePixelRatioF()), qRound(height() * devicePixelRatioF()));
    }
    try {
        PaintFrame();
    } catch (const std::exception& failure) {
        // A box would ask for the next picture, and that for the next box.
        SetPanelText("toolhelp", "The view cannot be drawn: " + WordsOf(failure));
    }
}
