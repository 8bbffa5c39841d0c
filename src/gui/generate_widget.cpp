#include "gui/generate_widget.hpp"
#include "gui/widget_helpers.hpp"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace varo::gui {

GenerateWidget::GenerateWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Scenario Generator", parent), record_(context.state) {
    addKey("Generate", "tb1Generate", [this] { generate(); });
    addKey("Reset", "tb1Reset", [this] {
        record_.reset();
        showRecord();
    });
    addKey("Settings", "tb1Settings", [this] { context_.openSettings(); });
    addKey("Help", "tb1Help", [this] { context_.openHelp(); });

    content()->addWidget(filesGroup());
    auto* columns = new QHBoxLayout();
    auto* left = new QVBoxLayout();
    left->addWidget(seriesGroup());
    left->addWidget(varianceGroup());
    left->addStretch(1);
    auto* middle = new QVBoxLayout();
    middle->addWidget(occurrenceGroup());
    middle->addWidget(amountGroup());
    middle->addStretch(1);
    auto* right = new QVBoxLayout();
    right->addWidget(trendGroup());
    right->addStretch(1);
    columns->addLayout(left, 1);
    columns->addLayout(middle, 1);
    columns->addLayout(right, 1);
    content()->addLayout(columns, 1);
    showRecord();
}

QCheckBox* GenerateWidget::tick(const QString& caption, const QString& name, bool& flag,
                                QWidget* parent) {
    QCheckBox* box = tickBox(caption, name, parent);
    connect(box, &QCheckBox::clicked, this, [&flag](bool on) { flag = on; });
    ticks_.emplace_back(box, &flag);
    return box;
}

QButtonGroup* GenerateWidget::options(const QString& name, const QStringList& captions, int& option,
                                      QGridLayout* grid, int firstRow, QWidget* parent) {
    auto* group = new QButtonGroup(this);
    for (int i = 0; i < captions.size(); ++i) {
        auto* button = new QRadioButton(captions[i], parent);
        button->setObjectName(name + QString::number(i));
        group->addButton(button, i);
        grid->addWidget(button, firstRow + i, 0);
    }
    connect(group, &QButtonGroup::idClicked, this, [&option](int id) { option = id; });
    optionGroups_.emplace_back(group, &option);
    return group;
}

QWidget* GenerateWidget::filesGroup() {
    auto* group = new QGroupBox("Files", this);
    auto* layout = new QVBoxLayout(group);
    const PickRow input =
        addPickRow(layout, "Select Input File", "InFileButton", "InFileText", group);
    const PickRow output =
        addPickRow(layout, "Save To .OUT File", "SaveAsButton", "OutFileText", group);
    inFileLabel_ = input.label;
    outFileLabel_ = output.label;
    connect(input.button, &QPushButton::clicked, this, [this] {
        record_.pickInFile(context_.dialogs);
        showRecord();
    });
    connect(output.button, &QPushButton::clicked, this, [this] {
        record_.pickOutFile(context_.dialogs);
        showRecord();
    });
    return group;
}

QWidget* GenerateWidget::seriesGroup() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* group = new QGroupBox("Series", this);
    auto* form = new QFormLayout(group);
    form->addRow("Start date (dd/mm/yyyy):",
                 bindField("StartDateText", record_.startDateText,
                           [this, &dialogs] { return record_.checkStartDate(dialogs); }));
    form->addRow("Ensemble size (1 to 100):", bindField("ESize", record_.eSize, [this, &dialogs] {
                     return record_.checkEnsembleSize(dialogs);
                 }));
    form->addRow("Threshold:", bindField("ThresholdText", record_.thresholdText, [this, &dialogs] {
                     return record_.checkThreshold(dialogs);
                 }));
    form->addRow(tick("Conditional Process?", "ConditionalCheck", record_.conditionalCheck, group));
    return group;
}

