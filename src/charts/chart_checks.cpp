#include "charts/chart_checks.hpp"

#include "core/numeric_text.hpp"

#include <cmath>

namespace varo::charts {

namespace {

std::string boundText(int bound) {
    return std::to_string(bound);
}

CheckMessage checkValue(const std::string& text, const char* message) {
    if (!core::isNumeric(text)) {
        return message;
    }
    return std::nullopt;
}

} // namespace

CheckMessage checkMinY(const std::string& text, double maximum) {
    if (!core::isNumeric(text)) {
        return "Minimum Y axis value for these data must be a value.";
    }
    if (!(core::leadingNumber(text) < maximum)) {
        return "Minimum Y axis value must be less than maximum value.";
    }
    return std::nullopt;
}

CheckMessage checkMaxY(const std::string& text, double minimum) {
    if (!core::isNumeric(text)) {
        return "Maximum Y axis value for these data must be a value.";
    }
    if (!(core::leadingNumber(text) > minimum)) {
        return "Maximum Y axis value must be greater than minimum value.";
    }
    return std::nullopt;
}

CheckMessage checkTicks(const std::string& text) {
    const std::string message = "Ticks must be a value between " + boundText(MinTicks) + " and " +
                                boundText(MaxTicks) + ".";
    return core::rangeRefusal(text, MinTicks, MaxTicks, message, message);
}

CheckMessage checkXLabelGap(const std::string& text, int upperBound) {
    const double value = core::leadingNumber(text);
    if (!core::isNumeric(text) || value != std::trunc(value)) {
        return "Gap between x-axis labels must be an integer.";
    }
    if (value < 0 || value > upperBound) {
        return "Gap between x-axis labels must be between 0 and " + boundText(upperBound) + ".";
    }
    return std::nullopt;
}

CheckMessage checkPenWidth(const std::string& text) {
    return core::rangeRefusal(text, MinPenWidth, MaxPenWidth, "Pen width must be a value.",
                              "Pen width must be a value between 1 and 100.");
}

CheckMessage checkDotSize(const std::string& text) {
    return core::rangeRefusal(text, MinDotSize, MaxDotSize, "Dot size must be a value.",
                              "Dot size must be a value between 50 and 250.");
}

CheckMessage checkLineSize(const std::string& text) {
    return core::rangeRefusal(text, MinLineSize, MaxLineSize, "Line width must be a value.",
                              "Line width must be a value between 10 and 200.");
}

CheckMessage checkYAxisDivision(const std::string& text) {
    return core::rangeRefusal(text, MinTicks, MaxTicks, "Y axis division must be a value.",
                              "Y axis division must be between " + boundText(MinTicks) + " and " +
                                  boundText(MaxTicks) + ".");
}

CheckMessage checkYMin(const std::string& text) {
    return checkValue(text, "Y axis minimum must be a value.");
}

CheckMessage checkYMax(const std::string& text) {
    return checkValue(text, "Y axis maximum must be a value.");
}

CheckMessage checkYMinBelowYMax(double minimum, double maximum) {
    if (!(minimum < maximum)) {
        return "Y axis minimum must be less than Y axis maximum.";
    }
    return std::nullopt;
}

} // namespace varo::charts
