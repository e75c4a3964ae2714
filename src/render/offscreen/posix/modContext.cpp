#include "offscreen/modContext.h"

#include <cstring>

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace {

bool IsOffered(const char* extensions, const char* name)
{
    return extensions != nullptr && std::strstr(extensions, name) != nullptr;
}

/// A display without a screen where the system knows such; else the one that it gives to everybody.
EGLDisplay FindDisplay()
{
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (IsOffered(extensions, "EGL_MESA_platform_surfaceless")) {
        return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
    }
    return eglGetDisplay(EGL_DEFAULT_DISPLAY);
}

bool MakeCurrent()
{
    const EGLDisplay display = FindDisplay();
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE ||
        eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) {
        return false;
    }
    constexpr EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display, wanted, &config, 1, &count) == EGL_FALSE || count == 0) {
        return false;
    }
    const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    return context != EGL_NO_CONTEXT && eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
}

} // namespace

bool MakeContext(std::string* error)
{
    if (!MakeCurrent()) {
        *error = "This machine gives no OpenGL to a program without a window. Its software form is in the package "
                 "libgl1-mesa-dri of Debian and Ubuntu.";
        return false;
    }
    return true;
}

void (*FindGLFunction(const char* name))()
{
    return eglGetProcAddress(name);
}
