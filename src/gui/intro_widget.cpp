#include "gui/intro_widget.hpp"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace varo::gui {

namespace {
QLabel* titleLabel(const QString& text, double scale, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(true);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    return label;
}
} // namespace

IntroWidget::IntroWidget(core::ProgramState& state, QWidget* parent)
    : QWidget(parent), record_(state) {
    setObjectName("Intro");
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(2);
    layout->addWidget(titleLabel("VARO", 4.0, this));
    layout->addWidget(titleLabel("Statistical downscaling of daily climate data", 1.4, this));
    auto* blurb = new QLabel(
        "Check and transform data files, screen predictors, calibrate a regression model,\n"
        "generate ensembles of daily series, build scenarios and analyse the results.",
        this);
    blurb->setAlignment(Qt::AlignCenter);
    layout->addWidget(blurb);
    layout->addStretch(1);

    auto* buttons = new QHBoxLayout();
    buttons->addStretch(1);
    auto* start = new QPushButton("&Start", this);
    start->setObjectName("StartButton");
    start->setDefault(true);
    auto* exit = new QPushButton("E&xit", this);
    exit->setObjectName("ExitButton");
    buttons->addWidget(start);
    buttons->addWidget(exit);
    buttons->addStretch(1);
    layout->addLayout(buttons);

    splash_ = new QCheckBox("Do not show this splash screen again", this);
    splash_->setObjectName("SplashCheck");
    auto* splashRow = new QHBoxLayout();
    splashRow->addStretch(1);
    splashRow->addWidget(splash_);
    splashRow->addStretch(1);
    layout->addLayout(splashRow);
    layout->addStretch(2);

    connect(start, &QPushButton::clicked, this, [this] {
        record_.splashCheck = splash_->isChecked();
        record_.start();
        emit started();
    });
    connect(exit, &QPushButton::clicked, this, &IntroWidget::exitRequested);
}

HomeWidget::HomeWidget(QWidget* parent) : QWidget(parent) {
    setObjectName("Home");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(titleLabel("VARO", 2.5, this));
    auto* steps = new QLabel(
        "<p>The toolbar leads through the work in its usual order:</p>"
        "<ol>"
        "<li><b>Quality Control</b>: check a data file for missing values, extremes and jumps.</li>"
        "<li><b>Transform</b>: derive new data files (logs, powers, lags, Box-Cox...).</li>"
        "<li><b>Screen Variables</b>: correlate candidate predictors with the predictand.</li>"
        "<li><b>Calibrate</b>: fit the regression model by month, season or year.</li>"
        "<li><b>Weather Generator</b>: generate ensembles of daily series from a model.</li>"
        "<li><b>Summary Statistics</b>: statistics of observed and modelled series, with "
        "deltas.</li>"
        "<li><b>Diagnostics</b>, <b>Scenario Generator</b>, <b>Compare Results</b> and "
        "<b>Time Series</b> analyse and perturb the results.</li>"
        "</ol>"
        "<p>Settings (the standard period, calendar, missing value code and event threshold) "
        "are under <i>File, Settings</i>; the user guide is under <i>Help</i>.</p>",
        this);
    steps->setWordWrap(true);
    layout->addWidget(steps);
    layout->addStretch(1);
}

} // namespace varo::gui
