#include "gui/transform_widget.hpp"
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

TransformWidget::TransformWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Transform Data", parent), record_(context.state) {
    addKey("Transform", "tb1Transform", [this] { transform(); });
    addClosingKeys([this] {
        record_.reset();
        showRecord();
    });
    buildFiles();
    auto* columns = new QHBoxLayout();
    content()->addLayout(columns);
    auto* left = new QVBoxLayout();
    columns->addLayout(left, 3);
    auto* right = new QVBoxLayout();
    columns->addLayout(right, 2);
    left->addWidget(buildOptions());
    left->addStretch(1);
    right->addWidget(buildInputs());
    right->addStretch(1);
    showRecord();
}

void TransformWidget::buildFiles() {
    auto* files = new QGroupBox("Files", this);
    auto* grid = new QGridLayout(files);
    const auto row = [&](int at, const QString& caption, const QString& buttonName,
                         const QString& labelName, QLabel*& label) {
        auto* button = new QPushButton(caption, files);
        button->setObjectName(buttonName);
        label = new QLabel(files);
        label->setObjectName(labelName);
        grid->addWidget(button, at, 0);
        grid->addWidget(label, at, 1);
        return button;
    };
    auto* input = row(0, "Select Input File", "SelectFileButton", "SelectFileText", inputLabel_);
    auto* output = row(1, "Save To File", "SaveFileButton", "SaveFileText", outputLabel_);
    grid->setColumnStretch(1, 1);
    content()->addWidget(files);
    connect(input, &QPushButton::clicked, this, [this] {
        record_.pickInput(context_.dialogs);
        showRecord();
    });
    connect(output, &QPushButton::clicked, this, [this] {
        record_.pickOutput(context_.dialogs);
        showRecord();
    });
}

// The 17 options in three columns, in code order, with their captions and tool tips.
QWidget* TransformWidget::buildOptions() {
    auto* box = new QGroupBox("Transformation", this);
    auto* grid = new QGridLayout(box);
    options_ = new QButtonGroup(this);
    constexpr int Rows = 6;
    for (const auto& option : dataprep::transformOptions()) {
        auto* button = new QRadioButton(qt(option.caption), box);
        button->setObjectName("Option1_" + QString::number(option.code));
        button->setToolTip(qt(option.toolTip));
        options_->addButton(button, option.code);
        grid->addWidget(button, (option.code - 1) % Rows, (option.code - 1) / Rows);
    }
    connect(options_, &QButtonGroup::idClicked, this, [this](int code) { record_.option = code; });
    return box;
}

QWidget* TransformWidget::buildInputs() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* box = new QGroupBox("Inputs", this);
    auto* form = new QFormLayout(box);
    form->addRow("Number of columns:", bindField("Colstxt", record_.colsText, [this, &dialogs] {
                     return record_.checkColumns(dialogs);
                 }));
    extract_ = tickBox("Extract ensemble member", "ExtractEnsembleCheck", box);
    form->addRow(extract_);
    form->addRow("Ensemble to extract:",
                 bindField("EnsembleExtractText", record_.ensembleExtractText,
                           [this, &dialogs] { return record_.checkEnsemble(dialogs); }));
    sim_ = tickBox("Create SIM file", "SimCheck", box);
    form->addRow(sim_);
    form->addRow("Lag n:", bindField("LagText", record_.lagText,
                                     [this, &dialogs] { return record_.checkLag(dialogs); }));
    wrap_ = tickBox({}, "WrapCheck", box);
    form->addRow(wrap_);
    form->addRow("Binomial threshold:",
                 bindField("BinomialText", record_.binomialText,
                           [this, &dialogs] { return record_.checkBinomial(dialogs); }));
    form->addRow("Lamda:", bindField("LamdaValText", record_.lamdaValText,
                                     [this, &dialogs] { return record_.checkLamda(dialogs); }));
    form->addRow("Left shift:", bindField("LeftShiftText", record_.leftShiftText, [this, &dialogs] {
                     return record_.checkShift(dialogs);
                 }));
    connect(extract_, &QCheckBox::clicked, this,
            [this](bool on) { record_.extractEnsembleCheck = on; });
    connect(sim_, &QCheckBox::clicked, this, [this](bool on) { record_.simCheck = on; });
    connect(wrap_, &QCheckBox::clicked, this, [this](bool on) { record_.wrapCheck = on; });
    return box;
}

void TransformWidget::showRecord() {
    inputLabel_->setText(qt(record_.input.text));
    outputLabel_->setText(qt(record_.output.text));
    selectOption(options_, record_.option);
    wrap_->setText(qt(record_.wrapCaption()));
    wrap_->setChecked(record_.wrapCheck);
    extract_->setChecked(record_.extractEnsembleCheck);
    sim_->setChecked(record_.simCheck);
    showFields();
}

void TransformWidget::refreshGlobals() {
    showRecord();
}

void TransformWidget::transform() {
    runLong([this](core::Progress& progress) {
        record_.transform(context_.dialogs, progress);
        showRecord();
    });
}

} // namespace varo::gui
