// The chart screens and their settings screens as records. A chart screen keeps the chart
// its caller handed over (for Reset) and the chart it shows; its settings screen edits the
// shown chart: titles, axis scales, ticks, label gap, legends, pen widths, dot and line
// sizes, colours and the font. A settings screen keeps hidden copies of its fields as they
// stood when it opened, for its own Reset. Colours changed there go into the program
// state's series colours and stay while the program runs; every other change ends with
// the chart screen.
#pragma once

#include "charts/chart_checks.hpp"
#include "charts/chart_model.hpp"
#include "core/program_state.hpp"
#include "screens/dialogs.hpp"
#include "screens/text_field.hpp"

#include <string>
#include <vector>

namespace varo::screens {

class ChartScreenRecord {
public:
    ChartScreenRecord(charts::ChartModel fromCaller, core::ProgramState& state);

    const charts::ChartModel& chart() const { return shown_; }
    charts::ChartModel& chart() { return shown_; }
    core::ProgramState& state() { return state_; }
    charts::ChartScreen screen() const { return shown_.screen; }
    // The window's caption: the caller's caption, or the chart's title.
    std::string caption() const;

    // What the screen says as it opens: a line or PDF chart with too many series for a
    // legend warns that it draws without one.
    void open(Dialogs& dialogs) const;
    // mnuReset (Reset_All): the titles, scales, legends, sizes and font the caller gave;
    // the colours stay those of the program state.
    void resetAll();

private:
    charts::ChartModel caller_;
    charts::ChartModel shown_;
    core::ProgramState& state_;
};

class ChartSettingsScreen {
public:
    explicit ChartSettingsScreen(ChartScreenRecord& chartScreen);

    const charts::SettingsFields& fields() const { return fields_; }

    TextField titleText;
    TextField xTitleText;
    TextField yTitleText;
    TextField minYText;
    TextField maxYText;
    TextField tickText;
    TextField xLabelGapText;
    TextField yMinText;
    TextField yMaxText;
    TextField yAxisDivision;
    TextField dotSizeText;
    TextField lineSizeText;
    std::vector<TextField> legendText; // Legend1Text and on, one a series up to the legend limit
    std::vector<TextField> widthText;  // WidthText1 to WidthText5 on the time-series chart

    // Field checks, run when a field loses the focus and again by Change.
    bool checkMinY(Dialogs& dialogs);
    bool checkMaxY(Dialogs& dialogs);
    bool checkTicks(Dialogs& dialogs);
    bool checkXLabelGap(Dialogs& dialogs);
    bool checkWidth(Dialogs& dialogs, size_t index);
    bool checkYMin(Dialogs& dialogs);
    bool checkYMax(Dialogs& dialogs);
    bool checkYAxisDivision(Dialogs& dialogs);
    bool checkDotSize(Dialogs& dialogs);
    bool checkLineSize(Dialogs& dialogs);
    // The upper bound of the label gap: the chart's number of categories.
    int labelGapLimit() const;

    // ChangeButton: every check in order, stopping at the first refusal; when all pass the
    // fields go to the chart and the answer is true (the settings screen closes).
    bool change(Dialogs& dialogs);

    // Buttons that act on the chart at once.
    void clearLegend();
    // A line or PDF chart with too many series keeps its legend hidden, with the warning.
    void showLegend(Dialogs& dialogs);
    // LegendButton of the frequency chart, captioned by what it will do.
    void toggleLegend(Dialogs& dialogs);
    std::string legendButtonCaption() const;
    void clearTicks();
    bool applyTicks(Dialogs& dialogs);
    void clearX();

    // The colour picker: the colour of series `index`, kept in the program state's series
    // colours while the program runs (series past those the state keeps change here only).
    void setColour(size_t index, core::Rgb colour);
    core::Rgb colour(size_t index) const;
    const std::vector<charts::Series>& chartSeries() const;
    // The font picker.
    void setFont(const charts::ChartFont& font);
    const charts::ChartFont& font() const;

    // Reset: the fields as they stood when the screen opened, and the chart as it was then
    // but for its colours.
    void reset();

private:
    void showChart();
    std::vector<TextField*> allFields();
    double otherBound(const TextField& field) const;

    ChartScreenRecord& chartScreen_;
    charts::SettingsFields fields_;
    charts::ChartModel openedWith_;
    std::vector<std::string> hidden_; // the text of each field of allFields() when opened
};

} // namespace varo::screens
