// Axis scales of the charts. The result chart (compare results) has a rule of its own for
// its vertical axis; the other charts take a scale from their data, widened to round
// numbers, unless the caller gives one.
#pragma once

#include "charts/chart_model.hpp"

#include <vector>

namespace varo::charts {

// The vertical scale of the result chart, from the largest and the smallest value of all
// series (values that are NoValue left out):
//   top    = twice the largest, rounded to an integer (ties to even); when the largest is
//            below 1, twice the largest without rounding; a top below 0 becomes 0;
//   bottom = the integer part of the smallest (truncated towards 0); above 0 it is 0.
// So a smallest of -2.7 gives a bottom of -2, above the value itself. Without any value
// both are 0. The divisions are those of `divisionsFor`.
AxisScale resultChartScale(const std::vector<Series>& series);

// Bounds widened outwards to multiples of a round step (1, 2, 2.5 or 5 times a power of
// ten) that cuts them into about five divisions. Equal bounds are widened by one on each
// side (or by a tenth of their size).
AxisScale roundScale(double minimum, double maximum);

// A number of divisions from 2 to 10 whose step between `minimum` and `maximum` is 1, 2,
// 2.5, 4 or 5 times a power of ten, 5 when there is none.
int divisionsFor(double minimum, double maximum);

// The smallest and largest value of the series' y values (or x values), NoValue left out;
// nothing when there is no value.
struct ValueRange {
    double minimum;
    double maximum;
};
std::optional<ValueRange> yRange(const std::vector<Series>& series);
std::optional<ValueRange> xRange(const std::vector<Series>& series);

// The range an axis is drawn over: a maximum that is not above the minimum is moved one
// above it, so that a chart of equal values still has an axis.
AxisScale drawnScale(const AxisScale& scale);

// Gives the chart the scales of its screen from its data: the rule above for the result
// chart; counts from 0 for the histogram and the PDF chart; a band around 0 for SPI; from 0
// for percentages; round bounds of the data otherwise, on both axes of the x-y charts.
void scaleFromData(ChartModel& chart);

} // namespace varo::charts
