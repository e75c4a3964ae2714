#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The two bone lists of the main window, as the core sees them. The window implements these; tests have a form that
// records them. List 0 holds the ordinary bones, list 1 the shadow bones.

struct BoneRow {
    std::string Text;   ///< UTF-8
    int32_t Number = 0; ///< bone index, 0 for the row "NONE"
};

/// Replaces all rows of a list; no row is selected afterwards.
void SetBoneRows(int16_t list, const std::vector<BoneRow>& rows);
/// Selects the row with this number without any event; leaves the selection alone when there is none.
void SelectBoneRow(int16_t list, int32_t number);
