// Numbers typed into fields: the numeric test, the leading-number parse, rounding with
// ties to the even digit, and the range check every numeric field of a screen or the
// settings file goes through.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace varo::core {

// How a piece of text reads as one decimal number.
enum class DecimalParse {
    Number,     // a number; one too small for a double reads as 0
    NotNumber,  // not a number at all, or a number with something after it
    OutOfRange, // a number too large for a double (1e999, a thousand digits)
};

// The whole text as a decimal number: an optional sign, digits with at most one decimal
// point (at least one digit), an optional exponent, nothing else. `value` is set only for
// `DecimalParse::Number`.
DecimalParse parseDecimal(std::string_view text, double& value);

// Optional blanks, an optional sign, digits with at most one decimal point (at least one
// digit), an optional exponent, optional blanks, and a magnitude a double holds. Empty text
// is not a number.
bool isNumeric(std::string_view text);

// The longest numeric prefix after leading blanks, or 0 when there is none ("12abc" is 12).
double leadingNumber(std::string_view text);

// The text without the blanks and tabs at either end.
std::string_view trimBlanks(std::string_view text);

// Nearest integer, ties to even (2.5 is 2, 3.5 is 4); beyond the range of long long the
// largest or smallest one, and 0 for not a number.
long long roundHalfEven(double value);

// The field's number rounded half to even: what an integer field takes from its text. A
// number beyond the range of int stops at its ends.
int roundedInteger(std::string_view text);

// Whether the ends of a range belong to it.
enum class RangeEnds { Included, Excluded };

// The number of a numeric text that lies from `low` to `high`, or nothing.
std::optional<double> numberIn(std::string_view text, double low, double high,
                               RangeEnds ends = RangeEnds::Included);

// The check of a numeric field: `notNumber` when the text is no number, `outside` when its
// number lies outside the range, nothing when it passes.
std::optional<std::string> rangeRefusal(std::string_view text, double low, double high,
                                        std::string_view notNumber, std::string_view outside,
                                        RangeEnds ends = RangeEnds::Included);

// Rounds to a number of decimals on the value's shortest decimal digits, ties to even:
// 2.675 to two decimals is 2.68, 0.125 is 0.12.
double roundToDecimals(double value, int decimals);

} // namespace varo::core
