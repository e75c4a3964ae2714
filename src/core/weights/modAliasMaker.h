#pragma once

#include <cstdint>
#include <string>

/// The text of an alias file for the mesh: the shadow bones when it is the shadow, else the ordinary ones, with labels
/// made readable from the names, with guessed links and with partners by position; what the bones have from an alias
/// file already stays. Empty for an invalid mesh.
/// A bone whose name cannot stand in such a file is left out; of several bones of one name the last one speaks, as it
/// does when the file is applied.
[[nodiscard]] std::string MakeAliasText(int16_t mesh);
