#pragma once

#include "modExchangeModel.h"

/// Fills the empty scene from the record of an exchange model, bit for bit as the model that it was made from, where
/// the record still fits all shapes, bones, placements and materials of the file. Else false, with the scene empty.
bool RestoreScene(const ExchangeModel& model);

/// How far apart places of bones may be that are the same: a part of their largest coordinate.
[[nodiscard]] double BoneTolerance(const std::vector<Vec3>& heads);
