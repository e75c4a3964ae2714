#pragma once

#include <cstdint>
#include <string>

/// The threshold that an answer gives: its leading number, or 0.01 when that is not above 0 or too large for a float.
[[nodiscard]] float ThresholdFromAnswer(const std::string& answer);
/// The point size that an answer gives: its leading number, rounded, held to 1..10; `current` when it rounds to 0 or is
/// too large for a double.
[[nodiscard]] int32_t PointSizeFromAnswer(const std::string& answer, int32_t current);
