#pragma once

/// Puts the scene, the aliases and the options of the core to the state in which the program starts.
void ResetSession();
