// The scenario generator screen of the desktop program, over `screens::GenerateScreen`.
#pragma once

#include "gui/screen_widget.hpp"
#include "screens/generate_screen.hpp"

class QButtonGroup;
class QCheckBox;
class QGridLayout;
class QLabel;

namespace varo::gui {

class GenerateWidget : public ScreenWidget {
    Q_OBJECT
public:
    explicit GenerateWidget(ScreenContext& context, QWidget* parent = nullptr);
    void refreshGlobals() override;
    screens::GenerateScreen& record() { return record_; }

private:
    QWidget* filesGroup();
    QWidget* seriesGroup();
    QWidget* occurrenceGroup();
    QWidget* amountGroup();
    QWidget* varianceGroup();
    QWidget* trendGroup();
    // A tick box bound to a flag of the record.
    QCheckBox* tick(const QString& caption, const QString& name, bool& flag, QWidget* parent);
    // Radio buttons named "<name><index>" in the first column of `grid` from row `firstRow`,
    // bound to an option of the record.
    QButtonGroup* options(const QString& name, const QStringList& captions, int& option,
                          QGridLayout* grid, int firstRow, QWidget* parent);
    void showRecord();
    void generate();

    screens::GenerateScreen record_;
    QLabel* inFileLabel_;
    QLabel* outFileLabel_;
    std::vector<std::pair<QCheckBox*, bool*>> ticks_;
    std::vector<std::pair<QButtonGroup*, int*>> optionGroups_;
};

} // namespace varo::gui
