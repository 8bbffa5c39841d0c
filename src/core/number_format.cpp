#include "core/number_format.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace varo::core {

namespace {

// Up to 18 decimal digits held in place, so that formatting a value allocates nothing.
class DigitString {
public:
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    char& operator[](size_t i) { return digits_[i]; }
    char operator[](size_t i) const { return digits_[i]; }
    char back() const { return digits_[size_ - 1]; }
    void pop_back() { --size_; }
    void push_back(char c) { digits_[size_++] = c; }
    void clear() { size_ = 0; }
    void resize(size_t size) { size_ = size; }
    void prependOne() {
        for (size_t i = size_; i > 0; --i) {
            digits_[i] = digits_[i - 1];
        }
        digits_[0] = '1';
        ++size_;
    }
    bool zerosFrom(size_t start) const {
        for (size_t i = start; i < size_; ++i) {
            if (digits_[i] != '0') {
                return false;
            }
        }
        return true;
    }
    std::string_view view() const { return {digits_, size_}; }

private:
    char digits_[24] = {};
    size_t size_ = 0;
};

// A finite value as decimal digits: value = 0.d1d2...dn * 10^pointPos, sign apart.
struct DecimalDigits {
    bool negative = false;
    DigitString digits; // no leading zeros; zero has no digits
    int pointPos = 0;   // digits before the decimal point
};

// Scientific text of a value as mantissa digits (point dropped) and decimal exponent.
void splitScientific(std::string_view text, DigitString& digits, int& exponent) {
    digits.clear();
    size_t i = 0;
    for (; i < text.size() && text[i] != 'e'; ++i) {
        if (text[i] != '.') {
            digits.push_back(text[i]);
        }
    }
    ++i; // past the 'e'
    const bool negative = i < text.size() && text[i] == '-';
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        ++i;
    }
    exponent = 0;
    for (; i < text.size(); ++i) {
        exponent = exponent * 10 + (text[i] - '0');
    }
    if (negative) {
        exponent = -exponent;
    }
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
    const auto at = [&number](int i) { return number.digits[static_cast<size_t>(i)]; };
    const char next = at(keep);
    bool roundUp = false;
    if (next > '5') {
        roundUp = true;
    } else if (next == '5') {
        const bool restZero = number.digits.zerosFrom(static_cast<size_t>(keep) + 1);
        const bool previousOdd = keep > 0 && ((at(keep - 1) - '0') % 2 == 1);
        roundUp = !restZero || previousOdd;
    }
    number.digits.resize(static_cast<size_t>(keep));
    if (roundUp) {
        int i = keep - 1;
        while (i >= 0 && at(i) == '9') {
            number.digits[static_cast<size_t>(i)] = '0';
            --i;
        }
        if (i >= 0) {
            ++number.digits[static_cast<size_t>(i)];
        } else {
            number.digits.prependOne();
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
    return number.digits[static_cast<size_t>(position)];
}

void appendFixed(std::string& out, const DecimalDigits& number, int minIntegerDigits, int decimals,
                 bool grouping) {
    if (number.negative && !number.digits.empty()) {
        out += '-';
    }
    // Integer places: the value's own, or the pattern's required zeros when more.
    const int places = std::max(number.pointPos, minIntegerDigits);
    for (int place = places; place > 0; --place) {
        out += digitAt(number, number.pointPos - place);
        if (grouping && place > 1 && (place - 1) % 3 == 0) {
            out += ',';
        }
    }
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
    const std::string_view digits = number.digits.view();
    if (exponent < -4 || exponent >= 15) {
        out += digits[0];
        if (digits.size() > 1) {
            out += '.';
            out += digits.substr(1);
        }
        appendExponent(out, exponent);
        return out;
    }
    const auto count = static_cast<int>(digits.size());
    if (number.pointPos <= 0) {
        out += '.';
        out.append(static_cast<size_t>(-number.pointPos), '0');
        out += digits;
    } else if (number.pointPos >= count) {
        out += digits;
        out.append(static_cast<size_t>(number.pointPos - count), '0');
    } else {
        const auto point = static_cast<size_t>(number.pointPos);
        out += digits.substr(0, point);
        out += '.';
        out += digits.substr(point);
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
// gives it, but faster: the OUT and PAR writers format millions of numbers.
// Values of moderate size that lie clearly away from a rounding tie round the same on
// their shortest digits as on their exact binary value: the shortest digits differ from
// the value by at most half a unit in its last place, far less than the margin kept here.
// Such values are scaled and rounded as integers; the rest take the general digit path.
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
    if (appendFixedScaled(out, std::fabs(value), std::signbit(value), minIntegerDigits, decimals)) {
        return;
    }
    DecimalDigits number = decimalDigits(value, 0);
    roundDigits(number, decimals);
    appendFixed(out, number, minIntegerDigits, decimals, false);
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
