#include "gui/calibrate_widget.hpp"
#include "gui/charts/chart_window.hpp"
#include "gui/predictor_list.hpp"
#include "gui/widget_helpers.hpp"

#include "core/failure.hpp"
#include "core/series_file.hpp"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTextEdit>
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
    auto* printKey = namedButton("Print", "menuPrint", this);
    auto* saveKey = namedButton("Save As Text", "menuSave", this);
    auto* backKey = namedButton("Back", "menuBack", this);
    keys->addWidget(printKey);
    keys->addWidget(saveKey);
    keys->addStretch(1);
    keys->addWidget(backKey);
    layout->addLayout(keys);
    page_ = new QTextEdit(this);
    page_->setObjectName("ResultsPage");
    page_->setReadOnly(true);
    page_->setHtml(
        reportHtml(*record.report)
            .replace("</body></html>", coefficientsHtml(record.coefficients, record.stepwiseLines) +
                                           "</body></html>"));
    layout->addWidget(page_, 1);
    resize(760, 720);
    connect(printKey, &QPushButton::clicked, this, [this] { print(); });
    connect(saveKey, &QPushButton::clicked, this, [this] { saveAsText(); });
    connect(backKey, &QPushButton::clicked, this, &QDialog::close);
}

QString CalibrateResultsDialog::reportHtml(const calibration::CalibrationReport& report) {
    QString html = "<html><body style='font-family: monospace'>";
    for (const std::string& line : report.headingLines) {
        html += "<div>" + qt(line).toHtmlEscaped().replace(" ", "&nbsp;") + "</div>";
    }
    for (const calibration::ReportTable& table : report.tables) {
        html += "<p style='margin-top: 12px'><b>" + qt(table.title) + "</b>";
        if (!table.crossValidationTitle.empty()) {
            html += " &nbsp; <b>" + qt(table.crossValidationTitle) + "</b> (from column " +
                    QString::number(table.crossValidationColumn + 1) + ")";
        }
        html += "</p><table cellspacing='0' cellpadding='4'><tr>";
        for (const std::string& heading : table.headings) {
            html += "<th align='left' width='110'>" + qt(heading) + "</th>";
        }
        html += "</tr>";
        for (const auto& row : table.rows) {
            html += "<tr>";
            for (const calibration::ReportCell& cell : row) {
                const QString text = qt(cell.text).toHtmlEscaped();
                html += cell.aboveCritical
                            ? "<td><b><font color='#c00000'>" + text + "</font></b></td>"
                            : "<td><pre style='margin: 0'>" + text + "</pre></td>";
            }
            html += "</tr>";
        }
        html += "</table>";
    }
    if (report.anyAboveCritical) {
        html += "<p>Values in <b><font color='#c00000'>bold red</font></b> are Chow statistics "
                "above their critical value.</p>";
    }
    return html + "</body></html>";
}

QString CalibrateResultsDialog::coefficientsHtml(const std::vector<core::ResultsTable>& tables,
                                                 const std::vector<std::string>& stepwiseLines) {
    QString html;
    for (const core::ResultsTable& table : tables) {
        html += "<p style='margin-top: 12px'><b>" + qt(table.title).toHtmlEscaped() +
                "</b></p><table cellspacing='0' cellpadding='4'><tr><th align='left' width='110'>" +
                qt(table.rowHeading).toHtmlEscaped() + "</th>";
        for (const std::string& column : table.columns) {
            html += "<th align='right' width='110'>" + qt(column).toHtmlEscaped() + "</th>";
        }
        html += "</tr>";
        for (const auto& row : table.rows) {
            html += "<tr><td>" + qt(row.label).toHtmlEscaped() + "</td>";
            for (const auto& cell : row.cells) {
                html += "<td align='right'>" + qt(table.cellText(cell)).toHtmlEscaped() + "</td>";
            }
            html += "</tr>";
        }
        html += "</table>";
    }
    if (!stepwiseLines.empty()) {
        html += "<p style='margin-top: 12px'>";
        for (const std::string& line : stepwiseLines) {
            html += "<div>" + qt(line).toHtmlEscaped() + "</div>";
        }
        html += "</p>";
    }
    return html;
}

void CalibrateResultsDialog::print() {
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted) {
        page_->document()->print(&printer);
    }
}

void CalibrateResultsDialog::saveAsText() {
    const auto path = context_.dialogs.pickSaveFile("Text Files (*.TXT)|*.TXT|All Files (*.*)|*.*",
                                                    context_.state.defaultDir, "TXT");
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
