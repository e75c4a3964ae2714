#include "modEvents.h"

#include <QCoreApplication>
#include <QOpenGLContext>

#include "modOpenGL.h"

void PumpEvents()
{
    const QOpenGLContext* before = QOpenGLContext::currentContext();
    QCoreApplication::processEvents();
    // The window system paints with a context of its own; who was in the middle of GL calls gets the view's back.
    if (before != nullptr && QOpenGLContext::currentContext() != before) {
        MakeViewCurrent();
    }
}
