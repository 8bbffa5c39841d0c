#include "gui/calibrate_widget.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/predictor_list.hpp"
#include "gui/results_table_view.hpp"
#include "gui/widget_helpers.hpp"

#include "core/failure.hpp"
#include "core/series_file.hpp"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

namespace varo::gui {

namespace {

QString withWindowsLineEnds(const std::string& text) {
    QString out = qt(text);
    out.replace("\n", "\r\n");
    return out;
}

} // namespace

// ---------------------------------------------------------------------------------------
// The results window

CalibrateResultsDialog::CalibrateResultsDialog(ScreenContext& context,
                                               const screens::CalibrateScreen& record,
                                               QWidget* parent)
    : QDialog(parent), context_(context), text_(record.resultsText()) {
    setObjectName("CalibResultsFrm");
    setWindowTitle("Calibration Results");
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    auto* keys = new QHBoxLayout();
    auto* printKey = keyButton("Print", "menuPrint", this);
    auto* saveKey = keyButton("Save As Text", "menuSave", this);
    auto* backKey = keyButton("Back", "menuBack", this);
    keys->addWidget(printKey);
    keys->addWidget(saveKey);
    keys->addStretch(1);
    keys->addWidget(backKey);
    layout->addLayout(keys);

    const calibration::CalibrationReport& report = *record.report;
    QStringList heading;
    for (const std::string& line : report.headingLines) {
        heading << qt(line);
    }
    auto* headingLabel = namedLabel("ReportHeading", this);
    headingLabel->setText(heading.join('\n'));
    // The predictor names stand under one another, as in the text of the report.
    headingLabel->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    headingLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(headingLabel);

    tables_ = new ResultsTabs(this);
    tables_->setObjectName("ResultsTables");
    for (const auto* group : {&report.tables, &record.coefficients}) {
        for (const core::ResultsTable& table : *group) {
            tables_->addTable(qt(table.title), table);
        }
    }
    layout->addWidget(tables_, 1);

    QStringList notes;
    if (report.anyAboveCritical) {
        notes << "Values in bold red are Chow statistics above their critical value.";
    }
    for (const std::string& line : record.stepwiseLines) {
        notes << qt(line);
    }
    auto* noteLabel = namedLabel("ReportNotes", this);
    noteLabel->setText(notes.join('\n'));
    noteLabel->setVisible(!notes.isEmpty());
    layout->addWidget(noteLabel);
    resize(760, 560);
    connect(printKey, &QPushButton::clicked, this, [this] { print(); });
    connect(saveKey, &QPushButton::clicked, this, [this] { saveAsText(); });
    connect(backKey, &QPushButton::clicked, this, &QDialog::close);
}

// The report as its text, in a fixed-width font so that its columns stand.
void CalibrateResultsDialog::print() {
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted) {
        QTextDocument page;
        page.setDefaultFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        page.setPlainText(qt(text_));
        page.print(&printer);
    }
}

void CalibrateResultsDialog::saveAsText() {
    const auto path =
        context_.dialogs.pickSaveFile(screens::filter::Text, context_.state.defaultDir, "TXT");
    if (!path) {
        return;
    }
    try {
        core::TextFileWriter writer(*path);
        writer.write(withWindowsLineEnds(text_).toStdString());
        writer.close();
    } catch (const core::Failure& failure) {
        context_.dialogs.error(core::reportFailureText(failure.number(), failure.description()));
    }
}

// ---------------------------------------------------------------------------------------
// The screen

CalibrateWidget::CalibrateWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Calibrate Model", parent), record_(context.state) {
    addKey("Calibrate", "tb1Calibrate", [this] { calibrate(); });
    addClosingKeys([this] {
        record_.reset();
        showRecord();
    });
    auto* columns = new QHBoxLayout();
    columns->addWidget(buildFiles(), 1);
    columns->addWidget(buildModel(), 1);
    content()->addLayout(columns, 1);
    showRecord();
}

QWidget* CalibrateWidget::buildFiles() {
    auto* box = new QGroupBox("Files", this);
    auto* layout = new QVBoxLayout(box);
    const PickRow predictand =
        addPickRow(layout, "Select Predictand", "PredictandButton", "PtandText", box);
    auto* pickPredictand = predictand.button;
    predictandLabel_ = predictand.label;
    predictors_ = new PredictorList(
        context_, record_.predictors, false,
        [this](const auto& items) { record_.predictors.selectItems(items); }, box);
    layout->addWidget(predictors_, 1);

    auto* parRow = new QHBoxLayout();
    auto* pickPar = namedButton("Output File...", "PARFileButton", box);
    parFileLabel_ = namedLabel("PARFileText", box);
    parFileLabel_->setWordWrap(true);
    parRow->addWidget(pickPar);
    parRow->addWidget(parFileLabel_, 1);
    layout->addLayout(parRow);

    connect(pickPredictand, &QPushButton::clicked, this, [this] {
        record_.pickPredictand(context_.dialogs);
        showRecord();
    });
    connect(pickPar, &QPushButton::clicked, this, [this] {
        record_.pickParFile(context_.dialogs);
        showRecord();
    });
    return box;
}

