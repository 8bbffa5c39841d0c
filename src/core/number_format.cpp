#include "core/number_format.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace varo::core {

namespace {

// A finite value as decimal digits: value = 0.d1d2...dn * 10^pointPos, sign apart.
struct DecimalDigits {
    bool negative = false;
    std::string digits; // no leading zeros; "0" is represented by empty digits
    int pointPos = 0;   // digits before the decimal point
};

// Scientific text of a value as mantissa digits (point dropped) and decimal exponent.
void splitScientific(std::string_view text, std::string& digits, int& exponent) {
    const size_t ePos = text.find('e');
    digits.clear();
    for (char c : text.substr(0, ePos)) {
        if (c != '.') {
            digits += c;
        }
    }
    exponent = std::atoi(std::string(text.substr(ePos + 1)).c_str());
}

// Shortest round-trip digits of a float or double, rounded to maxSignificant places when
// the shortest form is longer (0 keeps all of them).
template <typename Real>
DecimalDigits decimalDigits(Real value, int maxSignificant) {
    DecimalDigits result;
    result.negative = std::signbit(value);
    value = std::fabs(value);
    if (value == 0) {
        return result;
    }
    char buffer[64];
    auto conversion =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
    int exponent = 0;
    splitScientific(std::string_view(buffer, conversion.ptr - buffer), result.digits, exponent);
    if (maxSignificant > 0 && static_cast<int>(result.digits.size()) > maxSignificant) {
        conversion = std::to_chars(buffer, buffer + sizeof buffer, value,
                                   std::chars_format::scientific, maxSignificant - 1);
        splitScientific(std::string_view(buffer, conversion.ptr - buffer), result.digits, exponent);
    }
    while (!result.digits.empty() && result.digits.back() == '0') {
        result.digits.pop_back();
    }
    result.pointPos = exponent + 1;
    return result;
}

// Rounds the digits to `decimals` places after the point, ties to even.
void roundDigits(DecimalDigits& number, int decimals) {
    const int keep = number.pointPos + decimals;
    const int count = static_cast<int>(number.digits.size());
    if (keep >= count) {
        return;
    }
    if (keep < 0) {
        number.digits.clear();
        return;
    }
    const char next = number.digits[keep];
    bool roundUp = false;
    if (next > '5') {
        roundUp = true;
    } else if (next == '5') {
        const bool restZero = number.digits.find_first_not_of('0', keep + 1) == std::string::npos;
        const bool previousOdd = keep > 0 && ((number.digits[keep - 1] - '0') % 2 == 1);
        roundUp = !restZero || previousOdd;
    }
    number.digits.resize(keep);
    if (roundUp) {
        int i = keep - 1;
        while (i >= 0 && number.digits[i] == '9') {
            number.digits[i] = '0';
            --i;
        }
        if (i >= 0) {
            ++number.digits[i];
        } else {
            number.digits.insert(number.digits.begin(), '1');
            ++number.pointPos;
        }
    }
    while (!number.digits.empty() && number.digits.back() == '0') {
        number.digits.pop_back();
    }
}

// The digit at place `position` counted from the first digit (0-based), '0' outside.
char digitAt(const DecimalDigits& number, int position) {
    if (position < 0 || position >= static_cast<int>(number.digits.size())) {
        return '0';
    }
    return number.digits[position];
}

void appendFixed(std::string& out, const DecimalDigits& number, int minIntegerDigits, int decimals,
                 bool grouping) {
    if (number.negative && !number.digits.empty()) {
        out += '-';
    }
    std::string integer;
    for (int i = 0; i < number.pointPos; ++i) {
        integer += digitAt(number, i);
    }
    while (static_cast<int>(integer.size()) < minIntegerDigits) {
        integer.insert(integer.begin(), '0');
    }
    if (grouping && integer.size() > 3) {
        std::string grouped;
        for (size_t i = 0; i < integer.size(); ++i) {
            if (i > 0 && (integer.size() - i) % 3 == 0) {
                grouped += ',';
            }
            grouped += integer[i];
        }
        integer = grouped;
    }
    out += integer;
    if (decimals > 0) {
        out += '.';
        for (int i = 0; i < decimals; ++i) {
            out += digitAt(number, number.pointPos + i);
        }
    }
}

void appendExponent(std::string& out, int exponent) {
    out += 'E';
    out += exponent < 0 ? '-' : '+';
    const int magnitude = std::abs(exponent);
    if (magnitude < 10) {
        out += '0';
    }
    out += std::to_string(magnitude);
}

// The general form of a number's digits.
std::string generalFromDigits(const DecimalDigits& number) {
    if (number.digits.empty()) {
        return "0";
    }
    std::string out;
    if (number.negative) {
        out += '-';
    }
    const int exponent = number.pointPos - 1;
    if (exponent < -4 || exponent >= 15) {
        out += number.digits[0];
        if (number.digits.size() > 1) {
            out += '.';
            out.append(number.digits, 1);
        }
        appendExponent(out, exponent);
        return out;
    }
    const int count = static_cast<int>(number.digits.size());
    if (number.pointPos <= 0) {
        out += '.';
        out.append(static_cast<size_t>(-number.pointPos), '0');
        out += number.digits;
    } else if (number.pointPos >= count) {
        out += number.digits;
        out.append(static_cast<size_t>(number.pointPos - count), '0');
    } else {
        out.append(number.digits, 0, number.pointPos);
        out += '.';
        out.append(number.digits, number.pointPos);
    }
    return out;
}

std::string printedForm(const std::string& general) {
    if (!general.empty() && general.front() == '-') {
        return general + " ";
    }
    return " " + general + " ";
}

// The fixed-point form without grouping, as appendFixed(roundDigits(decimalDigits(value)))
// gives it, but without building strings on the way: the OUT and PAR writers format
// millions of numbers.
// Values of moderate size that lie clearly away from a rounding tie round the same on
// their shortest digits as on their exact binary value: the shortest digits differ from
// the value by at most half a unit in its last place, far less than the margin kept here.
// Such values are scaled and rounded as integers; the rest take the digit path below.
bool appendFixedScaled(std::string& out, double magnitude, bool negative, int minIntegerDigits,
                       int decimals) {
    static constexpr double Powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
    if (decimals > 6 || !(magnitude < 1e9)) {
        return false;
    }
    const double scaled = magnitude * Powers[decimals];
    const double lower = std::floor(scaled);
    const double fraction = scaled - lower;
    if (std::fabs(fraction - 0.5) <= scaled * 4e-15) {
        return false;
    }
    auto units = static_cast<std::uint64_t>(lower) + (fraction > 0.5 ? 1 : 0);
    char text[32];
    char* p = text + sizeof text;
    for (int i = 0; i < decimals; ++i) {
        *--p = static_cast<char>('0' + units % 10);
        units /= 10;
    }
    if (decimals > 0) {
        *--p = '.';
    }
    int integerDigits = 0;
    for (; units > 0 || integerDigits < minIntegerDigits; ++integerDigits) {
        *--p = static_cast<char>('0' + units % 10);
        units /= 10;
    }
    if (negative && (lower > 0 || fraction > 0.5)) {
        *--p = '-';
    }
    out.append(p, static_cast<size_t>(text + sizeof text - p));
    return true;
}

void appendFixedUngrouped(std::string& out, double value, int minIntegerDigits, int decimals) {
    const bool negative = std::signbit(value);
    value = std::fabs(value);
    if (appendFixedScaled(out, value, negative, minIntegerDigits, decimals)) {
        return;
    }
    // digits[0] stays free for a carry out of the first digit.
    char digits[40];
    int first = 1;
    int count = 0;
    int pointPos = 0;
    if (value != 0) {
        char text[40];
        const char* end =
            std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
        const char* p = text;
        digits[first + count++] = *p++;
        if (*p == '.') {
            for (++p; *p != 'e'; ++p) {
                digits[first + count++] = *p;
            }
        }
        ++p; // 'e'
        const bool negativeExponent = *p == '-';
        int exponent = 0;
        for (++p; p < end; ++p) {
            exponent = exponent * 10 + (*p - '0');
        }
        pointPos = (negativeExponent ? -exponent : exponent) + 1;
        while (count > 0 && digits[first + count - 1] == '0') {
            --count;
        }
    }
    const int keep = pointPos + decimals;
    if (keep < count) {
        if (keep < 0) {
            count = 0;
        } else {
            const char next = digits[first + keep];
            const bool previousOdd = keep > 0 && (digits[first + keep - 1] - '0') % 2 == 1;
            const bool roundUp = next > '5' || (next == '5' && (keep + 1 < count || previousOdd));
            count = keep;
            if (roundUp) {
                int i = count - 1;
                while (i >= 0 && digits[first + i] == '9') {
                    digits[first + i] = '0';
                    --i;
                }
                if (i >= 0) {
                    ++digits[first + i];
                } else {
                    --first;
                    digits[first] = '1';
                    ++count;
                    ++pointPos;
                }
            }
            while (count > 0 && digits[first + count - 1] == '0') {
                --count;
            }
        }
    }
    const auto digitAt = [&](int position) {
        return position >= 0 && position < count ? digits[first + position] : '0';
    };
    if (negative && count > 0) {
        out += '-';
    }
    const int integerDigits = pointPos > 0 ? pointPos : 0;
    if (integerDigits < minIntegerDigits) {
        out.append(static_cast<size_t>(minIntegerDigits - integerDigits), '0');
    }
    for (int i = 0; i < integerDigits; ++i) {
        out += digitAt(i);
    }
    if (decimals > 0) {
        out += '.';
        for (int i = 0; i < decimals; ++i) {
            out += digitAt(pointPos + i);
        }
    }
}

} // namespace

