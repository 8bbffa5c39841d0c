// The quality check screen of the desktop program, over `screens::QualityScreen`.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/quality_screen.hpp"

class QLabel;
class QLineEdit;

namespace varo::gui {

class QualityWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit QualityWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::QualityScreen& record() { return record_; }

private:
    void showRecord();
    void check();

    screens::QualityScreen record_;
    QLabel* fileLabel_;
    std::vector<std::pair<QLineEdit*, std::string*>> results_;
};

} // namespace varo::gui
