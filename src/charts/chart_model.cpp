#include "charts/chart_model.hpp"

#include <array>

namespace varo::charts {

namespace {

// Colours of series past the third, which the program state does not keep.
constexpr std::array<core::Rgb, 8> ExtraColours = {{
    {255, 128, 0},
    {128, 0, 128},
    {0, 128, 128},
    {128, 128, 0},
    {255, 0, 255},
    {0, 0, 128},
    {128, 64, 0},
    {96, 96, 96},
}};

// The state's colour table of a chart screen (const or not), null for the scatter chart.
template <typename State>
auto* colourTable(State& state, ChartScreen screen) {
    using Table = decltype(&state.barColours);
    switch (screen) {
    case ChartScreen::Result:
    case ChartScreen::Histogram:
    case ChartScreen::TimeSeries:
        return &state.barColours;
    case ChartScreen::Line:
    case ChartScreen::Pdf:
        return &state.lineColours;
    case ChartScreen::Frequency:
        return &state.frequencyColours;
    case ChartScreen::Scatter:
        break;
    }
    return Table{nullptr};
}

} // namespace

std::string_view timeSeriesKindWord(TimeSeriesKind kind) {
    switch (kind) {
    case TimeSeriesKind::Raw:
        return "raw";
    case TimeSeriesKind::Analysed:
        return "analysed";
    case TimeSeriesKind::Percentage:
        return "percentage";
    case TimeSeriesKind::Spi:
        return "SPI";
    }
    return "analysed";
}

std::optional<TimeSeriesKind> timeSeriesKindFromWord(std::string_view word) {
    for (const TimeSeriesKind kind : {TimeSeriesKind::Raw, TimeSeriesKind::Analysed,
                                      TimeSeriesKind::Percentage, TimeSeriesKind::Spi}) {
        if (timeSeriesKindWord(kind) == word) {
            return kind;
        }
    }
    return std::nullopt;
}

std::string_view screenName(ChartScreen screen) {
    switch (screen) {
    case ChartScreen::Result:
        return "Chart1Frm";
    case ChartScreen::Scatter:
        return "ScatterChartFrm";
    case ChartScreen::Line:
        return "LineChartFrm";
    case ChartScreen::Pdf:
        return "PDFChartFrm";
    case ChartScreen::Histogram:
        return "HistogramFrm";
    case ChartScreen::TimeSeries:
        return "TimeSeriesChartFrm";
    case ChartScreen::Frequency:
        return "FAChartFrm";
    }
    return "Chart1Frm";
}

std::string_view settingsScreenName(ChartScreen screen) {
    switch (screen) {
    case ChartScreen::Result:
        return "Chart1SettingsFrm";
    case ChartScreen::Scatter:
        return "ScatterChartSettings";
    case ChartScreen::Line:
        return "LineSettingsFrm";
    case ChartScreen::Pdf:
        return "PDFSettingsFrm";
    case ChartScreen::Histogram:
        return "HistogramSettings";
    case ChartScreen::TimeSeries:
        return "TimeSeriesSettingsFrm";
    case ChartScreen::Frequency:
        return "FAChartSettings";
    }
    return "Chart1SettingsFrm";
}

SettingsFields settingsFieldsOf(ChartScreen screen) {
    SettingsFields fields;
    switch (screen) {
    case ChartScreen::Result:
    case ChartScreen::Histogram:
        fields.minMaxY = true;
        break;
    case ChartScreen::Line:
    case ChartScreen::Pdf:
        fields.minMaxY = true;
        fields.xLabelGap = true;
        break;
    case ChartScreen::TimeSeries:
        fields.minMaxY = true;
        fields.xLabelGap = true;
        fields.penWidths = true;
        break;
    case ChartScreen::Scatter:
        fields.yMinMaxDivision = true;
        fields.legends = false;
        break;
    case ChartScreen::Frequency:
        fields.yMinMaxDivision = true;
        fields.dotAndLineSize = true;
        fields.legendToggle = true;
        break;
    }
    return fields;
}

ChartModel defaultChart(ChartScreen screen) {
    ChartModel chart;
    chart.screen = screen;
    switch (screen) {
    case ChartScreen::Result:
        chart.kind = ChartKind::Bars;
        chart.title = "VARO Bar Chart";
        chart.yAxis.title = "Y axis label";
        break;
    case ChartScreen::Scatter:
        chart.kind = ChartKind::Points;
        chart.legendVisible = false;
        break;
    case ChartScreen::Line:
        chart.kind = ChartKind::Lines;
        chart.title = "VARO Line Chart";
        chart.xAxis.title = "x axis label";
        break;
    case ChartScreen::Pdf:
        chart.kind = ChartKind::Lines;
        chart.title = "VARO PDF Chart";
        chart.yAxis.title = "Density";
        break;
    case ChartScreen::Histogram:
        chart.kind = ChartKind::Bars;
        chart.title = "VARO Residual Histogram";
        chart.yAxis.title = "Frequency";
        chart.xAxis.title = "Residual";
        chart.legendVisible = false;
        break;
    case ChartScreen::TimeSeries:
        chart.kind = ChartKind::TimeSeries;
        chart.title = "VARO Time Series Chart";
        chart.yAxis.title = "Data points";
        chart.xAxis.title = "Year";
        break;
    case ChartScreen::Frequency:
        chart.kind = ChartKind::Frequency;
        chart.xAxis.title = "Return period (years)";
        chart.yAxis.title = "Value";
        break;
    }
    return chart;
}

core::Rgb seriesColour(const core::ProgramState& state, ChartScreen screen, int index) {
    if (screen == ChartScreen::Scatter) {
        return state.scatterColour;
    }
    const auto* table = colourTable(state, screen);
    if (index < 3 && table != nullptr) {
        return (*table)[static_cast<size_t>(index)];
    }
    return ExtraColours[static_cast<size_t>(index - 3) % ExtraColours.size()];
}

core::Rgb* seriesColourSlot(core::ProgramState& state, ChartScreen screen, int index) {
    if (screen == ChartScreen::Scatter) {
        return &state.scatterColour;
    }
    auto* table = colourTable(state, screen);
    return index < 3 && table != nullptr ? &(*table)[static_cast<size_t>(index)] : nullptr;
}

int colourIndexOf(const ChartModel& chart, size_t seriesIndex) {
    if (chart.screen != ChartScreen::Frequency) {
        return static_cast<int>(seriesIndex);
    }
    if (chart.series[seriesIndex].band) {
        return 2;
    }
    int index = 0;
    for (size_t i = 0; i < seriesIndex; ++i) {
        index += chart.series[i].band ? 0 : 1;
    }
    return index;
}

void applySeriesColours(ChartModel& chart, const core::ProgramState& state) {
    for (size_t i = 0; i < chart.series.size(); ++i) {
        chart.series[i].colour = seriesColour(state, chart.screen, colourIndexOf(chart, i));
    }
}

std::vector<double> withoutMissing(const std::vector<double>& values, double missingCode) {
    std::vector<double> kept;
    kept.reserve(values.size());
    for (const double value : values) {
        kept.push_back(value == missingCode || !std::isfinite(value) ? NoValue : value);
    }
    return kept;
}

} // namespace varo::charts
