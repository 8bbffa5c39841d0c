// Start of the desktop program: options, state, window, and the screenshot mode that
// renders one screen at its opening state to a PNG file (the user guide's pictures).
#pragma once

class QApplication;
class QString;

namespace varo::gui {

class MainWindow;

int runDesktop(QApplication& app);

// Shows the screen named by a toolbar short name ("quality", "calibrate", ...), one of
// "intro", "home", "settings", "advsettings", "help", or a chart screen with its sample
// chart ("chart1", ..., "chart1-settings", ...); false when there is no such screen.
bool showNamedScreen(MainWindow& window, const QString& name);

// Renders the window (or the advanced settings dialog) to a PNG file.
bool saveScreenshot(MainWindow& window, const QString& name, const QString& file);

} // namespace varo::gui
