#include "offscreen/modContext.h"

#include <cstdint>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

/// The system gives a context to a window alone, so there is one, never shown. What it would show plays no part.
bool MakeCurrent()
{
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    const HDC device = window == nullptr ? nullptr : GetDC(window);
    if (device == nullptr) {
        return false;
    }
    PIXELFORMATDESCRIPTOR wanted{};
    wanted.nSize = sizeof wanted;
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL;
    wanted.iPixelType = PFD_TYPE_RGBA;
    wanted.cColorBits = 24;
    wanted.cDepthBits = 24;
    const int format = ChoosePixelFormat(device, &wanted);
    if (format == 0 || SetPixelFormat(device, format, &wanted) == FALSE) {
        return false;
    }
    const HGLRC context = wglCreateContext(device);
    return context != nullptr && wglMakeCurrent(device, context) == TRUE;
}

} // namespace

bool MakeContext(std::string* error)
{
    if (!MakeCurrent()) {
        *error = "This machine gives no OpenGL. It comes with the driver of the graphics card.";
        return false;
    }
    return true;
}

void (*FindGLFunction(const char* name))()
{
    // Some drivers give 1, 2, 3 or -1 for what they do not have.
    const PROC function = wglGetProcAddress(name);
    const auto address = reinterpret_cast<intptr_t>(function);
    return address >= -1 && address <= 3 ? nullptr : reinterpret_cast<void (*)()>(function);
}
