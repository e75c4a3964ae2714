#pragma once

// OpenGL and GLU. Their headers on Windows ask for the system's own, which fill the space of names with macros, unless
// they find the two macros that they need of it.

#ifdef _WIN32
#define WINGDIAPI __declspec(dllimport)
#define APIENTRY __stdcall
#define CALLBACK __stdcall
#endif

#include <GL/gl.h>
#include <GL/glu.h>

#ifdef _WIN32
#undef WINGDIAPI
#undef APIENTRY
#undef CALLBACK
#endif
