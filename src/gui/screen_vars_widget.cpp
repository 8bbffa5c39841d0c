#include "gui/screen_vars_widget.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/predictor_list.hpp"
#include "gui/widget_helpers.hpp"
#include "screens/chart_sources.hpp"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTextBlock>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

namespace varo::gui {

ScreenVarsWidget::ScreenVarsWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Screen Variables", parent), record_(context.state) {
    addKey("Correlation", "tb1Correlation", [this] { analyse(false); });
    addKey("Explained Variance", "tb1Variance", [this] { analyse(true); });
    addKey("Scatter", "tb1Scatter", [this] { scatter(); });
    addKey("Save Report...", "tb1Save", [this] { saveReport(); });
    addClosingKeys([this] {
        record_.reset();
        showRecord();
    });

    auto* top = new QHBoxLayout();
    top->addWidget(buildFiles(), 3);
    top->addWidget(buildChoices(), 2);
    content()->addLayout(top);
    results_ = new QPlainTextEdit(this);
    results_->setObjectName("ResultsText");
    results_->setReadOnly(true);
    results_->setLineWrapMode(QPlainTextEdit::NoWrap);
    results_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    content()->addWidget(results_, 1);
    savedTo_ = namedLabel("SavedReport", this);
    savedTo_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    content()->addWidget(savedTo_);
    showRecord();
}

QWidget* ScreenVarsWidget::buildFiles() {
    auto* box = new QGroupBox("Files", this);
    auto* layout = new QVBoxLayout(box);
    const PickRow predictand =
        addPickRow(layout, "Select Predictand", "PredtandButton", "PtandText", box);
    auto* pickPredictand = predictand.button;
    predictandLabel_ = predictand.label;
    predictors_ = new PredictorList(
        context_, record_.predictors, true,
        [this](const auto& items) { record_.selectPredictorItems(items, context_.dialogs); }, box);
    layout->addWidget(predictors_, 1);

    connect(pickPredictand, &QPushButton::clicked, this, [this] {
        record_.pickPredictand(context_.dialogs);
        showRecord();
    });
    return box;
}

QWidget* ScreenVarsWidget::buildChoices() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* box = new QGroupBox("Analysis", this);
    auto* form = new QFormLayout(box);
    recordStart_ = resultField("SDate", box);
    recordEnd_ = resultField("EDate", box);
    form->addRow("Record start:", recordStart_);
    form->addRow("Record end:", recordEnd_);
    form->addRow("Fit start:", bindField("FSDate", record_.fsDate, [this, &dialogs] {
                     return record_.checkFitStart(dialogs);
                 }));
    form->addRow("Fit end:", bindField("FEdate", record_.feDate,
                                       [this, &dialogs] { return record_.checkFitEnd(dialogs); }));
    period_ = new QComboBox(box);
    period_->setObjectName("DatesCombo");
    for (const std::string& entry : screens::periodEntries(context_.state)) {
        period_->addItem(qt(entry));
    }
    form->addRow("Period:", period_);

    auto* processRow = new QHBoxLayout();
    process_ = optionGroup(box, processRow, "ParmOpt", {"Conditional", "Unconditional"},
                           [this](int id) { record_.setProcess(id, context_.dialogs); });
    form->addRow("Process:", processRow);
    autoregression_ = new QCheckBox("Autoregression", box);
    autoregression_->setObjectName("AutoRegressionTick");
    form->addRow(autoregression_);
    form->addRow("Significance level:",
                 bindField("SigLevelText", record_.sigLevelText,
                           [this, &dialogs] { return record_.checkSigLevel(dialogs); }));

    connect(period_, &QComboBox::activated, this,
            [this](int index) { record_.datesCombo = index; });
    connect(autoregression_, &QCheckBox::clicked, this,
            [this](bool on) { record_.setAutoregression(on, context_.dialogs); });
    return box;
}

void ScreenVarsWidget::showRecord() {
    predictandLabel_->setText(qt(record_.predictand.text));
    predictors_->showPicker();
    recordStart_->setText(qt(record_.sDate));
    recordEnd_->setText(qt(record_.eDate));
    period_->setCurrentIndex(record_.datesCombo);
    selectOption(process_, record_.parmOpt);
    autoregression_->setChecked(record_.autoRegressionTick);
    showFields();
    showReport();
}

// The report in its columns; the best predictor of each month stands out in bold red.
void ScreenVarsWidget::showReport() {
    savedTo_->clear();
    if (!record_.report) {
        results_->clear();
        return;
    }
    results_->setPlainText(qt(record_.report->joined()));
    QTextCharFormat best;
    best.setFontWeight(QFont::Bold);
    best.setForeground(QColor(192, 0, 0));
    for (const screening::Highlight& mark : record_.report->highlights) {
        const QTextBlock block =
            results_->document()->findBlockByNumber(static_cast<int>(mark.line));
        QTextCursor cursor(block);
        cursor.setPosition(block.position() + static_cast<int>(mark.column));
        cursor.setPosition(block.position() + static_cast<int>(mark.column + mark.length),
                           QTextCursor::KeepAnchor);
        cursor.setCharFormat(best);
    }
}

void ScreenVarsWidget::saveReport() {
    if (const auto path = record_.pickAndSaveReport(context_.dialogs)) {
        savedTo_->setText("Report saved to " + qt(*path));
    }
}

void ScreenVarsWidget::refreshGlobals() {
    record_.refreshGlobals();
    showRecord();
}

void ScreenVarsWidget::analyse(bool variance) {
    runLong([this, variance](core::Progress& progress) {
        if (variance) {
            record_.explainVariance(context_.dialogs, progress);
        } else {
            record_.correlate(context_.dialogs, progress);
        }
        showRecord();
    });
}

void ScreenVarsWidget::scatter() {
    runLong([this](core::Progress& progress) { record_.scatter(context_.dialogs, progress); });
    showRecord();
    if (!record_.scatterPoints) {
        return;
    }
    replaceChartScreen(scatterChart_, context_.state, context_.dialogs,
                       screens::scatterAnalysisChart(*record_.scatterPoints, context_.state),
                       window());
}

ChartWindow* ScreenVarsWidget::scatterChart() const {
    return scatterChart_;
}

} // namespace varo::gui
