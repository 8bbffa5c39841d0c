// The settings screen of a chart screen, over `screens::ChartSettingsScreen`: the fields its
// chart offers (titles, vertical scale and ticks, label gap, legends, pen widths, dot and
// line sizes), Change, the legend, tick and label buttons, a colour picker for each series,
// a font picker and Reset. A refused field shows its message and its last good value.
#pragma once

#include "screens/chart_screens.hpp"
#include "screens/dialogs.hpp"

#include <QDialog>
#include <functional>
#include <optional>

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace varo::gui {

class FieldBinder;

class ChartSettingsDialog : public QDialog {
    Q_OBJECT
public:
    // The pickers are replaceable so that tests can answer them.
    using ColourPicker = std::function<std::optional<QColor>(const QColor& current, QWidget*)>;
    using FontPicker = std::function<std::optional<QFont>(const QFont& current, QWidget*)>;

    ChartSettingsDialog(screens::Dialogs& dialogs, screens::ChartScreenRecord& chartScreen,
                        QWidget* parent);

    screens::ChartSettingsScreen& record() { return record_; }
    ColourPicker colourPicker;
    FontPicker fontPicker;

signals:
    // The chart changed and is to be drawn again.
    void chartChanged();

private:
    QWidget* buildTitles();
    QWidget* buildScale();
    QWidget* buildLegends();
    QWidget* buildLooks();
    QLayout* buildButtons();
    QLineEdit* field(QFormLayout* form, const QString& caption, const QString& name,
                     screens::TextField& text, const std::function<bool()>& check = {});
    QPushButton* button(QLayout* row, const QString& caption, const QString& name,
                        const std::function<void()>& action);
    void pickColour();
    void pickFont();
    void showLooks();
    void changed();

    screens::Dialogs& dialogs_;
    screens::ChartSettingsScreen record_;
    FieldBinder* fields_;
    QComboBox* seriesChoice_ = nullptr;
    QLabel* colourSwatch_ = nullptr;
    QLabel* fontLabel_ = nullptr;
    QPushButton* legendButton_ = nullptr;
};

// The font of a chart as Qt's, and back.
QFont qtFont(const charts::ChartFont& font);
charts::ChartFont chartFont(const QFont& font);

} // namespace varo::gui
