#include "gui/sample_runs.hpp"

#include "core/series_file.hpp"
#include "gui/main_window.hpp"
#include "sampledata/sample_data.hpp"

#include <QAbstractButton>
#include <QApplication>
#include <QTreeWidget>
#include <functional>
#include <map>

namespace varo::gui {

namespace {

// The predictors of the sample set that the demo's precipitation model uses.
const QStringList RainPredictors = {"mslp.dat", "p__z.dat", "r850.dat", "shum.dat"};

void press(MainWindow& window, const QString& name) {
    if (auto* key = window.findChild<QAbstractButton*>(name)) {
        key->click();
    }
    QApplication::processEvents();
}

// Selects the named files in the predictor list of the screen.
void selectPredictors(MainWindow& window, const QStringList& names) {
    if (auto* tree = window.findChild<QTreeWidget*>("File2")) {
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            QTreeWidgetItem* item = tree->topLevelItem(i);
            item->setSelected(names.contains(item->text(0)));
        }
    }
}

using RunSteps = std::function<void(MainWindow&, SampleDialogs&, const sampledata::SampleFiles&)>;

struct SampleRun {
    screens::ScreenKey screen;
    RunSteps steps;
};

// The screening screen on a predictand of the sample set and predictors of its folder,
// followed by the given keys.
SampleRun screening(std::string sampledata::SampleFiles::*predictand, QStringList predictors,
                    QStringList keys) {
    return {screens::ScreenKey::Screen,
            [=](MainWindow& window, SampleDialogs& dialogs, const sampledata::SampleFiles& files) {
                dialogs.picks = {files.*predictand, files.predictorFolder};
                press(window, "PredtandButton");
                press(window, "Dir2");
                selectPredictors(window, predictors);
                for (const QString& key : keys) {
                    press(window, key);
                }
            }};
}

// The precipitation model of the demo, conditional and monthly, with the residual plot
// chosen by its option ("GraphType1" the scatter, "GraphType2" the histogram).
SampleRun rainCalibration(const QString& graphOption) {
    return {screens::ScreenKey::Calibrate, [graphOption](MainWindow& window, SampleDialogs& dialogs,
                                                         const sampledata::SampleFiles& files) {
                dialogs.picks = {files.precipitation, files.predictorFolder,
                                 core::folderOf(files.precipitation) + "/precip.PAR"};
                press(window, "PredictandButton");
                press(window, "Dir2");
                selectPredictors(window, RainPredictors);
                press(window, "PARFileButton");
                press(window, "ParmOpt0");
                press(window, graphOption);
                press(window, "tb1Calibrate");
            }};
}

const std::map<std::string, SampleRun, std::less<>>& sampleRuns() {
    using screens::ScreenKey;
    static const std::map<std::string, SampleRun, std::less<>> runs = {
        {"quality-results",
         {ScreenKey::Quality,
          [](MainWindow& window, SampleDialogs& dialogs, const sampledata::SampleFiles& files) {
              dialogs.picks = {files.precipitation};
              press(window, "SelectFileButton");
              press(window, "tb1Check");
          }}},
        {"screen-results", screening(&sampledata::SampleFiles::precipitation, RainPredictors,
                                     {"ParmOpt0", "tb1Variance"})},
        {"screen-scatter",
         screening(&sampledata::SampleFiles::maximumTemperature, {"temp.dat"}, {"tb1Scatter"})},
        {"calibrate-results", rainCalibration("GraphType0")},
        {"calibrate-scatter", rainCalibration("GraphType1")},
        {"calibrate-histogram", rainCalibration("GraphType2")},
        {"stats-results",
         {ScreenKey::AnalyseData,
          [](MainWindow& window, SampleDialogs& dialogs, const sampledata::SampleFiles& files) {
              dialogs.picks = {files.precipitation,
                               core::folderOf(files.precipitation) + "/precip-stats.txt"};
              press(window, "SourceButton0");
              press(window, "SelectInputFile");
              press(window, "SaveButton");
              press(window, "tb1Analyse");
          }}},
    };
    return runs;
}

} // namespace

void SampleDialogs::message(std::string_view title, std::string_view text, screens::Icon) {
    log_ << title << ": " << text << '\n';
}

bool SampleDialogs::askYesNo(std::string_view title, std::string_view text, screens::Icon) {
    log_ << title << ": " << text << " No\n";
    return false;
}

std::optional<std::string> SampleDialogs::nextPick() {
    if (picks.empty()) {
        return std::nullopt;
    }
    std::string path = picks.front();
    picks.pop_front();
    return path;
}

bool isSampleRun(std::string_view name) {
    return sampleRuns().contains(name);
}

bool runSample(MainWindow& window, SampleDialogs& dialogs, std::string_view name,
               const std::string& folder) {
    const auto run = sampleRuns().find(name);
    if (run == sampleRuns().end()) {
        return false;
    }
    window.goTo(run->second.screen);
    sampledata::SampleOptions options;
    options.futureLastYear = options.futureFirstYear; // the screens here read observed data
    run->second.steps(window, dialogs, sampledata::writeSampleData(folder, options));
    return true;
}

} // namespace varo::gui
