#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Numbers of the model format and their text. Operations that can fail give false and leave *result as it was.

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

/// At most seven significant digits, no trailing zeros, a point as decimal mark in every locale. Sizes (after rounding)
/// from 0.0001 to 9999999 are plain decimals, all others take the exponent form ("1.5E-07", "1E+07"). Zero of either
/// sign is "0". What no text can carry becomes what a reader takes: an infinity the largest float, not-a-number "0".
[[nodiscard]] std::string FloatToText(float value);
/// Writes the same text to `to` (room for 24 characters) and returns the end.
char* FloatToChars(float value, char* to);
/// A number as lists show it to the user: FloatToText, but with the decimal mark of the user's locale. UTF-8.
[[nodiscard]] std::string FloatToLocaleText(float value);
