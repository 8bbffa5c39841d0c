// The chart screens of the desktop program: one window that shows any of the seven, over
// `screens::ChartScreenRecord`, with Back, Copy, Print, Save Picture, Settings, Reset and
// Exit. The chart is drawn by the chart renderer, so a saved or copied picture is the one
// the command line's --plot makes at the same size.
#pragma once

#include "charts/chart_model.hpp"
#include "core/program_state.hpp"
#include "screens/chart_screens.hpp"
#include "screens/dialogs.hpp"

#include <QMainWindow>
#include <QPointer>

QT_BEGIN_NAMESPACE
class QChartView;
QT_END_NAMESPACE

namespace varo::gui {

class ChartSettingsDialog;

class ChartWindow : public QMainWindow {
    Q_OBJECT
public:
    ChartWindow(core::ProgramState& state, screens::Dialogs& dialogs, charts::ChartModel model,
                QWidget* parent);
    ~ChartWindow() override;

    screens::ChartScreenRecord& record() { return record_; }
    // Draws the chart again after it changed.
    void redraw();
    // The size the chart has on the screen, which pictures are drawn at.
    QSize pictureSize() const;
    // The chart as a picture of the window's size, as Copy and Save Picture make it.
    QImage picture() const;

    // The menu's commands.
    ChartSettingsDialog* openSettings();
    void resetAll();
    void copyPicture();
    void printChart();
    void savePicture();
    void exitProgram();
    ChartSettingsDialog* settingsDialog() const;

private:
    void buildMenu();

    screens::Dialogs& dialogs_;
    screens::ChartScreenRecord record_;
    QChartView* view_;
    QPointer<ChartSettingsDialog> settings_;
};

// Opens a chart screen over `parent` with the chart a caller hands over; a line or PDF chart
// with too many series warns that it draws without a legend.
ChartWindow* openChartScreen(core::ProgramState& state, screens::Dialogs& dialogs,
                             charts::ChartModel model, QWidget* parent);

// Opens a chart screen in place of the one `shown` holds, which closes when still open: a
// screen shows the chart of its last analysis only.
void replaceChartScreen(QPointer<ChartWindow>& shown, core::ProgramState& state,
                        screens::Dialogs& dialogs, charts::ChartModel model, QWidget* parent);

} // namespace varo::gui
