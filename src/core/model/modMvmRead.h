#pragma once

#include <string>

/// True while LoadMVM runs. Commands that would change or drop the scene must not run then.
inline bool LoadRunning = false;

/// Adds the model file at `path` to the scene, loads its textures, works out shadow bones and roles, binds skin
/// vertices by joint number, and selects skin and shadow. On a failure shows a message, keeps what was read and gives
/// false. When StopRequested becomes true during the load, it ends with false and without a message.
bool LoadMVM(const std::string& path);
