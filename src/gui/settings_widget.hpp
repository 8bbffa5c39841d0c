// The Settings screen and the AdvSettings dialog of the desktop program.
#pragma once

#include "gui/field_binder.hpp"
#include "gui/screen_widget.hpp"
#include "screens/settings_screens.hpp"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QLineEdit;

namespace varo::gui {

class SettingsWidget : public ScreenWidget {
    Q_OBJECT
public:
    // `back` is called when Back finds every field good.
    SettingsWidget(ScreenContext& context, std::function<void()> back, QWidget* parent = nullptr);
    screens::SettingsScreen& record() { return record_; }

private:
    void showRecord();
    void openAdvanced();

    screens::SettingsScreen record_;
    std::function<void()> back_;
    QButtonGroup* yearDays_;
    QCheckBox* allowNeg_;
    QCheckBox* randomSeed_;
    QLineEdit* folder_;
};

class AdvSettingsDialog : public QDialog {
    Q_OBJECT
public:
    AdvSettingsDialog(ScreenContext& context, QWidget* parent = nullptr);
    ~AdvSettingsDialog() override;
    screens::AdvSettingsScreen& record() { return record_; }

private:
    void showRecord();

    ScreenContext& context_;
    FieldBinder* fields_;
    screens::AdvSettingsScreen record_;
    QLineEdit* settingsFile_;
    QButtonGroup* conditional_;
    QButtonGroup* transformation_;
    QButtonGroup* optimisation_;
    QButtonGroup* aic_;
    QCheckBox* stepwise_;
};

} // namespace varo::gui
