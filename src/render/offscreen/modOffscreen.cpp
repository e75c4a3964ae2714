#include "modOffscreen.h"

#include <cstddef>

#include "modGL.h"
#include "offscreen/modContext.h"

#include <GL/glext.h>

namespace {

/// Functions that came into OpenGL after those that every system's library has.
struct FramebufferFunctions {
    PFNGLGENFRAMEBUFFERSPROC GenFramebuffers = nullptr;
    PFNGLBINDFRAMEBUFFERPROC BindFramebuffer = nullptr;
    PFNGLFRAMEBUFFERTEXTURE2DPROC FramebufferTexture2D = nullptr;
    PFNGLGENRENDERBUFFERSPROC GenRenderbuffers = nullptr;
    PFNGLBINDRENDERBUFFERPROC BindRenderbuffer = nullptr;
    PFNGLRENDERBUFFERSTORAGEPROC RenderbufferStorage = nullptr;
    PFNGLFRAMEBUFFERRENDERBUFFERPROC FramebufferRenderbuffer = nullptr;
    PFNGLCHECKFRAMEBUFFERSTATUSPROC CheckFramebufferStatus = nullptr;
};

template <typename Function>
bool Find(const char* name, Function* function)
{
    *function = reinterpret_cast<Function>(FindGLFunction(name));
    return *function != nullptr;
}

bool FindAll(FramebufferFunctions* gl)
{
    return Find("glGenFramebuffers", &gl->GenFramebuffers) && Find("glBindFramebuffer", &gl->BindFramebuffer) &&
           Find("glFramebufferTexture2D", &gl->FramebufferTexture2D) &&
           Find("glGenRenderbuffers", &gl->GenRenderbuffers) && Find("glBindRenderbuffer", &gl->BindRenderbuffer) &&
           Find("glRenderbufferStorage", &gl->RenderbufferStorage) &&
           Find("glFramebufferRenderbuffer", &gl->FramebufferRenderbuffer) &&
           Find("glCheckFramebufferStatus", &gl->CheckFramebufferStatus);
}

/// The toolkit's view has a texture of eight bits for each colour, and depth and stencil in one buffer.
bool MakeFramebuffer(const FramebufferFunctions& gl, int32_t width, int32_t height)
{
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    if (width > largest || height > largest) {
        return false;
    }
    GLuint framebuffer = 0;
    GLuint texture = 0;
    GLuint depth = 0;
    gl.GenFramebuffers(1, &framebuffer);
    gl.BindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, width, height, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    gl.FramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    gl.GenRenderbuffers(1, &depth);
    gl.BindRenderbuffer(GL_RENDERBUFFER, depth);
    gl.RenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, width, height);
    gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, depth);
    return gl.CheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE && glGetError() == GL_NO_ERROR;
}

} // namespace

bool MakeOffscreenContext(int32_t width, int32_t height, std::string* error)
{
    if (!MakeContext(error)) {
        return false;
    }
    FramebufferFunctions gl;
    if (!FindAll(&gl)) {
        *error = "The OpenGL of this machine is too old: a picture needs framebuffer objects, which came with "
                 "version 3.";
        return false;
    }
    if (!MakeFramebuffer(gl, width, height)) {
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
