#include "modTable.h"

#include <algorithm>
#include <cstddef>

namespace {

/// Signs that a reader sees; UTF-8 takes several bytes for one.
size_t WidthOf(const std::string& text)
{
    return static_cast<size_t>(std::count_if(text.begin(), text.end(),
                                             [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

} // namespace

std::string TableText(size_t names, const std::vector<std::vector<std::string>>& rows)
{
    std::vector<size_t> widths;
    for (const auto& row : rows) {
        widths.resize(row.size());
        for (size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], WidthOf(row[column]));
        }
    }
    std::string text;
    for (const auto& row : rows) {
        for (size_t column = 0; column < row.size(); ++column) {
            const std::string blanks(widths[column] - WidthOf(row[column]), ' ');
            text += (column > 0 ? "  " : "") + (column < names ? row[column] + blanks : blanks + row[column]);
        }
        text += "\n";
    }
    return text;
}
