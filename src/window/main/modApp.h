#pragma once

inline bool GLReady = false;    ///< the view has its OpenGL context
inline bool AppClosing = false; ///< the program is going down: closing the Info Log no longer just hides it

/// The first steps of a start: context state, cameras, defaults, alias files.
void InitApp();
/// The last steps: scene, aliases, context.
void ShutdownApp();
