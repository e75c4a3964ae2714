#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"

/// Finds the bones of the scene in a file that was made from it: by name, by the form of the name that other formats
/// keep, or by the place of the head. *numbers gets the number into Bones of each, 0 for one that the scene has not.
/// *areMoved says whether bones with the same names stand elsewhere; *notes tells of those and of renamed ones.
void MatchBones(const ExchangeModel& model, std::vector<int16_t>* numbers, bool* areMoved,
                std::vector<std::string>* notes);
