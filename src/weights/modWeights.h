#pragma once

#include <cstdint>
#include <string>

inline int16_t WeightsAssignMode = 0; ///< answer of the dialog: 0 cancelled, 1 by index, 2 by position

/// Shows the dialog that asks how to assign, and sets WeightsAssignMode. The window implements it.
void AskWeightsAssignMode();

/// Writes the assignments of a valid mesh to a weights file, whole or not at all; says "File saved." or what failed.
void SaveWeights(const std::string& file, int16_t mesh);
/// Reads a weights file into a valid mesh after the questions that it raises. Ends with Redraw.
void LoadWeights(const std::string& file, int16_t mesh);
