// Numbers typed into fields: the numeric test, the leading-number parse, and rounding
// with ties to the even digit.
#pragma once

#include <string_view>

namespace varo::core {

// Optional blanks, an optional sign, digits with at most one decimal point (at least one
// digit), an optional exponent, optional blanks. Empty text is not a number.
bool isNumeric(std::string_view text);

// The longest numeric prefix after leading blanks, or 0 when there is none ("12abc" is 12).
double leadingNumber(std::string_view text);

// The text without the blanks and tabs at either end.
std::string_view trimBlanks(std::string_view text);

// Nearest integer, ties to even (2.5 is 2, 3.5 is 4).
long long roundHalfEven(double value);

// Rounds to a number of decimals on the value's shortest decimal digits, ties to even:
// 2.675 to two decimals is 2.68, 0.125 is 0.12.
double roundToDecimals(double value, int decimals);

} // namespace varo::core