QWidget* GenerateWidget::occurrenceGroup() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* group = new QGroupBox("Occurrence", this);
    auto* grid = new QGridLayout(group);
    grid->addWidget(
        tick("Apply occurrence treatment", "OccurenceCheck", record_.occurenceCheck, group), 0, 0,
        1, 2);
    options("OccurenceOption", {"Stochastic", "Forced"}, record_.occurenceOption, grid, 1, group);
    grid->addWidget(new QLabel("Frequency change (%):", group), 3, 0);
    grid->addWidget(bindField("FrequencyChangeText", record_.frequencyChangeText,
                              [this, &dialogs] { return record_.checkFrequencyChange(dialogs); }),
                    3, 1);
    grid->addWidget(
        tick("Preserve Total?", "PreserveTotalsCheck", record_.preserveTotalsCheck, group), 4, 0, 1,
        2);
    auto* forced = new QLabel("Forced: each month to the wet-day percentages of the advanced "
                              "settings.",
                              group);
    forced->setWordWrap(true);
    grid->addWidget(forced, 5, 0, 1, 2);
    return group;
}

QWidget* GenerateWidget::amountGroup() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* group = new QGroupBox("Amount", this);
    auto* grid = new QGridLayout(group);
    grid->addWidget(tick("Apply amount treatment", "AmountCheck", record_.amountCheck, group), 0, 0,
                    1, 3);
    options("AmountOption", {"Factor (%)", "Addition"}, record_.amountOption, grid, 1, group);
    grid->addWidget(bindField("AmountFactorText", record_.amountFactorText,
                              [this, &dialogs] { return record_.checkAmountFactor(dialogs); }),
                    1, 1);
    grid->addWidget(bindField("AmountAdditionText", record_.amountAdditionText,
                              [this, &dialogs] { return record_.checkAmountAddition(dialogs); }),
                    2, 1);
    return group;
}

QWidget* GenerateWidget::varianceGroup() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* group = new QGroupBox("Variance", this);
    auto* form = new QFormLayout(group);
    form->addRow(tick("Apply variance treatment", "VarianceCheck", record_.varianceCheck, group));
    form->addRow("Variance change (%):",
                 bindField("VarianceFactorText", record_.varianceFactorText,
                           [this, &dialogs] { return record_.checkVarianceFactor(dialogs); }));
    return group;
}

QWidget* GenerateWidget::trendGroup() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* group = new QGroupBox("Trend", this);
    auto* grid = new QGridLayout(group);
    grid->addWidget(tick("Apply trend treatment", "TrendCheck", record_.trendCheck, group), 0, 0, 1,
                    3);
    options("TrendOption", {"Linear", "Exponential", "Logistic"}, record_.trendOption, grid, 1,
            group);
    const struct {
        const char* name;
        screens::TextField& field;
        bool (screens::GenerateScreen::*check)(screens::Dialogs&);
        const char* unit;
    } sizes[] = {
        {"LinearTrendText", record_.linearTrendText, &screens::GenerateScreen::checkLinearTrend,
         "a year"},
        {"ExpTrendText", record_.expTrendText, &screens::GenerateScreen::checkExpTrend,
         "by the end"},
        {"LogisticTrendText", record_.logisticTrendText,
         &screens::GenerateScreen::checkLogisticTrend, "by the end"},
    };
    int row = 1;
    for (const auto& size : sizes) {
        const auto check = size.check;
        grid->addWidget(bindField(size.name, size.field,
                                  [this, &dialogs, check] { return (record_.*check)(dialogs); }),
                        row, 1);
        grid->addWidget(new QLabel(size.unit, group), row++, 2);
    }
    auto* note = new QLabel("Conditional: a percentage of each wet value.", group);
    note->setWordWrap(true);
    grid->addWidget(note, row, 0, 1, 3);
    return group;
}

void GenerateWidget::showRecord() {
    inFileLabel_->setText(qt(record_.inFile.text));
    outFileLabel_->setText(qt(record_.outFile.text));
    for (const auto& [box, flag] : ticks_) {
        box->setChecked(*flag);
    }
    for (const auto& [group, option] : optionGroups_) {
        selectOption(group, *option);
    }
    showFields();
}

void GenerateWidget::refreshGlobals() {
    record_.refreshGlobals();
    showFields();
}

void GenerateWidget::generate() {
    runLong([this](core::Progress& progress) {
        record_.generate(context_.dialogs, progress);
        showRecord();
    });
}

} // namespace varo::gui
