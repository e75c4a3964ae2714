#pragma once

#include <string>

#include "modExchangeModel.h"

/// A sentence on the vertices whose weight on several bones went to one of them: how many, and how much was dropped.
/// Corners that become one vertex count once. Empty without any.
[[nodiscard]] std::string ToldWeights(const ExchangeModel& model);
