#include "core/numeric_text.hpp"

#include "core/number_format.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace varo::core {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Length of the numeric prefix of text (no leading blanks), 0 when none.
size_t numericPrefixLength(std::string_view text) {
    size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        ++i;
    }
    size_t digits = 0;
    while (i < text.size() && isDigit(text[i])) {
        ++i;
        ++digits;
    }
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && isDigit(text[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0) {
        return 0;
    }
    size_t end = i;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        size_t j = i + 1;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            ++j;
        }
        size_t expDigits = 0;
        while (j < text.size() && isDigit(text[j])) {
            ++j;
            ++expDigits;
        }
        if (expDigits > 0) {
            end = j;
        }
    }
    return end;
}

// True when the number, digits with at most one point and an optional exponent, lies above
// the range of doubles rather than below it: its first significant digit stands at a
// positive power of ten. Only asked of numbers that `std::from_chars` found out of range.
bool beyondLargest(std::string_view number) {
    long long exponent = 0;
    const size_t mark = number.find_first_of("eE");
    if (mark != std::string_view::npos) {
        std::string_view digits = number.substr(mark + 1);
        const bool negative = !digits.empty() && digits.front() == '-';
        if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) {
            digits.remove_prefix(1);
        }
        for (const char c : digits) {
            exponent = std::min(exponent * 10 + (c - '0'), 1'000'000'000'000LL);
        }
        exponent = negative ? -exponent : exponent;
        number = number.substr(0, mark);
    }
    const size_t point = std::min(number.find('.'), number.size());
    const size_t first = number.find_first_not_of("0.");
    if (first == std::string_view::npos) {
        return false;
    }
    const long long position = first < point ? static_cast<long long>(point - first) - 1
                                             : -static_cast<long long>(first - point);
    return position + exponent > 0;
}

std::string_view skipBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

} // namespace

std::string_view trimBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

DecimalParse parseDecimal(std::string_view text, double& value) {
    const size_t length = numericPrefixLength(text);
    if (length == 0 || length != text.size()) {
        return DecimalParse::NotNumber;
    }
    const bool negative = text.front() == '-';
    if (text.front() == '+' || negative) {
        text.remove_prefix(1);
    }
    double magnitude = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), magnitude,
                                        std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) {
        if (beyondLargest(text)) {
            return DecimalParse::OutOfRange;
        }
        magnitude = 0.0;
    } else if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return DecimalParse::NotNumber;
    }
    value = negative ? -magnitude : magnitude;
    return DecimalParse::Number;
}

bool isNumeric(std::string_view text) {
    double value = 0.0;
    return parseDecimal(trimBlanks(text), value) == DecimalParse::Number;
}

double leadingNumber(std::string_view text) {
    text = skipBlanks(text);
    const size_t length = numericPrefixLength(text);
    if (length == 0) {
        return 0.0;
    }
    std::string_view number = text.substr(0, length);
    if (number.front() == '+') {
        number.remove_prefix(1);
    }
    double value = 0.0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        return number.front() == '-' ? -HUGE_VAL : HUGE_VAL;
    }
    return value;
}

long long roundHalfEven(double value) {
    // Beyond the range of long long the cast would be undefined; such values only ever meet
    // range checks, which the largest integers fail as surely.
    constexpr double Limit = 9.2e18;
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= Limit || value <= -Limit) {
        return value > 0 ? std::numeric_limits<long long>::max()
                         : std::numeric_limits<long long>::min();
    }
    return static_cast<long long>(std::nearbyint(value));
}

double roundToDecimals(double value, int decimals) {
    if (!std::isfinite(value)) {
        return value;
    }
    const std::string text = formatFixedHalfEven(value, decimals, false);
    double rounded = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), rounded);
    return rounded;
}

int roundedInteger(std::string_view text) {
    constexpr long long low = std::numeric_limits<int>::min();
    constexpr long long high = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(roundHalfEven(leadingNumber(text)), low, high));
}

std::optional<double> numberIn(std::string_view text, double low, double high, RangeEnds ends) {
    if (!isNumeric(text)) {
        return std::nullopt;
    }
    const double value = leadingNumber(text);
    const bool inside =
        ends == RangeEnds::Included ? value >= low && value <= high : value > low && value < high;
    return inside ? std::optional<double>(value) : std::nullopt;
}

std::optional<std::string> rangeRefusal(std::string_view text, double low, double high,
                                        std::string_view notNumber, std::string_view outside,
                                        RangeEnds ends) {
    if (!isNumeric(text)) {
        return std::string(notNumber);
    }
    if (!numberIn(text, low, high, ends)) {
        return std::string(outside);
    }
    return std::nullopt;
}

} // namespace varo::core
