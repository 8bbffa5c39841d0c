// The summary statistics screen of the desktop program, over `screens::AnalyseScreen`, with
// the statistics selection dialog one key away and the tables of the last run's results
// file below the choices.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/analyse_screen.hpp"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;

namespace varo::gui {

class ResultsTabs;

class AnalyseWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit AnalyseWidget(ScreenContext& context, QWidget* parent = nullptr);
    screens::AnalyseScreen& record() { return record_; }

private:
    void showRecord();
    void analyse();
    void selectStatistics();
    void showSelection();
    void showResults();

    screens::AnalyseScreen record_;
    QButtonGroup* source_;
    QLabel* inputFile_;
    QLabel* saveFile_;
    QCheckBox* ensembleMean_;
    QCheckBox* delta_;
    QLabel* selection_;
    QLabel* resultsFile_;
    QLabel* noResults_;
    ResultsTabs* results_;
    std::vector<std::pair<QLineEdit*, std::string*>> shown_;
};

} // namespace varo::gui
