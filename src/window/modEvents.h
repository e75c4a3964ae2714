#pragma once

#include <cstdint>

/// Serves the pending events of the window system.
void PumpEvents();

/// Microseconds that ProgressStep lets pass between two rounds of events. Where software draws the window, a round
/// takes some milliseconds.
inline int64_t PumpInterval = 1000000 / 30;
