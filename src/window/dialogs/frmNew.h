#pragma once

/// Asks for a preset and a model and loads both into the empty scene. True: both stand in the scene, and the caller
/// opens the document. False: nothing was loaded; after a failed load the dialog waits, hidden, with its choices for
/// next time.
bool ShowNewDialog();

/// Drops a dialog that waits. For the program's end.
void ForgetNewDialog();