QWidget* CalibrateWidget::buildModel() {
    screens::Dialogs& dialogs = context_.dialogs;
    auto* box = new QGroupBox("Model", this);
    auto* form = new QFormLayout(box);
    const auto dated = [this](bool ok) {
        noOfDays_->setText(qt(record_.noOfDays));
        return ok;
    };
    const auto narrow = [](QLineEdit* edit) {
        edit->setMaximumWidth(140);
        return edit;
    };
    form->addRow("Fit start:", narrow(bindField("FSDate", record_.fsDate, [this, &dialogs, dated] {
                     return dated(record_.checkFitStart(dialogs));
                 })));
    form->addRow("Fit end:", narrow(bindField("FEdate", record_.feDate, [this, &dialogs, dated] {
                     return dated(record_.checkFitEnd(dialogs));
                 })));
    noOfDays_ = namedLabel("NoOfDays", box);
    form->addRow("Days in fit:", noOfDays_);

    auto* modelRow = new QHBoxLayout();
    modelType_ = optionGroup(box, modelRow, "ModelType", {"Monthly", "Seasonal", "Annual"},
                             [this](int id) { record_.modelType = id; });
    form->addRow("Model type:", modelRow);
    auto* processRow = new QHBoxLayout();
    process_ = optionGroup(box, processRow, "ParmOpt", {"Conditional", "Unconditional"},
                           [this](int id) { record_.parmOpt = id; });
    form->addRow("Process:", processRow);
    autoregression_ = new QCheckBox("Include", box);
    autoregression_->setObjectName("AutoRegressionCheck");
    form->addRow("Autoregression:", autoregression_);
    chow_ = new QCheckBox("Calculate", box);
    chow_->setObjectName("IncludeChow");
    chow_->setToolTip("Calculate the Chow statistic.  Warning - this can take some time.");
    form->addRow("Chow test:", chow_);
    crossValidation_ = new QCheckBox("Perform", box);
    crossValidation_->setObjectName("xValidationCheck");
    form->addRow("Cross validation:", crossValidation_);
    form->addRow("Folds:",
                 narrow(bindField("NoOfFoldsText", record_.noOfFoldsText,
                                  [this, &dialogs] { return record_.checkFolds(dialogs); })));
    auto* graphRow = new QHBoxLayout();
    graphType_ = optionGroup(box, graphRow, "GraphType", {"None", "Scatter plot", "Histogram"},
                             [this](int id) { record_.graphType = id; });
    form->addRow("Residual plot:", graphRow);
    form->addRow("Histogram bars:",
                 narrow(bindField("HistogramCatsText", record_.histogramCatsText, [this, &dialogs] {
                     return record_.checkHistogramCategories(dialogs);
                 })));

    connect(autoregression_, &QCheckBox::toggled, this,
            [this](bool on) { record_.autoRegressionCheck = on; });
    connect(chow_, &QCheckBox::toggled, this, [this](bool on) { record_.includeChow = on; });
    connect(crossValidation_, &QCheckBox::toggled, this,
            [this](bool on) { record_.xValidationCheck = on; });
    return box;
}

void CalibrateWidget::showRecord() {
    predictandLabel_->setText(qt(record_.predictand.text));
    predictors_->showPicker();
    parFileLabel_->setText(qt(record_.parFileText));
    noOfDays_->setText(qt(record_.noOfDays));
    selectOption(modelType_, record_.modelType);
    selectOption(process_, record_.parmOpt);
    selectOption(graphType_, record_.graphType);
    autoregression_->setChecked(record_.autoRegressionCheck);
    chow_->setChecked(record_.includeChow);
    crossValidation_->setChecked(record_.xValidationCheck);
    showFields();
}

void CalibrateWidget::refreshGlobals() {
    record_.refreshGlobals();
    showRecord();
}

void CalibrateWidget::calibrate() {
    runLong([this](core::Progress& progress) { record_.calibrate(context_.dialogs, progress); });
    showRecord();
    showResults();
}

// The report in its window, then the residual plot over it, in place of the last run's.
void CalibrateWidget::showResults() {
    if (!record_.report) {
        return;
    }
    if (results_ != nullptr) {
        results_->close();
    }
    results_ = new CalibrateResultsDialog(context_, record_, window());
    connect(results_, &QObject::destroyed, this, [this] { results_ = nullptr; });
    results_->show();
    if (record_.residualPlot) {
        replaceChartScreen(residualChart_, context_.state, context_.dialogs, *record_.residualPlot,
                           window());
    } else if (residualChart_ != nullptr) {
        residualChart_->close();
    }
}

ChartWindow* CalibrateWidget::residualChart() const {
    return residualChart_;
}

} // namespace varo::gui
