#pragma once

#include "checks/modTextBody.h"

/// Goes over the line at `at` of an open mesh or skin where it is a vertex, texture coordinate, normal or face as
/// writers of models put it down, of which a load drops nothing. Gives the line's end, which must be a CR; *changed is
/// the count of its numbers that a save changes. For any other line it gives nullptr.
const char* SkipUsualLine(const char* at, const TextBlock& block, int* changed);
