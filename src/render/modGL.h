#pragma once

// OpenGL and GLU. On Windows their headers ask for the system's own, which fill the space of names with macros, unless
// they find what they need of it.

#if defined(_WIN32) && !defined(APIENTRY)
#define BEASTWRIGHT_GL_ALONE
#define WINGDIAPI __declspec(dllimport)
#define APIENTRY __stdcall
#define CALLBACK __stdcall
#endif

#include <GL/gl.h>
#include <GL/glu.h>

#ifdef BEASTWRIGHT_GL_ALONE
#undef BEASTWRIGHT_GL_ALONE
#undef WINGDIAPI
#undef APIENTRY
#undef CALLBACK
#endif
