// The compare results screen of the desktop program, over `screens::CompareResultsScreen`:
// two results files, each with the list of the statistics of its first table, bars or
// lines, and Plot, which opens the result chart.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/compare_results_screen.hpp"

#include <QPointer>
#include <array>

class QButtonGroup;
class QLabel;
class QListWidget;

namespace varo::gui {

class ChartWindow;

class CompareWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit CompareWidget(ScreenContext& context, QWidget* parent = nullptr);
    screens::CompareResultsScreen& record() { return record_; }
    // The chart of the last plot, while it is open.
    ChartWindow* chartWindow() const;

private:
    QWidget* buildFile(size_t which);
    void showRecord();
    void plot();

    screens::CompareResultsScreen record_;
    std::array<QLabel*, 2> fileLabels_{};
    std::array<QListWidget*, 2> statisticLists_{};
    QButtonGroup* chartOption_ = nullptr;
    QPointer<ChartWindow> chart_;
};

} // namespace varo::gui
