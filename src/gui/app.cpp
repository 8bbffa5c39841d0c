#include "gui/app.hpp"

#include "core/failure.hpp"
#include "core/settings.hpp"
#include "gui/calibrate_widget.hpp"
#include "gui/charts/chart_screenshots.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/help_viewer.hpp"
#include "gui/main_window.hpp"
#include "gui/sample_runs.hpp"
#include "gui/settings_widget.hpp"
#include "screens/navigation.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTimer>
#include <iostream>

namespace varo::gui {

namespace {

// Opens the page named on the command line; with a sample folder, the name of a sample run
// is its screen after the run there. 0, or the exit status of a name refused.
int openPage(MainWindow& window, SampleDialogs& dialogs, const QString& name,
             const QString& sampleFolder) {
    const std::string runName = name.toStdString();
    if (sampleFolder.isEmpty() || !isSampleRun(runName)) {
        if (!showNamedScreen(window, name)) {
            std::cerr << "varo-gui: there is no screen '" << runName << "'\n";
            return 2;
        }
        return 0;
    }
    window.showHome();
    try {
        runSample(window, dialogs, runName, (sampleFolder + "/demo-output").toStdString());
    } catch (const core::Failure& failure) {
        std::cerr << "varo-gui: " << failure.description() << '\n';
        return 1;
    }
    return 0;
}

// The window a screenshot shows: a chart screen a sample chart or a sample run opened, or
// the main window.
QWidget* pictured(MainWindow& window, const QString& name) {
    if (QWidget* chart = sampleChartScreen(window, name)) {
        return chart;
    }
    if (isSampleRun(name.toStdString())) {
        if (auto* chart = window.findChild<ChartWindow*>()) {
            return chart;
        }
        if (auto* report = window.findChild<CalibrateResultsDialog*>()) {
            return report;
        }
    }
    return &window;
}

} // namespace

bool showNamedScreen(MainWindow& window, const QString& name) {
    if (name == "intro") {
        window.showStart();
        return true;
    }
    window.showHome();
    if (name == "home") {
        return true;
    }
    if (name == "help" || openSampleChartScreen(window, name)) {
        return true;
    }
    if (name == "settings" || name == "advsettings") {
        window.openSettings();
        return true;
    }
    const screens::ToolbarKey* key = screens::findToolbarKey(name.toStdString());
    if (key == nullptr || !window.screenAvailable(key->key)) {
        return false;
    }
    window.goTo(key->key);
    return true;
}

bool saveScreenshot(MainWindow& window, const QString& name, const QString& file) {
    window.show();
    QApplication::processEvents();
    if (name == "advsettings" || name == "help") {
        // The dialogs are shown without waiting, drawn and closed.
        QDialog* dialog = name == "help" ? static_cast<QDialog*>(new HelpViewer(&window))
                                         : window.advancedSettingsDialog();
        dialog->show();
        QApplication::processEvents();
        const bool saved = dialog->grab().save(file, "PNG");
        delete dialog;
        return saved;
    }
    QWidget* shown = pictured(window, name);
    QApplication::processEvents();
    return shown->grab().save(file, "PNG");
}

int runDesktop(QApplication& app) {
    QApplication::setApplicationName("VARO");
    QCommandLineParser parser;
    parser.setApplicationDescription("VARO: statistical downscaling of daily climate data");
    parser.addHelpOption();
    const QCommandLineOption settings(
        "settings", "Settings file to use instead of ~/.config/varo/VARO.INI.", "FILE");
    const QCommandLineOption screen(
        "screen",
        "Open on a screen: intro, home, settings, advsettings, help, quality, ...; with "
        "--screenshot also stats-results, screen-results or quality-results: the screen after "
        "a run on the sample data; calibrate-results: the report of a calibration; "
        "screen-scatter, calibrate-scatter or calibrate-histogram: the chart such a run opens.",
        "KEY");
    const QCommandLineOption screenshot("screenshot", "Render the screen to a PNG file and exit.",
                                        "FILE");
    parser.addOptions({settings, screen, screenshot});
    parser.process(app);

    core::ProgramState state;
    const std::string settingsFile =
        parser.isSet(settings) ? parser.value(settings).toStdString() : core::defaultSettingsPath();
    // The load at start shows no box; a file it passes over is named where a shell sees it.
    if (const auto problem = core::settingsFileProblem(settingsFile)) {
        std::cerr << "varo-gui: warning: " << *problem << " None of its settings are in force.\n";
    }
    screens::startProgram(state, settingsFile);
    // A picture is taken without waiting for a click: boxes go to the error stream.
    SampleDialogs pictureDialogs(std::cerr);
    const bool picture = parser.isSet(screenshot);
    MainWindow window(state, picture ? &pictureDialogs : nullptr);
    QTemporaryDir sampleFolder;
    if (!parser.isSet(screen)) {
        window.showStart();
    } else if (const int refused = openPage(window, pictureDialogs, parser.value(screen),
                                            picture ? sampleFolder.path() : QString())) {
        return refused;
    }
    if (parser.isSet(screenshot)) {
        const bool saved = saveScreenshot(window, parser.value(screen), parser.value(screenshot));
        if (!saved) {
            std::cerr << "varo-gui: cannot write " << parser.value(screenshot).toStdString()
                      << '\n';
        }
        return saved ? 0 : 1;
    }
    window.show();
    return QApplication::exec();
}

} // namespace varo::gui
