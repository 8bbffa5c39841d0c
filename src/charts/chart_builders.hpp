// The charts the analyses hand to the chart screens, built from plain arrays: titles and
// axis words of each screen, series names, colours from the program state, scales from
// the data, and the legend rule. Missing values are NoValue (see `withoutMissing`).
#pragma once

#include "charts/chart_model.hpp"
#include "core/program_state.hpp"

#include <optional>
#include <string>
#include <vector>

namespace varo::charts {

// A series over the categories of a chart.
struct CategorySeries {
    std::string name;
    std::vector<double> values; // one a category
};

// The most series a line or PDF chart draws a legend for.
inline constexpr size_t LegendLimit = 10;

// The warning a line or PDF chart shows when it has too many series for a legend
// (title "Warning Message"); nothing for other charts or fewer series.
std::optional<std::string> legendWarning(const ChartModel& chart);
inline constexpr const char* LegendWarningTitle = "Warning Message";

// A label gap that shows about a dozen labels along a category axis.
int defaultLabelGap(size_t categories);

// The result chart of compare results: bars or lines over the 17 calendar rows, titled
// "VARO Bar Chart" or "VARO Line Chart", the vertical scale by its own rule.
ChartModel resultChart(bool bars, std::vector<std::string> categories,
                       std::vector<CategorySeries> series, const core::ProgramState& state);

// A scatter of points (x, y) with the caller's title and axis titles; the title is also the
// window's caption. Pairs with a missing value are left out of the drawing.
ChartModel scatterChart(std::string title, std::string xTitle, std::string yTitle,
                        std::vector<double> x, std::vector<double> y,
                        const core::ProgramState& state);

// The residual scatter of a calibration: fitted values across, residuals up.
ChartModel residualScatterChart(std::vector<double> fitted, std::vector<double> residuals,
                                const core::ProgramState& state);

// The residual histogram: one bar a label with its count.
ChartModel histogramChart(std::vector<std::string> labels, std::vector<double> counts,
                          const core::ProgramState& state);

// The line plot of daily values: one series a file or member, days as categories.
ChartModel lineChart(std::vector<std::string> dayLabels, std::vector<CategorySeries> series,
                     const core::ProgramState& state);

// The PDF plot: counts by category, one series a file or member.
ChartModel pdfChart(std::vector<std::string> categoryLabels, std::vector<CategorySeries> series,
                    const core::ProgramState& state);

// The time-series chart: up to five series over periods labelled by year (or month and
// year); throws std::invalid_argument for more than five.
inline constexpr size_t MaxTimeSeries = 5;
ChartModel timeSeriesChart(TimeSeriesKind kind, std::string title, std::string yTitle,
                           std::vector<std::string> periodLabels,
                           std::vector<CategorySeries> series, const core::ProgramState& state);

// One side of a frequency chart: values by return period.
struct FrequencySeries {
    std::string name;
    std::vector<double> returnPeriods;
    std::vector<double> values;
};

// The frequency analysis chart: the observed and modelled sides as dots joined by lines,
// and the band's upper and lower edges when there is a band. Dot size, line width and the
// legend start from the program state's frequency chart defaults.
ChartModel frequencyChart(std::string title, std::vector<FrequencySeries> sides,
                          std::optional<std::pair<FrequencySeries, FrequencySeries>> band,
                          const core::ProgramState& state);

} // namespace varo::charts
