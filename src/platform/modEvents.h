#pragma once

/// Serves the pending events of the window system.
void PumpEvents();
