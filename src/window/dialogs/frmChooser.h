#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Names of a chooser: of the dialog and its list as objects, and the dialog's caption.
struct ChooserNames {
    const char* Dialog;
    const char* Caption;
    const char* List;
};

/// Shows a modal list of "NONE" and the rows 1 to `count` (at most 32,767), each with the UTF-8 text that `label`
/// gives. Row `current` is selected at first, or "NONE" when there is no such row. Gives the row, or -1 for Cancel.
int16_t ChooseRow(const ChooserNames& names, int32_t count, int16_t current,
                  const std::function<std::string(int16_t)>& label);
