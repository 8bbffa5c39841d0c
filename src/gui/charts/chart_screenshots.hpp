// The chart screens in the screenshot mode (`varo-gui --screen KEY --screenshot F.png`):
// each opens with its sample chart, and "KEY-settings" opens its settings screen over it.
// Keys: chart1, scatterchart, linechart, pdfchart, histogram, timeserieschart, fachart.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace varo::gui {

class MainWindow;

const QStringList& chartScreenKeys();

// Opens the sample chart of a key over the window; false when the key is no chart
// screen's.
bool openSampleChartScreen(MainWindow& window, const QString& key);

// The chart screen (or its settings screen) that a key opened, or null.
QWidget* sampleChartScreen(const MainWindow& window, const QString& key);

} // namespace varo::gui
