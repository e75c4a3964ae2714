#pragma once

#include <string>

// What is asked of the system for OpenGL without a window that anybody sees.

/// Makes a compatibility context and makes it current until the process ends. False, with *error set, when the system
/// has none to give.
bool MakeContext(std::string* error);
/// A function of OpenGL beyond version 1.1, for the context that is current; null when it has none of that name.
[[nodiscard]] void (*FindGLFunction(const char* name))();
