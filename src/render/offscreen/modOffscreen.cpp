#define GL_GLEXT_PROTOTYPES
#include "modOffscreen.h"

#include <cstddef>
#include <cstring>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

namespace {

EGLDisplay display = EGL_NO_DISPLAY;
EGLContext context = EGL_NO_CONTEXT;

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

bool MakeContext()
{
    display = FindDisplay();
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
    context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    return context != EGL_NO_CONTEXT && eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
}

/// The toolkit's view has a texture of eight bits for each colour, and depth and stencil in one buffer.
bool MakeFramebuffer(int32_t width, int32_t height)
{
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    if (width > largest || height > largest) {
        return false;
    }
    GLuint framebuffer = 0;
    GLuint texture = 0;
    GLuint depth = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, width, height, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glGenRenderbuffers(1, &depth);
    glBindRenderbuffer(GL_RENDERBUFFER, depth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, depth);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE && glGetError() == GL_NO_ERROR;
}

} // namespace

bool MakeOffscreenContext(int32_t width, int32_t height, std::string* error)
{
    if (!MakeContext()) {
        *error = "This machine gives no OpenGL to a program without a window. Its software form is in the package "
                 "libgl1-mesa-dri of Debian and Ubuntu.";
        return false;
    }
    if (!MakeFramebuffer(width, height)) {
        *error = "OpenGL has no room for a picture of this size.";
        return false;
    }
    return true;
}

std::vector<uint8_t> ReadOffscreenPixels(int32_t width, int32_t height)
{
    const size_t row = size_t{3} * static_cast<size_t>(width);
    std::vector<uint8_t> pixels(row * static_cast<size_t>(height));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* to = pixels.data() + row * static_cast<size_t>(height - 1 - y);
        glReadPixels(0, y, width, 1, GL_RGB, GL_UNSIGNED_BYTE, to);
    }
    return pixels;
}
