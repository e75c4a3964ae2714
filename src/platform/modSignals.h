#pragma once

/// Catches the signals by which a system asks a program to end. Each arrives as one byte, its number, at the descriptor
/// that this gives; -1 when the system has none to give. Call it once.
[[nodiscard]] int CatchEndSignals();
/// The number of the next signal caught; 0 when none waits.
[[nodiscard]] int TakeEndSignal();
