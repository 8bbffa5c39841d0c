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

void selectRainPredictors(MainWindow& window) {
    auto* list = window.findChild<QTreeWidget*>("File2");
    if (list == nullptr) {
        return;
    }
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list->topLevelItem(i);
        item->setSelected(RainPredictors.contains(item->text(0)));
    }
}

using SampleRun = std::function<void(MainWindow&, SampleDialogs&, const sampledata::SampleFiles&)>;

const std::map<screens::ScreenKey, SampleRun>& sampleRuns() {
    using screens::ScreenKey;
    static const std::map<ScreenKey, SampleRun> runs = {
        {ScreenKey::Quality,
         [](MainWindow& window, SampleDialogs& dialogs, const sampledata::SampleFiles& files) {
             dialogs.picks = {files.precipitation};
             press(window, "SelectFileButton");
             press(window, "tb1Check");
         }},
        {ScreenKey::Screen,
         [](MainWindow& window, SampleDialogs& dialogs, const sampledata::SampleFiles& files) {
             dialogs.picks = {files.precipitation, files.predictorFolder};
             press(window, "PredtandButton");
             press(window, "Dir2");
             selectRainPredictors(window);
             press(window, "ParmOpt0");
             press(window, "tb1Variance");
         }},
        {ScreenKey::AnalyseData,
         [](MainWindow& window, SampleDialogs& dialogs, const sampledata::SampleFiles& files) {
             dialogs.picks = {files.precipitation,
                              core::folderOf(files.precipitation) + "/precip-stats.txt"};
             press(window, "SourceButton0");
             press(window, "SelectInputFile");
             press(window, "SaveButton");
             press(window, "tb1Analyse");
         }},
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

bool runSample(MainWindow& window, SampleDialogs& dialogs, screens::ScreenKey key,
               const std::string& folder) {
    const auto run = sampleRuns().find(key);
    if (run == sampleRuns().end()) {
        return false;
    }
    window.goTo(key);
    sampledata::SampleOptions options;
    options.futureLastYear = options.futureFirstYear; // the screens here read observed data
    run->second(window, dialogs, sampledata::writeSampleData(folder, options));
    return true;
}

} // namespace varo::gui