NumberFormat::NumberFormat(std::string_view pattern) {
    size_t i = 0;
    while (i < pattern.size() && pattern[i] != '#' && pattern[i] != '0' && pattern[i] != '.') {
        prefix_ += pattern[i];
        ++i;
    }
    while (i < pattern.size() && (pattern[i] == '#' || pattern[i] == '0')) {
        if (pattern[i] == '0') {
            ++minIntegerDigits_;
        }
        ++i;
    }
    if (i < pattern.size() && pattern[i] == '.') {
        ++i;
        while (i < pattern.size() && (pattern[i] == '0' || pattern[i] == '#')) {
            ++decimals_;
            ++i;
        }
    }
    if (i < pattern.size() && pattern[i] == ',') {
        grouping_ = true;
    }
}

void NumberFormat::appendTo(std::string& out, double value) const {
    out += prefix_;
    if (!std::isfinite(value)) {
        out += std::isnan(value) ? "NaN" : (value < 0 ? "-Infinity" : "Infinity");
        return;
    }
    if (!grouping_) {
        appendFixedUngrouped(out, value, minIntegerDigits_, decimals_);
        return;
    }
    DecimalDigits number = decimalDigits(value, 0);
    roundDigits(number, decimals_);
    appendFixed(out, number, minIntegerDigits_, decimals_, grouping_);
}

std::string NumberFormat::format(double value) const {
    std::string out;
    appendTo(out, value);
    return out;
}

std::string formatPattern(double value, std::string_view pattern) {
    return NumberFormat(pattern).format(value);
}

std::string formatFixedHalfEven(double value, int decimals, bool grouping) {
    DecimalDigits number = decimalDigits(value, 0);
    roundDigits(number, decimals);
    std::string out;
    appendFixed(out, number, 1, decimals, grouping);
    return out;
}

std::string generalText(double value) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "NaN" : (value < 0 ? "-Infinity" : "Infinity");
    }
    return generalFromDigits(decimalDigits(value, 15));
}

std::string generalTextSingle(float value) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "NaN" : (value < 0 ? "-Infinity" : "Infinity");
    }
    return generalFromDigits(decimalDigits(value, 7));
}

std::string printNumber(double value) {
    return printedForm(generalText(value));
}

std::string printNumberSingle(float value) {
    return printedForm(generalTextSingle(value));
}

std::string printInteger(long long value) {
    return printedForm(std::to_string(value));
}

} // namespace varo::core
