#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Rows of equal length as lines of columns: the first `names` ones aligned to the left, the others to the right.
[[nodiscard]] std::string TableText(size_t names, const std::vector<std::vector<std::string>>& rows);
