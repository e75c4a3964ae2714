#pragma once

#include <string>
#include <vector>

// Names of records in files of other formats.

/// UTF-8 names for records with these names (code page): cut behind a letter so that 63 bytes hold them, which is what
/// modelling programs keep, without control characters, not empty, no two alike. The same for the same names.
/// `nameless` stands for an empty name.
[[nodiscard]] std::vector<std::string> ExchangeNames(const std::vector<std::string>& names,
                                                     const std::string& nameless);

/// A name as a block header of a model file can hold it (code page), from UTF-8: blanks, quotes, "=" and braces become
/// "_", and so does an empty name; characters outside the code page become "?".
[[nodiscard]] std::string NameForModel(const std::string& name);

/// True for the names of the joint that holds vertices of no bone: this program's and Blender's.
[[nodiscard]] bool IsUnassignedJoint(const std::string& name);
inline constexpr const char* unassignedJoint = "beastwright_unassigned";

/// A name in the form that all formats keep: letters and digits of ASCII, anything else "_".
[[nodiscard]] std::string PlainName(const std::string& name);
