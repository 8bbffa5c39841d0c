// The transform screen of the desktop program, over `screens::TransformScreen`.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/transform_screen.hpp"

class QButtonGroup;
class QCheckBox;
class QLabel;

namespace varo::gui {

class TransformWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit TransformWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::TransformScreen& record() { return record_; }

private:
    void buildFiles();
    QWidget* buildOptions();
    QWidget* buildInputs();
    void showRecord();
    void transform();

    screens::TransformScreen record_;
    QLabel* inputLabel_ = nullptr;
    QLabel* outputLabel_ = nullptr;
    QButtonGroup* options_ = nullptr;
    QCheckBox* wrap_ = nullptr;
    QCheckBox* extract_ = nullptr;
    QCheckBox* sim_ = nullptr;
};

} // namespace varo::gui
