// The calibration screen of the desktop program, over `screens::CalibrateScreen`: the
// predictand, the predictor list of a folder, the fit period, model type, process, lag term,
// Chow test, cross-validation and plot choices and the parameter file; after a run the
// report opens in its own window, from which it can be printed or saved as text.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/calibrate_screen.hpp"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QListWidget;
class QTextEdit;

namespace varo::gui {

// CalibResultsFrm: the report of the last calibration as a page of tables.
class CalibrateResultsDialog : public QDialog {
    Q_OBJECT
public:
    CalibrateResultsDialog(ScreenContext& context, const calibration::CalibrationReport& report,
                           QWidget* parent);

    // The page as HTML, a Chow value above its critical value in bold red.
    static QString reportHtml(const calibration::CalibrationReport& report);

private:
    void print();
    void saveAsText();

    ScreenContext& context_;
    std::string text_;
    QTextEdit* page_;
};

class CalibrateWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit CalibrateWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::CalibrateScreen& record() { return record_; }
    // The window of the last report, while it is open.
    CalibrateResultsDialog* resultsDialog() const { return results_; }

private:
    QWidget* buildFiles();
    QWidget* buildModel();
    QButtonGroup* options(const QString& name, const QStringList& captions, QWidget* parent,
                          QLayout* into);
    void showRecord();
    void showSelection();
    void calibrate();

    screens::CalibrateScreen record_;
    QLabel* predictandLabel_ = nullptr;
    QLabel* folderLabel_ = nullptr;
    QListWidget* predictors_ = nullptr;
    QLabel* selectedCount_ = nullptr;
    QLabel* noOfDays_ = nullptr;
    QButtonGroup* modelType_ = nullptr;
    QButtonGroup* process_ = nullptr;
    QButtonGroup* graphType_ = nullptr;
    QCheckBox* autoregression_ = nullptr;
    QCheckBox* chow_ = nullptr;
    QCheckBox* crossValidation_ = nullptr;
    QLabel* parFileLabel_ = nullptr;
    CalibrateResultsDialog* results_ = nullptr;
};

} // namespace varo::gui
