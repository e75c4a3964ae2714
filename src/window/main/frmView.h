#pragma once

#include <QOpenGLWidget>
#include <QSurfaceFormat>

/// The format that the view asks for: the fixed pipeline, double buffered, with a depth buffer and no samples.
[[nodiscard]] QSurfaceFormat ViewFormat();
/// True when this desktop gives such a context. Asks with a context of its own, so a refusal leaves nothing behind.
[[nodiscard]] bool CanHaveView();

/// The 3D view as an OpenGL surface. It paints a frame when one was asked for.
class GLView : public QOpenGLWidget {
public:
    explicit GLView(QWidget* parent);

protected:
    void paintGL() override;
};
