#include "screens/chart_screens.hpp"

#include "charts/chart_builders.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"

#include <algorithm>

namespace varo::screens {

namespace {

std::string numberText(double value) {
    return core::generalText(value);
}

void showWarning(Dialogs& dialogs, const std::string& text) {
    dialogs.message(charts::LegendWarningTitle, text, Icon::Warning);
}

} // namespace

// ---------------------------------------------------------------------------------------
// The chart screen

ChartScreenRecord::ChartScreenRecord(charts::ChartModel fromCaller, core::ProgramState& state)
    : caller_(std::move(fromCaller)), state_(state) {
    charts::applySeriesColours(caller_, state_);
    shown_ = caller_;
}

std::string ChartScreenRecord::caption() const {
    return shown_.caption.empty() ? shown_.title : shown_.caption;
}

void ChartScreenRecord::open(Dialogs& dialogs) const {
    if (const auto warning = charts::legendWarning(shown_)) {
        showWarning(dialogs, *warning);
    }
}

void ChartScreenRecord::resetAll() {
    shown_ = caller_;
    charts::applySeriesColours(shown_, state_);
}

// ---------------------------------------------------------------------------------------
// The settings screen

ChartSettingsScreen::ChartSettingsScreen(ChartScreenRecord& chartScreen)
    : chartScreen_(chartScreen), fields_(charts::settingsFieldsOf(chartScreen.screen())),
      openedWith_(chartScreen.chart()) {
    showChart();
    for (TextField* field : allFields()) {
        hidden_.push_back(field->text);
    }
}

void ChartSettingsScreen::showChart() {
    const charts::ChartModel& chart = chartScreen_.chart();
    titleText.reset(chart.title);
    xTitleText.reset(chart.xAxis.title);
    yTitleText.reset(chart.yAxis.title);
    const charts::AxisScale& scale = chart.yAxis.scale;
    for (TextField* minimum : {&minYText, &yMinText}) {
        minimum->reset(numberText(scale.minimum));
    }
    for (TextField* maximum : {&maxYText, &yMaxText}) {
        maximum->reset(numberText(scale.maximum));
    }
    for (TextField* divisions : {&tickText, &yAxisDivision}) {
        divisions->reset(std::to_string(scale.divisions));
    }
    xLabelGapText.reset(std::to_string(chart.xLabelGap));
    dotSizeText.reset(std::to_string(chart.dotSize));
    lineSizeText.reset(std::to_string(chart.lineSize));
    legendText.clear();
    widthText.clear();
    const size_t legends = std::min(chart.series.size(), charts::LegendLimit);
    for (size_t i = 0; i < chart.series.size(); ++i) {
        if (fields_.legends && i < legends) {
            legendText.emplace_back(chart.series[i].name);
        }
        if (fields_.penWidths) {
            widthText.emplace_back(std::to_string(chart.series[i].penWidth));
        }
    }
}

std::vector<TextField*> ChartSettingsScreen::allFields() {
    std::vector<TextField*> all = {&titleText, &xTitleText,    &yTitleText,    &minYText,
                                   &maxYText,  &tickText,      &xLabelGapText, &yMinText,
                                   &yMaxText,  &yAxisDivision, &dotSizeText,   &lineSizeText};
    for (TextField& legend : legendText) {
        all.push_back(&legend);
    }
    for (TextField& width : widthText) {
        all.push_back(&width);
    }
    return all;
}

// The other end of the vertical scale: what its field holds when that is a number, its
// last good value otherwise.
double ChartSettingsScreen::otherBound(const TextField& field) const {
    return core::leadingNumber(core::isNumeric(field.text) ? field.text : field.lastGood);
}

bool ChartSettingsScreen::checkMinY(Dialogs& dialogs) {
    const double maximum = otherBound(maxYText);
    return minYText.check(
        dialogs, [maximum](const std::string& text) { return charts::checkMinY(text, maximum); });
}

bool ChartSettingsScreen::checkMaxY(Dialogs& dialogs) {
    const double minimum = otherBound(minYText);
    return maxYText.check(
        dialogs, [minimum](const std::string& text) { return charts::checkMaxY(text, minimum); });
}

bool ChartSettingsScreen::checkTicks(Dialogs& dialogs) {
    return tickText.check(dialogs, charts::checkTicks);
}

int ChartSettingsScreen::labelGapLimit() const {
    return std::max(1, static_cast<int>(chartScreen_.chart().categories.size()));
}

bool ChartSettingsScreen::checkXLabelGap(Dialogs& dialogs) {
    const int limit = labelGapLimit();
    return xLabelGapText.check(
        dialogs, [limit](const std::string& text) { return charts::checkXLabelGap(text, limit); });
}

bool ChartSettingsScreen::checkWidth(Dialogs& dialogs, size_t index) {
    return widthText.at(index).check(dialogs, charts::checkPenWidth);
}

bool ChartSettingsScreen::checkYMin(Dialogs& dialogs) {
    return yMinText.check(dialogs, charts::checkYMin);
}

bool ChartSettingsScreen::checkYMax(Dialogs& dialogs) {
    return yMaxText.check(dialogs, charts::checkYMax);
}

bool ChartSettingsScreen::checkYAxisDivision(Dialogs& dialogs) {
    return yAxisDivision.check(dialogs, charts::checkYAxisDivision);
}

bool ChartSettingsScreen::checkDotSize(Dialogs& dialogs) {
    return dotSizeText.check(dialogs, charts::checkDotSize);
}

bool ChartSettingsScreen::checkLineSize(Dialogs& dialogs) {
    return lineSizeText.check(dialogs, charts::checkLineSize);
}

bool ChartSettingsScreen::change(Dialogs& dialogs) {
    if (fields_.minMaxY && (!checkMinY(dialogs) || !checkMaxY(dialogs) || !checkTicks(dialogs))) {
        return false;
    }
    if (fields_.xLabelGap && !checkXLabelGap(dialogs)) {
        return false;
    }
    for (size_t i = 0; i < widthText.size(); ++i) {
        if (!checkWidth(dialogs, i)) {
            return false;
        }
    }
    if (fields_.yMinMaxDivision) {
        if (!checkYMin(dialogs) || !checkYMax(dialogs)) {
            return false;
        }
        if (const auto message = charts::checkYMinBelowYMax(core::leadingNumber(yMinText.text),
                                                            core::leadingNumber(yMaxText.text))) {
            dialogs.error(*message);
            return false;
        }
        if (!checkYAxisDivision(dialogs)) {
            return false;
        }
    }
    if (fields_.dotAndLineSize && (!checkDotSize(dialogs) || !checkLineSize(dialogs))) {
        return false;
    }

    charts::ChartModel& chart = chartScreen_.chart();
    chart.title = titleText.text;
    chart.xAxis.title = xTitleText.text;
    chart.yAxis.title = yTitleText.text;
    if (fields_.minMaxY) {
        chart.yAxis.scale = {core::leadingNumber(minYText.text), core::leadingNumber(maxYText.text),
                             core::roundedInteger(tickText.text)};
    }
    if (fields_.yMinMaxDivision) {
        chart.yAxis.scale = {core::leadingNumber(yMinText.text), core::leadingNumber(yMaxText.text),
                             core::roundedInteger(yAxisDivision.text)};
    }
    if (fields_.xLabelGap) {
        chart.xLabelGap = core::roundedInteger(xLabelGapText.text);
        chart.xAxis.labels = chart.xLabelGap > 0;
    }
    if (fields_.dotAndLineSize) {
        chart.dotSize = core::roundedInteger(dotSizeText.text);
        chart.lineSize = core::roundedInteger(lineSizeText.text);
    }
    for (size_t i = 0; i < legendText.size(); ++i) {
        chart.series[i].name = legendText[i].text;
    }
    for (size_t i = 0; i < widthText.size(); ++i) {
        chart.series[i].penWidth = core::roundedInteger(widthText[i].text);
    }
    return true;
}

void ChartSettingsScreen::clearLegend() {
    chartScreen_.chart().legendVisible = false;
}

void ChartSettingsScreen::showLegend(Dialogs& dialogs) {
    if (const auto warning = charts::legendWarning(chartScreen_.chart())) {
        showWarning(dialogs, *warning);
        return;
    }
    chartScreen_.chart().legendVisible = true;
}

void ChartSettingsScreen::toggleLegend(Dialogs& dialogs) {
    if (chartScreen_.chart().legendVisible) {
        clearLegend();
    } else {
        showLegend(dialogs);
    }
}

std::string ChartSettingsScreen::legendButtonCaption() const {
    return chartScreen_.chart().legendVisible ? "Hide Legend" : "Show Legend";
}

void ChartSettingsScreen::clearTicks() {
    chartScreen_.chart().yAxis.ticks = false;
}

bool ChartSettingsScreen::applyTicks(Dialogs& dialogs) {
    const bool ok = fields_.yMinMaxDivision ? checkYAxisDivision(dialogs) : checkTicks(dialogs);
    if (ok) {
        charts::ChartModel& chart = chartScreen_.chart();
        chart.yAxis.ticks = true;
        chart.yAxis.scale.divisions =
            core::roundedInteger(fields_.yMinMaxDivision ? yAxisDivision.text : tickText.text);
    }
    return ok;
}

void ChartSettingsScreen::clearX() {
    chartScreen_.chart().xAxis.labels = false;
    if (fields_.xLabelGap) {
        xLabelGapText.reset("0");
        chartScreen_.chart().xLabelGap = 0;
    }
}

void ChartSettingsScreen::setColour(size_t index, core::Rgb colour) {
    charts::ChartModel& chart = chartScreen_.chart();
    const int shared = charts::colourIndexOf(chart, index);
    if (core::Rgb* slot = charts::seriesColourSlot(chartScreen_.state(), chart.screen, shared)) {
        *slot = colour;
    }
    for (size_t i = 0; i < chart.series.size(); ++i) {
        if (charts::colourIndexOf(chart, i) == shared) {
            chart.series[i].colour = colour;
        }
    }
}

core::Rgb ChartSettingsScreen::colour(size_t index) const {
    return chartScreen_.chart().series.at(index).colour;
}

void ChartSettingsScreen::setFont(const charts::ChartFont& font) {
    chartScreen_.chart().font = font;
}

const std::vector<charts::Series>& ChartSettingsScreen::chartSeries() const {
    return chartScreen_.chart().series;
}

const charts::ChartFont& ChartSettingsScreen::font() const {
    return chartScreen_.chart().font;
}

void ChartSettingsScreen::reset() {
    charts::ChartModel& chart = chartScreen_.chart();
    std::vector<core::Rgb> colours;
    for (const charts::Series& series : chart.series) {
        colours.push_back(series.colour);
    }
    chart = openedWith_;
    for (size_t i = 0; i < colours.size(); ++i) {
        chart.series[i].colour = colours[i];
    }
    const std::vector<TextField*> all = allFields();
    for (size_t i = 0; i < all.size(); ++i) {
        all[i]->reset(hidden_[i]);
    }
}

} // namespace varo::screens
