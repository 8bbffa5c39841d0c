#include "charts/chart_builders.hpp"

#include "charts/chart_scale.hpp"

#include <stdexcept>

namespace varo::charts {

namespace {

std::vector<Series> categorySeries(std::vector<CategorySeries> series) {
    std::vector<Series> made;
    made.reserve(series.size());
    for (CategorySeries& one : series) {
        Series drawn;
        drawn.name = std::move(one.name);
        drawn.y = std::move(one.values);
        made.push_back(std::move(drawn));
    }
    return made;
}

// Colours and scales, and for the line family the legend rule.
ChartModel finished(ChartModel chart, const core::ProgramState& state) {
    applySeriesColours(chart, state);
    scaleFromData(chart);
    if (legendWarning(chart)) {
        chart.legendVisible = false;
    }
    return chart;
}

ChartModel lineFamily(ChartScreen screen, std::vector<std::string> labels,
                      std::vector<CategorySeries> series, const core::ProgramState& state) {
    ChartModel chart = defaultChart(screen);
    chart.xLabelGap = defaultLabelGap(labels.size());
    chart.categories = std::move(labels);
    chart.series = categorySeries(std::move(series));
    return finished(std::move(chart), state);
}

Series frequencySeries(FrequencySeries side, bool band) {
    Series drawn;
    drawn.name = std::move(side.name);
    drawn.x = std::move(side.returnPeriods);
    drawn.y = std::move(side.values);
    drawn.band = band;
    return drawn;
}

} // namespace

std::optional<std::string> legendWarning(const ChartModel& chart) {
    if (chart.series.size() <= LegendLimit) {
        return std::nullopt;
    }
    if (chart.screen == ChartScreen::Line) {
        return "Note - there are too many lines to display a legend on the line plot.";
    }
    if (chart.screen == ChartScreen::Pdf) {
        return "Note - there are too many lines to display a legend on the PDF plot.";
    }
    return std::nullopt;
}

int defaultLabelGap(size_t categories) {
    constexpr size_t Labels = 12;
    return static_cast<int>(std::max<size_t>(1, (categories + Labels - 1) / Labels));
}

ChartModel resultChart(bool bars, std::vector<std::string> categories,
                       std::vector<CategorySeries> series, const core::ProgramState& state) {
    ChartModel chart = defaultChart(ChartScreen::Result);
    chart.kind = bars ? ChartKind::Bars : ChartKind::Lines;
    chart.title = bars ? "VARO Bar Chart" : "VARO Line Chart";
    chart.categories = std::move(categories);
    chart.series = categorySeries(std::move(series));
    return finished(std::move(chart), state);
}

ChartModel scatterChart(std::string title, std::string xTitle, std::string yTitle,
                        std::vector<double> x, std::vector<double> y,
                        const core::ProgramState& state) {
    ChartModel chart = defaultChart(ChartScreen::Scatter);
    chart.caption = title;
    chart.title = std::move(title);
    chart.xAxis.title = std::move(xTitle);
    chart.yAxis.title = std::move(yTitle);
    Series points;
    points.name = chart.yAxis.title;
    points.x = std::move(x);
    points.y = std::move(y);
    chart.series.push_back(std::move(points));
    return finished(std::move(chart), state);
}

ChartModel residualScatterChart(std::vector<double> fitted, std::vector<double> residuals,
                                const core::ProgramState& state) {
    return scatterChart("Residual Plot", "Predicted Value (Y')", "Residual", std::move(fitted),
                        std::move(residuals), state);
}

ChartModel histogramChart(std::vector<std::string> labels, std::vector<double> counts,
                          const core::ProgramState& state) {
    ChartModel chart = defaultChart(ChartScreen::Histogram);
    chart.xLabelGap = static_cast<int>(std::max<size_t>(1, (labels.size() + 24) / 25));
    chart.categories = std::move(labels);
    Series bars;
    bars.name = "Residuals";
    bars.y = std::move(counts);
    chart.series.push_back(std::move(bars));
    return finished(std::move(chart), state);
}

ChartModel lineChart(std::vector<std::string> dayLabels, std::vector<CategorySeries> series,
                     const core::ProgramState& state) {
    return lineFamily(ChartScreen::Line, std::move(dayLabels), std::move(series), state);
}

ChartModel pdfChart(std::vector<std::string> categoryLabels, std::vector<CategorySeries> series,
                    const core::ProgramState& state) {
    return lineFamily(ChartScreen::Pdf, std::move(categoryLabels), std::move(series), state);
}

ChartModel timeSeriesChart(TimeSeriesKind kind, std::string title, std::string yTitle,
                           std::vector<std::string> periodLabels,
                           std::vector<CategorySeries> series, const core::ProgramState& state) {
    if (series.size() > MaxTimeSeries) {
        throw std::invalid_argument("A time-series chart draws at most five series.");
    }
    ChartModel chart = defaultChart(ChartScreen::TimeSeries);
    chart.timeSeriesKind = kind;
    if (!title.empty()) {
        chart.title = std::move(title);
    }
    if (!yTitle.empty()) {
        chart.yAxis.title = std::move(yTitle);
    }
    chart.xLabelGap = defaultLabelGap(periodLabels.size());
    chart.categories = std::move(periodLabels);
    chart.series = categorySeries(std::move(series));
    if (kind == TimeSeriesKind::Raw) {
        for (Series& one : chart.series) {
            one.penWidth = 15; // daily values: one pixel
        }
    }
    return finished(std::move(chart), state);
}

ChartModel frequencyChart(std::string title, std::vector<FrequencySeries> sides,
                          std::optional<std::pair<FrequencySeries, FrequencySeries>> band,
                          const core::ProgramState& state) {
    ChartModel chart = defaultChart(ChartScreen::Frequency);
    chart.title = std::move(title);
    chart.legendVisible = state.frequencyChartFlag;
    chart.dotSize = state.frequencyChartValue1;
    chart.lineSize = state.frequencyChartValue2;
    for (FrequencySeries& side : sides) {
        chart.series.push_back(frequencySeries(std::move(side), false));
    }
    if (band) {
        chart.series.push_back(frequencySeries(std::move(band->first), true));
        chart.series.push_back(frequencySeries(std::move(band->second), true));
    }
    return finished(std::move(chart), state);
}

} // namespace varo::charts
