#pragma once

// The window "Info Log". LogLine and ShowInfoLog of modStatus.h write to it and show it. Lines reach its text field
// "txtLog" when the log is shown or with the next events, whichever comes first; a large batch takes several turns.

[[nodiscard]] bool IsInfoLogVisible();
void HideInfoLog();
/// Empties the text. LogDirty is the caller's.
void ClearInfoLog();
/// Gives the keyboard to the log when it is visible.
void FocusInfoLog();
/// Closes the window for good and drops its text. For the program's end; a later LogLine starts a new log.
void CloseInfoLog();
