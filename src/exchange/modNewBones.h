#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"

/// Adds the bones of a file to the scene, with names that a model can hold and joint numbers for those whose names end
/// in none, or in one that another bone of their kind has. *numbers gets the number into Bones of each. False, with
/// *error set, for more bones of a kind than there are joint numbers.
bool AddNewBones(const ExchangeModel& model, std::vector<int16_t>* numbers, std::vector<std::string>* notes,
                 std::string* error);
