#pragma once

#include <cstdint>
#include <string>

// What the core tells the user while it works. The main window implements these; tests have a form that records them.
// All texts are UTF-8.

inline bool LogDirty = false; ///< lines went to the log that the user has not been shown
/// Microseconds that ProgressStep lets pass between two rounds of events. Where software draws the window, a round takes
/// some milliseconds.
inline int64_t PumpInterval = 1000000 / 30;
inline bool StopRequested = false; ///< the window was closed during a load: the load ends at its next step

/// Shows `text` in the status panel with this key: "toolhelp" or "progress".
void SetPanelText(const std::string& key, const std::string& text);

/// Shows the progress bar. A maximum below 1 counts as 1.
void ProgressBegin(int32_t maximum);
/// Moves the bar to `value`, held to 1..maximum. Serves pending events when PumpInterval has passed since the last time.
void ProgressStep(int32_t value);
/// Shows the value of the last step, which a step leaves to the next round of events. For a message during the operation.
void ProgressShow();
void ProgressEnd();

/// Appends one line to the Info Log and marks it as not yet seen.
void LogLine(const std::string& text);
/// Brings the Info Log into view and marks it as seen.
void ShowInfoLog();
