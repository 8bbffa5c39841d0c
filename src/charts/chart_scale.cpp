#include "charts/chart_scale.hpp"

#include "core/numeric_text.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace varo::charts {

namespace {

// A step of 1, 2, 2.5, 4 or 5 times a power of ten, within a relative tolerance.
bool isRoundStep(double step) {
    if (!(step > 0.0) || !std::isfinite(step)) {
        return false;
    }
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    const double mantissa = step / power;
    for (const double round : {1.0, 2.0, 2.5, 4.0, 5.0, 10.0}) {
        if (std::abs(mantissa - round) < 1e-9 * round) {
            return true;
        }
    }
    return false;
}

double roundStepAbove(double rawStep) {
    const double power = std::pow(10.0, std::floor(std::log10(rawStep)));
    for (const double round : {1.0, 2.0, 2.5, 5.0}) {
        if (round * power >= rawStep * (1.0 - 1e-12)) {
            return round * power;
        }
    }
    return 10.0 * power;
}

template <typename Pick>
std::optional<ValueRange> rangeOf(const std::vector<Series>& series, Pick pick) {
    std::optional<ValueRange> range;
    for (const Series& one : series) {
        for (const double value : pick(one)) {
            if (!hasValue(value)) {
                continue;
            }
            if (!range) {
                range = ValueRange{value, value};
            } else {
                range->minimum = std::min(range->minimum, value);
                range->maximum = std::max(range->maximum, value);
            }
        }
    }
    return range;
}

AxisScale roundScaleOf(const std::optional<ValueRange>& range) {
    return range ? roundScale(range->minimum, range->maximum) : AxisScale{};
}

AxisScale fromZero(const std::optional<ValueRange>& range) {
    const double top = range ? std::max(range->maximum, 0.0) : 1.0;
    const double bottom = range ? std::min(range->minimum, 0.0) : 0.0;
    return roundScale(bottom, top);
}

// The standardised index lives around 0: a band symmetric about it, at least -3 to 3.
AxisScale spiScale(const std::optional<ValueRange>& range) {
    double extent = 3.0;
    if (range) {
        extent = std::max(
            {extent, std::ceil(std::abs(range->minimum)), std::ceil(std::abs(range->maximum))});
    }
    return AxisScale{-extent, extent, divisionsFor(-extent, extent)};
}

} // namespace

AxisScale resultChartScale(const std::vector<Series>& series) {
    const auto range = yRange(series);
    if (!range) {
        return AxisScale{0.0, 0.0, 5};
    }
    double top = 2.0 * range->maximum;
    if (range->maximum >= 1.0) {
        top = static_cast<double>(core::roundHalfEven(top));
    }
    top = std::max(top, 0.0);
    double bottom = std::trunc(range->minimum);
    bottom = std::min(bottom, 0.0) + 0.0; // no negative zero
    return AxisScale{bottom, top, divisionsFor(bottom, top)};
}

AxisScale roundScale(double minimum, double maximum) {
    if (!(maximum > minimum)) {
        const double widen = minimum == 0.0 ? 1.0 : std::abs(minimum) / 10.0;
        minimum -= widen;
        maximum += widen;
    }
    const double step = roundStepAbove((maximum - minimum) / 5.0);
    const double low = std::floor(minimum / step + 1e-9) * step;
    const double high = std::ceil(maximum / step - 1e-9) * step;
    const int divisions = std::max(1, static_cast<int>(std::lround((high - low) / step)));
    return AxisScale{low + 0.0, high + 0.0, divisions};
}

int divisionsFor(double minimum, double maximum) {
    const double range = maximum - minimum;
    if (!(range > 0.0)) {
        return 5;
    }
    static constexpr std::array<int, 9> Preferred = {5, 4, 6, 8, 10, 2, 3, 7, 9};
    for (const int divisions : Preferred) {
        if (isRoundStep(range / divisions)) {
            return divisions;
        }
    }
    return 5;
}

std::optional<ValueRange> yRange(const std::vector<Series>& series) {
    return rangeOf(series, [](const Series& one) -> const std::vector<double>& { return one.y; });
}

std::optional<ValueRange> xRange(const std::vector<Series>& series) {
    return rangeOf(series, [](const Series& one) -> const std::vector<double>& { return one.x; });
}

AxisScale drawnScale(const AxisScale& scale) {
    AxisScale drawn = scale;
    if (!(drawn.maximum > drawn.minimum)) {
        drawn.maximum = drawn.minimum + 1.0;
    }
    drawn.divisions = std::clamp(drawn.divisions, 1, 100);
    return drawn;
}

void scaleFromData(ChartModel& chart) {
    const auto values = yRange(chart.series);
    switch (chart.screen) {
    case ChartScreen::Result:
        chart.yAxis.scale = resultChartScale(chart.series);
        return;
    case ChartScreen::Histogram:
    case ChartScreen::Pdf:
        chart.yAxis.scale = fromZero(values);
        return;
    case ChartScreen::TimeSeries:
        chart.yAxis.scale = chart.timeSeriesKind == TimeSeriesKind::Spi ? spiScale(values)
                            : chart.timeSeriesKind == TimeSeriesKind::Percentage
                                ? fromZero(values)
                                : roundScaleOf(values);
        return;
    case ChartScreen::Line:
        chart.yAxis.scale = roundScaleOf(values);
        return;
    case ChartScreen::Scatter:
    case ChartScreen::Frequency:
        chart.yAxis.scale = roundScaleOf(values);
        chart.xAxis.scale = chart.screen == ChartScreen::Frequency
                                ? fromZero(xRange(chart.series))
                                : roundScaleOf(xRange(chart.series));
        return;
    }
}

} // namespace varo::charts
