#pragma once

#include <string>
#include <vector>

/// Rows of equal length as lines of columns: the first aligned to the left, the others to the right.
[[nodiscard]] std::string TableText(const std::vector<std::vector<std::string>>& rows);
