#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"

/// Gives the open model the shape and the assignments of a file that was made from it; bones, materials, textures,
/// instances, names and order stay. *isDoubtful says that bones stand elsewhere, so that the shape most likely does
/// too. *notes gets what became of each mesh. False, with *error set and the scene as it was, when a mesh gets too
/// large or the file has no mesh of the model.
bool MergeIntoScene(const ExchangeModel& model, bool* isDoubtful, std::vector<std::string>* notes, std::string* error);
