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
/// The same into a text that keeps its memory from call to call.
void StripWhitespaceInto(std::string_view line, std::string* result);
/// Removes every double quote.
[[nodiscard]] std::string StripQuotes(std::string_view text);

/// The leading-number rule: blanks, tabs and line feeds are skipped, also inside the number; sign, digits with at most
/// one point, exponent E or D; what follows is ignored; 0 when no number stands at the start. Fails only for a number
/// too large for a double.
bool LeadingNumber(std::string_view text, double* result);
/// A double as 32-bit float; fails when it is finite and does not fit.
bool ToFloat(double value, float* result);
/// Nearest integer, ties to even; fails outside -32768..32767 or when not a number.
bool RoundToInt16(double value, int16_t* result);
/// Nearest integer, ties to even; fails outside the 32-bit range or when not a number.
bool RoundToInt32(double value, int32_t* result);

/// A pair "(u,v)". Fails for fewer than two characters or a number that does not fit a float.
bool ParseUV(std::string_view text, Vec2* result);
/// A triple "(a,b,c)" as X = a, Y = c, Z = -b. Fails like ParseUV.
bool ParseVec3(std::string_view text, Vec3* result);

/// At most seven significant digits, no trailing zeros, a point as decimal mark in every locale. Sizes (after rounding)
/// from 0.0001 to 9999999 are plain decimals, all others take the exponent form ("1.5E-07", "1E+07"). Zero of either sign
/// is "0". What no text can carry becomes what a reader takes: an infinity the largest float, not-a-number "0".
[[nodiscard]] std::string FloatToText(float value);
/// Writes the same text to `to` (room for 24 characters) and returns the end.
char* FloatToChars(float value, char* to);

/// The joint number of a bone: the last two characters of its name, read as a number.
[[nodiscard]] double JointNumber(std::string_view boneName);
