// Numbers as text in the files and screens: format patterns such as "####0.000", the
// general number form of printed files, and 14-character print zones.
//
// Format patterns round half to even on the value's shortest decimal digits. The general
// form is the shortest text that reads back to the value, at most 15 significant digits
// (7 for a single-precision value), with no zero before the point (".005") and the
// exponent form ("1E+16", "1.5E-05") outside 1e-4 <= |x| < 1e15.
#pragma once

#include <string>
#include <string_view>

namespace varo::core {

// A compiled format pattern: literal prefix (blanks), integer digit places ('#' optional,
// '0' required), an optional point with decimal places, and an optional trailing ','
// that asks for thousands grouping. Examples: "####0.000", "#####0.000", "0.000",
// "#0.00", " #0.0000", "0", "######", "0.000,", "####0.000,".
class NumberFormat {
public:
    explicit NumberFormat(std::string_view pattern);

    std::string format(double value) const;
    void appendTo(std::string& out, double value) const;

private:
    std::string prefix_;
    int minIntegerDigits_ = 0;
    int decimals_ = 0;
    bool grouping_ = false;
};

// One-off formatting by a pattern.
std::string formatPattern(double value, std::string_view pattern);

// Fixed-point text with a given number of decimals, rounded half to even on the shortest
// decimal digits; no zero is dropped and a result of zero carries no minus sign.
std::string formatFixedHalfEven(double value, int decimals, bool grouping);

// The general form without blanks: "12.5", ".005", "-3", "1E+16". For text fields.
std::string generalText(double value);
std::string generalTextSingle(float value);

// The printed form of a number: a leading blank (or the minus sign) and a trailing blank,
// as in " 12.5 " and "-.005 ".
std::string printNumber(double value);
std::string printNumberSingle(float value);
std::string printInteger(long long value);

inline constexpr int PrintZoneWidth = 14;

// Pads a line that has reached `column` (0-based) to the start of the next print zone:
// the line is filled with blanks to the next multiple of 14, and a line that stands
// exactly on a zone boundary is left as it is.
inline void padToNextZone(std::string& line, size_t lineStart) {
    const size_t remainder = (line.size() - lineStart) % PrintZoneWidth;
    if (remainder != 0) {
        line.append(PrintZoneWidth - remainder, ' ');
    }
}

} // namespace varo::core
