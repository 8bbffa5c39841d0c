#include "gui/charts/chart_screenshots.hpp"

#include "charts/sample_charts.hpp"
#include "gui/charts/chart_settings_dialog.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/main_window.hpp"

#include <optional>

namespace varo::gui {

namespace {

constexpr const char* SettingsSuffix = "-settings";

QString keyOf(charts::ChartScreen screen) {
    switch (screen) {
    case charts::ChartScreen::Result:
        return "chart1";
    case charts::ChartScreen::Scatter:
        return "scatterchart";
    case charts::ChartScreen::Line:
        return "linechart";
    case charts::ChartScreen::Pdf:
        return "pdfchart";
    case charts::ChartScreen::Histogram:
        return "histogram";
    case charts::ChartScreen::TimeSeries:
        return "timeserieschart";
    case charts::ChartScreen::Frequency:
        return "fachart";
    }
    return "chart1";
}

struct ChartKey {
    charts::ChartScreen screen;
    bool settings;
};

std::optional<ChartKey> parseKey(const QString& key) {
    const bool settings = key.endsWith(SettingsSuffix);
    const QString base =
        settings ? key.chopped(static_cast<qsizetype>(strlen(SettingsSuffix))) : key;
    for (const charts::ChartScreen screen : charts::allChartScreens()) {
        if (keyOf(screen) == base) {
            return ChartKey{screen, settings};
        }
    }
    return std::nullopt;
}

} // namespace

const QStringList& chartScreenKeys() {
    static const QStringList keys = [] {
        QStringList made;
        for (const charts::ChartScreen screen : charts::allChartScreens()) {
            made << keyOf(screen);
        }
        return made;
    }();
    return keys;
}

bool openSampleChartScreen(MainWindow& window, const QString& key) {
    const auto parsed = parseKey(key);
    if (!parsed) {
        return false;
    }
    ChartWindow* chart =
        openChartScreen(window.state(), window.dialogs(),
                        charts::sampleChart(parsed->screen, window.state()), &window);
    if (parsed->settings) {
        chart->openSettings();
    }
    return true;
}

QWidget* sampleChartScreen(const MainWindow& window, const QString& key) {
    const auto parsed = parseKey(key);
    if (!parsed) {
        return nullptr;
    }
    auto* chart = window.findChild<ChartWindow*>();
    if (chart == nullptr || !parsed->settings) {
        return chart;
    }
    return chart->settingsDialog();
}

} // namespace varo::gui
