// The chart as a value: what one of the seven chart screens draws. An analysis builds a
// `ChartModel` (chart_builders.hpp) and hands it to a chart screen; the screen keeps the
// caller's copy for Reset and lets its settings screen change titles, scales, legends,
// sizes, colours and the font of the copy it shows. The desktop program and the command
// line draw the same model with the same renderer, so a picture saved from a screen and
// one exported by `--plot` look alike.
//
// A value that is missing in the data is NaN in a series and is left out of the drawing.
#pragma once

#include "core/program_state.hpp"

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::charts {

// The seven chart screens, each with its settings screen.
enum class ChartScreen {
    Result,     // Chart1Frm / Chart1SettingsFrm: compare results, bars or lines
    Scatter,    // ScatterChartFrm / ScatterChartSettings
    Line,       // LineChartFrm / LineSettingsFrm
    Pdf,        // PDFChartFrm / PDFSettingsFrm
    Histogram,  // HistogramFrm / HistogramSettings
    TimeSeries, // TimeSeriesChartFrm / TimeSeriesSettingsFrm
    Frequency,  // FAChartFrm / FAChartSettings
};

// How the series are drawn.
enum class ChartKind {
    Bars,       // one bar a category and series
    Lines,      // lines over the categories
    Points,     // x-y points
    Frequency,  // dots joined by lines over return period, band edges dashed
    TimeSeries, // lines over the periods, up to five series
};

enum class TimeSeriesKind { Raw, Analysed, Percentage, Spi };

// "raw", "analysed", "percentage", "SPI".
std::string_view timeSeriesKindWord(TimeSeriesKind kind);
std::optional<TimeSeriesKind> timeSeriesKindFromWord(std::string_view word);

// The form name of a chart screen ("Chart1Frm") and of its settings screen.
std::string_view screenName(ChartScreen screen);
std::string_view settingsScreenName(ChartScreen screen);

inline constexpr double NoValue = std::numeric_limits<double>::quiet_NaN();
inline bool hasValue(double value) {
    return !std::isnan(value);
}

struct Series {
    std::string name; // the legend's text
    core::Rgb colour;
    std::vector<double> x; // empty on category charts: point i stands on category i
    std::vector<double> y; // NoValue where the data are missing
    int penWidth = 20;     // twips (a fifteenth of a pixel at 96 dots per inch)
    bool band = false;     // an edge of the frequency chart's band
};

struct AxisScale {
    double minimum = 0.0;
    double maximum = 1.0;
    int divisions = 5; // major divisions between minimum and maximum
    friend bool operator==(const AxisScale&, const AxisScale&) = default;
};

struct Axis {
    std::string title;
    AxisScale scale;    // not used on a category axis
    bool ticks = true;  // grid lines and tick marks
    bool labels = true; // the values or categories along the axis
};

struct ChartFont {
    std::string family = "Arial";
    double pointSize = 9.0;
    bool bold = false;
    bool italic = false;
    friend bool operator==(const ChartFont&, const ChartFont&) = default;
};

struct ChartModel {
    ChartScreen screen = ChartScreen::Result;
    ChartKind kind = ChartKind::Bars;
    TimeSeriesKind timeSeriesKind = TimeSeriesKind::Analysed;
    std::string title;
    std::string caption; // the chart screen's window caption; the title when empty
    Axis xAxis;
    Axis yAxis;
    std::vector<std::string> categories; // labels of a category axis, one a point
    int xLabelGap = 1;                   // line family: every n-th category labelled, 0 none
    std::vector<Series> series;
    bool legendVisible = true;
    ChartFont font;
    int dotSize = 100; // frequency chart: dot diameter in twips
    int lineSize = 20; // frequency chart: line width in twips

    // True when the series stand on the categories rather than on x values.
    bool onCategories() const {
        return kind == ChartKind::Bars || kind == ChartKind::Lines || kind == ChartKind::TimeSeries;
    }
};

// Which settings screen fields a chart screen offers.
struct SettingsFields {
    bool minMaxY = false;         // MinYText, MaxYText, TickText
    bool xLabelGap = false;       // XLabelGapText and ClearXButton
    bool penWidths = false;       // WidthText1 to WidthText5
    bool yMinMaxDivision = false; // YMinText, YMaxText, YAxisDivision
    bool dotAndLineSize = false;  // DotSizeText, LineSizeText
    bool legendToggle = false;    // LegendButton instead of ClearLegendButton/ShowLegendButton
    bool legends = true;          // Legend1Text and on
};
SettingsFields settingsFieldsOf(ChartScreen screen);

// A chart screen with the title and axis words it opens with when the caller gives none.
ChartModel defaultChart(ChartScreen screen);

// The colour of series `index` (from 0) on a chart screen: the screen's table of
// `SeriesColours` for the first three, the scatter colour for the scatter chart, and a
// fixed palette past the third. On the frequency chart the band edges take colour 3 and
// the other series count without them.
core::Rgb seriesColour(const core::ProgramState& state, ChartScreen screen, int index);
// Where the colour of series `index` is kept in the program state, or null when it is one
// of the fixed palette.
core::Rgb* seriesColourSlot(core::ProgramState& state, ChartScreen screen, int index);
// Gives every series its colour from the program state.
void applySeriesColours(ChartModel& chart, const core::ProgramState& state);
// The place of a series among those that share colours (band edges share one).
int colourIndexOf(const ChartModel& chart, size_t seriesIndex);

// The values with the missing-value code (and anything not finite) as NoValue.
std::vector<double> withoutMissing(const std::vector<double>& values, double missingCode);

} // namespace varo::charts
