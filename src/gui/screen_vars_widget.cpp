#include "gui/screen_vars_widget.hpp"
#include "gui/charts/chart_window.hpp"
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
    addKey("Reset", "tb1Reset", [this] {
        record_.reset();
        showRecord();
    });
    addKey("Settings", "tb1Settings", [this] { context_.openSettings(); });
    addKey("Help", "tb1Help", [this] { context_.openHelp(); });

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
    const PickRow folder = addPickRow(layout, "Predictor Folder...", "Dir2", "Dir2Text", box);
    auto* pickFolder = folder.button;
    folderLabel_ = folder.label;

    predictors_ = new QTreeWidget(box);
    predictors_->setObjectName("File2");
    predictors_->setColumnCount(2);
    predictors_->setHeaderLabels({"Predictor file", "Description"});
    predictors_->setRootIsDecorated(false);
    predictors_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    predictors_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    layout->addWidget(predictors_, 1);
    selectedCount_ = namedLabel("NoOfFiles", box);
    layout->addWidget(selectedCount_);

    connect(pickPredictand, &QPushButton::clicked, this, [this] {
        record_.pickPredictand(context_.dialogs);
        showRecord();
    });
    connect(pickFolder, &QPushButton::clicked, this, [this] {
        if (const auto folder = context_.dialogs.pickFolder(record_.predictorFolder)) {
            record_.setPredictorFolder(*folder);
            showRecord();
        }
    });
    connect(predictors_, &QTreeWidget::itemSelectionChanged, this, [this] {
        std::vector<size_t> chosen;
        for (QTreeWidgetItem* item : predictors_->selectedItems()) {
            chosen.push_back(static_cast<size_t>(predictors_->indexOfTopLevelItem(item)));
        }
        record_.selectPredictorItems(chosen, context_.dialogs);
        selectedCount_->setText(qt(record_.noOfFiles) + " selected");
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
    process_ = new QButtonGroup(this);
    const QString captions[] = {"Conditional", "Unconditional"};
    for (int i = 0; i < 2; ++i) {
        auto* option = new QRadioButton(captions[i], box);
        option->setObjectName("ParmOpt" + QString::number(i));
        process_->addButton(option, i);
        processRow->addWidget(option);
    }
    form->addRow("Process:", processRow);
    autoregression_ = new QCheckBox("Autoregression", box);
    autoregression_->setObjectName("AutoRegressionTick");
    form->addRow(autoregression_);
    form->addRow("Significance level:",
                 bindField("SigLevelText", record_.sigLevelText,
                           [this, &dialogs] { return record_.checkSigLevel(dialogs); }));

    connect(period_, &QComboBox::activated, this,
            [this](int index) { record_.datesCombo = index; });
    connect(process_, &QButtonGroup::idClicked, this,
            [this](int id) { record_.setProcess(id, context_.dialogs); });
    connect(autoregression_, &QCheckBox::clicked, this,
            [this](bool on) { record_.setAutoregression(on, context_.dialogs); });
    return box;
}

// The folder's files with their descriptions, the record's selection marked.
void ScreenVarsWidget::showPredictorList() {
    const QSignalBlocker quiet(predictors_);
    predictors_->clear();
    for (const std::string& name : record_.predictorFiles) {
        auto* item = new QTreeWidgetItem(predictors_);
        item->setText(0, qt(name));
        item->setText(1, qt(screens::predictorDescription(context_.state, name)));
        const std::string path = (std::filesystem::path(record_.predictorFolder) / name).string();
        item->setSelected(std::find(record_.selectedPredictors.begin(),
                                    record_.selectedPredictors.end(),
                                    path) != record_.selectedPredictors.end());
    }
    selectedCount_->setText(qt(record_.noOfFiles) + " selected");
}

void ScreenVarsWidget::showRecord() {
    predictandLabel_->setText(qt(record_.ptandText));
    folderLabel_->setText(qt(record_.predictorFolder));
    showPredictorList();
    recordStart_->setText(qt(record_.sDate));
    recordEnd_->setText(qt(record_.eDate));
    period_->setCurrentIndex(record_.datesCombo);
    process_->button(record_.parmOpt)->setChecked(true);
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
