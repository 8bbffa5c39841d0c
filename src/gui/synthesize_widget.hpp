// The weather generator screen of the desktop program, over `screens::SynthesizeScreen`.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/synthesize_screen.hpp"

class QLabel;
class QLineEdit;
class QListWidget;

namespace varo::gui {

class SynthesizeWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit SynthesizeWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::SynthesizeScreen& record() { return record_; }

private:
    QWidget* parameterGroup();
    QWidget* detailsGroup();
    QWidget* runGroup();
    void showRecord();
    void synthesize();

    screens::SynthesizeScreen record_;
    QLabel* parFileLabel_;
    QLabel* outFileLabel_;
    QLabel* folderLabel_;
    QLabel* autoRegressLabel_;
    QLabel* processLabel_;
    QLineEdit* noOfPred_;
    QLineEdit* rStart_;
    QLineEdit* rLength_;
    QListWidget* predictorList_;
};

} // namespace varo::gui
