// The calibration screen of the desktop program, over `screens::CalibrateScreen`: the
// predictand, the predictor list of a folder, the fit period, model type, process, lag term,
// Chow test, cross-validation and plot choices and the parameter file; after a run the
// report, the fitted coefficients and a stepwise search's choice open in their own window,
// from which they can be printed or saved as text, and the residual scatter or histogram
// that the plot choice asks for opens on its chart screen.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/calibrate_screen.hpp"

#include <QDialog>
#include <QPointer>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QTextEdit;

namespace varo::gui {

class ChartWindow;
class PredictorList;

class ResultsTabs;

// CalibResultsFrm: the report of the last calibration: its heading, a tab for each table of
// fit statistics and of fitted coefficients (a Chow value above its critical value in bold
// red), and what a stepwise search chose. Print and Save As Text take the report as text.
class CalibrateResultsDialog : public QDialog {
    Q_OBJECT
public:
    CalibrateResultsDialog(ScreenContext& context, const screens::CalibrateScreen& record,
                           QWidget* parent);

    ResultsTabs* tables() const { return tables_; }

private:
    void print();
    void saveAsText();

    ScreenContext& context_;
    std::string text_;
    ResultsTabs* tables_;
};

class CalibrateWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit CalibrateWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::CalibrateScreen& record() { return record_; }
    // The window of the last report, while it is open.
    CalibrateResultsDialog* resultsDialog() const { return results_; }
    // The chart screen of the last residual plot, while it is open.
    ChartWindow* residualChart() const;

private:
    QWidget* buildFiles();
    QWidget* buildModel();
    void showRecord();
    void calibrate();
    void showResults();

    screens::CalibrateScreen record_;
    QLabel* predictandLabel_ = nullptr;
    PredictorList* predictors_ = nullptr;
    QLabel* noOfDays_ = nullptr;
    QButtonGroup* modelType_ = nullptr;
    QButtonGroup* process_ = nullptr;
    QButtonGroup* graphType_ = nullptr;
    QCheckBox* autoregression_ = nullptr;
    QCheckBox* chow_ = nullptr;
    QCheckBox* crossValidation_ = nullptr;
    QLabel* parFileLabel_ = nullptr;
    CalibrateResultsDialog* results_ = nullptr;
    QPointer<ChartWindow> residualChart_;
};

} // namespace varo::gui
