// The screening screen of the desktop program, over `screens::ScreenVarsScreen`: the
// predictand, the predictor list of a folder with each file's description from the
// predictor table, the period and process, and the report of the last analysis, which the
// Save key writes to a text file.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/screen_vars_screen.hpp"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QTreeWidget;

namespace varo::gui {

class ScreenVarsWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit ScreenVarsWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::ScreenVarsScreen& record() { return record_; }

private:
    QWidget* buildFiles();
    QWidget* buildChoices();
    void showRecord();
    void showPredictorList();
    void showReport();
    void analyse(bool variance);
    void saveReport();

    screens::ScreenVarsScreen record_;
    QLabel* predictandLabel_ = nullptr;
    QLabel* folderLabel_ = nullptr;
    QTreeWidget* predictors_ = nullptr;
    QLabel* selectedCount_ = nullptr;
    QLineEdit* recordStart_ = nullptr;
    QLineEdit* recordEnd_ = nullptr;
    QComboBox* period_ = nullptr;
    QButtonGroup* process_ = nullptr;
    QCheckBox* autoregression_ = nullptr;
    QPlainTextEdit* results_ = nullptr;
    QLabel* savedTo_ = nullptr;
};

} // namespace varo::gui
