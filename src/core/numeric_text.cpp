#include "core/numeric_text.hpp"

#include "core/number_format.hpp"

#include <charconv>
#include <cmath>
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

bool isNumeric(std::string_view text) {
    text = skipBlanks(text);
    const size_t length = numericPrefixLength(text);
    if (length == 0) {
        return false;
    }
    return skipBlanks(text.substr(length)).empty();
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

} // namespace varo::core
