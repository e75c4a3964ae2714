#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "app/modMvmDef.h"

// The text rules of the model format. All functions are pure and work on bytes; NUL is a byte like any other.
// Operations that can fail give false and leave *result as it was.

/// The part behind the last separator, "\" or "/"; without one the whole path.
[[nodiscard]] std::string_view FileNameOf(std::string_view path);
/// The part up to and including the last separator; without one empty text. For paths of the file system.
[[nodiscard]] std::string_view DirectoryOf(std::string_view path);
/// The part behind the last ".", in its own case; without one the whole path.
[[nodiscard]] std::string_view ExtensionOf(std::string_view path);
/// The part before the first NUL.
[[nodiscard]] std::string_view TextBeforeNull(std::string_view text);

/// `text` with A to Z in lower case; all other bytes unchanged.
[[nodiscard]] std::string LowerCase(std::string_view text);
/// True when `text` holds `word` (given in lower case), compared without regard to the case of A to Z.
[[nodiscard]] bool HoldsAnyCase(std::string_view text, std::string_view word);

/// True when `text` is `word` (given in lower case), compared without regard to the case of A to Z.
[[nodiscard]] bool EqualsAnyCase(std::string_view text, std::string_view word);

/// Removes blanks and tabs outside double quotes. An unclosed quote keeps all that follows it.
[[nodiscard]] std::string StripWhitespace(std::string_view line);
/// Removes every double quote.
[[nodiscard]] std::string StripQuotes(std::string_view text);

/// A pair "(u,v)". Fails for fewer than two characters or a number that does not fit a float.
bool ParseUV(std::string_view text, Vec2* result);
/// A triple "(a,b,c)" as X = a, Y = c, Z = -b. Fails like ParseUV.
bool ParseVec3(std::string_view text, Vec3* result);

/// The joint number of a bone: the last two characters of its name, read as a number.
[[nodiscard]] double JointNumber(std::string_view boneName);
