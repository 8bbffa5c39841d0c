#include "gui/stats_select_widget.hpp"
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

namespace {
constexpr int BoxRows = 10; // three columns of ten statistics
}

StatsSelectDialog::StatsSelectDialog(ScreenContext& context, QWidget* parent)
    : QDialog(parent), context_(context), fields_(new FieldBinder(this)), record_(context.state) {
    setWindowTitle("Statistics Selection");
    setObjectName("StatsSelect");
    screens::Dialogs& dialogs = context_.dialogs;
    using Period = screens::StatsSelectScreen::Period;
    auto* outer = new QVBoxLayout(this);

    auto* keys = new QHBoxLayout();
    QPushButton* back = keyButton("Back", "menuBack", this);
    keys->addWidget(back);
    keys->addStretch(1);
    outer->addLayout(keys);
    connect(back, &QPushButton::clicked, this, [this] {
        fields_->finishEditing();
        fields_->sync();
        accept();
    });

    auto* ticks = new QGroupBox("Statistics (up to eight)", this);
    auto* grid = new QGridLayout(ticks);
    for (int i = 1; i <= screens::StatsSelectScreen::BoxCount; ++i) {
        auto* box = new QCheckBox(QString::fromStdString(record_.statisticName(i)), ticks);
        box->setObjectName(QString("Check1_%1").arg(i));
        grid->addWidget(box, (i - 1) % BoxRows, (i - 1) / BoxRows);
        boxes_[static_cast<size_t>(i)] = box;
        connect(box, &QCheckBox::clicked, this, [this, i](bool ticked) {
            record_.click(context_.dialogs, i, ticked);
            showTicks();
        });
    }
    outer->addWidget(ticks);

    auto* lower = new QHBoxLayout();
    auto* parameters = new QGroupBox("Parameters", this);
    auto* form = new QFormLayout(parameters);
    form->addRow("Percentile:",
                 fields_->bind(parameters, "AddPercentText", record_.addPercentText,
                               [this, &dialogs] { return record_.checkAddPercent(dialogs); }));
    form->addRow("POP percentile:",
                 fields_->bind(parameters, "PrecPOTText", record_.precPotText,
                               [this, &dialogs] { return record_.checkPrecPot(dialogs); }));
    form->addRow("Peaks over threshold:",
                 fields_->bind(parameters, "POThreshText", record_.poThreshText,
                               [this, &dialogs] { return record_.checkPoThresh(dialogs); }));
    form->addRow("Peaks below threshold:",
                 fields_->bind(parameters, "PBTThreshText", record_.pbtThreshText,
                               [this, &dialogs] { return record_.checkPbtThresh(dialogs); }));
    form->addRow("N-day total (days):",
                 fields_->bind(parameters, "NDayTotalText", record_.nDayTotalText,
                               [this, &dialogs] { return record_.checkNDayTotal(dialogs); }));
    for (QLineEdit* edit : parameters->findChildren<QLineEdit*>()) {
        edit->setMinimumWidth(90);
    }
    lower->addWidget(parameters);

    auto* periods = new QGroupBox("Periods", this);
    auto* periodGrid = new QGridLayout(periods);
    periodGrid->addWidget(new QLabel("Start", periods), 0, 1);
    periodGrid->addWidget(new QLabel("End", periods), 0, 2);
    const std::pair<Period, const char*> rows[] = {{Period::Base, "Base"},
                                                   {Period::A, "PeriodA"},
                                                   {Period::B, "PeriodB"},
                                                   {Period::C, "PeriodC"}};
    const char* captions[] = {"Base period", "Period A (2020s)", "Period B (2050s)",
                              "Period C (2080s)"};
    int row = 1;
    for (const auto& [period, name] : rows) {
        const Period p = period;
        periodGrid->addWidget(new QLabel(captions[row - 1], periods), row, 0);
        periodGrid->addWidget(
            fields_->bind(periods, QString(name) + "StartText", record_.startText(p),
                          [this, p, &dialogs] { return record_.checkStart(dialogs, p); }),
            row, 1);
        periodGrid->addWidget(
            fields_->bind(periods, QString(name) + "EndText", record_.endText(p),
                          [this, p, &dialogs] { return record_.checkEnd(dialogs, p); }),
            row, 2);
        ++row;
    }
    auto* deltaBox = new QGroupBox("Delta", periods);
    auto* deltaLayout = new QHBoxLayout(deltaBox);
    deltaOption_ = optionGroup(deltaBox, deltaLayout, "DeltaOption",
                               {"Percentage Difference", "Absolute Difference"},
                               [this](int id) { record_.deltaOption = id; });
    selectOption(deltaOption_, record_.deltaOption);
    periodGrid->addWidget(deltaBox, row, 0, 1, 3);
    lower->addWidget(periods, 1);
    outer->addLayout(lower);
    showTicks();
}

void StatsSelectDialog::showTicks() {
    for (int i = 1; i <= screens::StatsSelectScreen::BoxCount; ++i) {
        boxes_[static_cast<size_t>(i)]->setChecked(record_.check1[static_cast<size_t>(i)]);
    }
}

void StatsSelectDialog::done(int result) {
    record_.leave();
    QDialog::done(result);
}

} // namespace varo::gui
