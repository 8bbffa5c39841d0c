// The screening screen of the desktop program, over `screens::ScreenVarsScreen`: the
// predictand, the predictor list of a folder with each file's description from the
// predictor table, the period and process, and the report of the last analysis, which the
// Save key writes to a text file. The scatter analysis opens its chart on the scatter chart
// screen.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/screen_vars_screen.hpp"

#include <QPointer>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;

namespace varo::gui {

class ChartWindow;
class PredictorList;

class ScreenVarsWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit ScreenVarsWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::ScreenVarsScreen& record() { return record_; }
    // The chart screen of the last scatter analysis, while it is open.
    ChartWindow* scatterChart() const;

private:
    QWidget* buildFiles();
    QWidget* buildChoices();
    void showRecord();
    void showReport();
    void analyse(bool variance);
    void scatter();
    void saveReport();

    screens::ScreenVarsScreen record_;
    QLabel* predictandLabel_ = nullptr;
    PredictorList* predictors_ = nullptr;
    QLineEdit* recordStart_ = nullptr;
    QLineEdit* recordEnd_ = nullptr;
    QComboBox* period_ = nullptr;
    QButtonGroup* process_ = nullptr;
    QCheckBox* autoregression_ = nullptr;
    QPlainTextEdit* results_ = nullptr;
    QLabel* savedTo_ = nullptr;
    QPointer<ChartWindow> scatterChart_;
};

} // namespace varo::gui
