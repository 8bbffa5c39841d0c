#include "gui/app.hpp"

#include "core/settings.hpp"
#include "gui/help_viewer.hpp"
#include "gui/main_window.hpp"
#include "gui/settings_widget.hpp"
#include "screens/navigation.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QPixmap>
#include <QTimer>
#include <iostream>

namespace varo::gui {

bool showNamedScreen(MainWindow& window, const QString& name) {
    if (name == "intro") {
        window.showStart();
        return true;
    }
    window.showHome();
    if (name == "home") {
        return true;
    }
    if (name == "help") {
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
    const QPixmap picture = window.grab();
    return picture.save(file, "PNG");
}

int runDesktop(QApplication& app) {
    QApplication::setApplicationName("VARO");
    QCommandLineParser parser;
    parser.setApplicationDescription("VARO: statistical downscaling of daily climate data");
    parser.addHelpOption();
    const QCommandLineOption settings(
        "settings", "Settings file to use instead of ~/.config/varo/VARO.INI.", "FILE");
    const QCommandLineOption screen(
        "screen", "Open on a screen: intro, home, settings, advsettings, quality, ...", "KEY");
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
    MainWindow window(state);
    if (parser.isSet(screen)) {
        if (!showNamedScreen(window, parser.value(screen))) {
            std::cerr << "varo-gui: there is no screen '" << parser.value(screen).toStdString()
                      << "'\n";
            return 2;
        }
    } else {
        window.showStart();
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
