// The field checks of the chart settings screens. Each answers the message the text
// failed with, or nothing when it passes; the screen shows the message in an
// "Error Message" box and puts the field's last good value back.
//
// Bounds that depend on the chart: the ticks (major divisions of the vertical axis) lie
// between 1 and 50 on every chart, since more cannot be read at any size; the gap between
// x-axis labels lies between 0 (no labels) and the number of categories of the chart.
#pragma once

#include <optional>
#include <string>

namespace varo::charts {

using CheckMessage = std::optional<std::string>;

inline constexpr int MinTicks = 1;
inline constexpr int MaxTicks = 50;
inline constexpr int MinPenWidth = 1;
inline constexpr int MaxPenWidth = 100;
inline constexpr int MinDotSize = 50;
inline constexpr int MaxDotSize = 250;
inline constexpr int MinLineSize = 10;
inline constexpr int MaxLineSize = 200;

// MinYText against the last good maximum, and MaxYText against the last good minimum.
CheckMessage checkMinY(const std::string& text, double maximum);
CheckMessage checkMaxY(const std::string& text, double minimum);
CheckMessage checkTicks(const std::string& text);
// The upper bound is the number of categories of the chart.
CheckMessage checkXLabelGap(const std::string& text, int upperBound);
CheckMessage checkPenWidth(const std::string& text);
CheckMessage checkDotSize(const std::string& text);
CheckMessage checkLineSize(const std::string& text);
// YAxisDivision is a number of divisions, as TickText is.
CheckMessage checkYAxisDivision(const std::string& text);
CheckMessage checkYMin(const std::string& text);
CheckMessage checkYMax(const std::string& text);
// YMinText and YMaxText together, when the chart takes them.
CheckMessage checkYMinBelowYMax(double minimum, double maximum);

} // namespace varo::charts
