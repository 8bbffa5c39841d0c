// The statistics selection screen of the desktop program, a dialog over
// `screens::StatsSelectScreen`: leaving it, by its Back key or by closing it, writes the
// choices into the program state.
#pragma once

#include "gui/field_binder.hpp"
#include "gui/screen_context.hpp"
#include "screens/stats_select_screen.hpp"

#include <QDialog>
#include <array>

class QButtonGroup;
class QCheckBox;

namespace varo::gui {

class StatsSelectDialog : public QDialog {
    Q_OBJECT
public:
    StatsSelectDialog(ScreenContext& context, QWidget* parent = nullptr);
    screens::StatsSelectScreen& record() { return record_; }

    void done(int result) override;

private:
    void showTicks();

    ScreenContext& context_;
    FieldBinder* fields_;
    screens::StatsSelectScreen record_;
    std::array<QCheckBox*, screens::StatsSelectScreen::BoxCount + 1> boxes_{};
    QButtonGroup* deltaOption_;
};

} // namespace varo::gui
