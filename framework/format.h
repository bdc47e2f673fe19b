// Fixed-width number formats.
//
// Messages, printouts and files of the system write numbers in a handful of
// fixed-width forms: an integer right-aligned in a field (I4), a fixed-point
// real (F10.3), an exponent form with the mantissa below one (E10.3) or with
// one digit before the point (1PE10.3). A value that does not fit its field
// fills the field with stars.
#pragma once

#include <string>

namespace kntr::fmt {

// Integer right-aligned in `width` characters ("I6").
std::string I(long long value, int width);

// Fixed point with `decimals` digits after the point ("F10.3").
std::string F(double value, int width, int decimals);

// Exponent form, mantissa in [0.1, 1): " 0.150E+01" ("E10.3").
std::string E(double value, int width, int decimals);

// Exponent form with one digit before the point: " 1.500E+00" ("1PE10.3").
std::string PE(double value, int width, int decimals);

// The shortest text that reads back to the same double ("%.17g" at most).
std::string exact(double value);

// A field of `width` characters: text cut or blank-padded on the right.
std::string pad(std::string_view text, int width);

// Text right-aligned in `width`, cut from the left when longer.
std::string padLeft(std::string_view text, int width);

// A run of `count` copies of `piece`.
std::string repeat(std::string_view piece, int count);

// Length without trailing blanks and NUL characters.
int trimmedLength(std::string_view text);
std::string_view trimmed(std::string_view text);

// Text without blanks, tabs and NULs at either end.
std::string stripped(std::string_view text);

// Upper-case copy (ASCII).
std::string upper(std::string_view text);

}  // namespace kntr::fmt
