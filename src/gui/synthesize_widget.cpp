#include "gui/synthesize_widget.hpp"
#include "gui/widget_helpers.hpp"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace varo::gui {

SynthesizeWidget::SynthesizeWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Weather Generator", parent), record_(context.state) {
    addKey("Synthesize", "tb1Synthesize", [this] { synthesize(); });
    addClosingKeys([this] {
        record_.reset();
        showFields();
        showRecord();
    });

    auto* columns = new QHBoxLayout();
    auto* left = new QVBoxLayout();
    left->addWidget(parameterGroup());
    left->addWidget(runGroup());
    left->addStretch(1);
    columns->addLayout(left, 1);
    columns->addWidget(detailsGroup(), 1);
    content()->addLayout(columns, 1);
    showRecord();
}

QWidget* SynthesizeWidget::parameterGroup() {
    auto* group = new QGroupBox("Parameter and predictor files", this);
    auto* form = new QFormLayout(group);

    auto* parButton = namedButton("Select Parameter File", "PARFileButton", group);
    parFileLabel_ = namedLabel("PARFileText", group);
    form->addRow(parButton, parFileLabel_);
    connect(parButton, &QPushButton::clicked, this, [this] {
        record_.pickParFile(context_.dialogs);
        showRecord();
    });

    auto* folderButton = namedButton("Predictor Directory", "Dir2", group);
    folderLabel_ = namedLabel("Dir2Path", group);
    folderLabel_->setWordWrap(true);
    form->addRow(folderButton, folderLabel_);
    connect(folderButton, &QPushButton::clicked, this, [this] {
        record_.pickPredictorFolder(context_.dialogs);
        showRecord();
    });

    auto* view = namedButton("View Details", "ViewPredictors", group);
    form->addRow(view);
    connect(view, &QPushButton::clicked, this, [this] {
        if (context_.runs.running()) {
            return;
        }
        record_.viewDetails(context_.dialogs);
        showFields();
        showRecord();
    });
    return group;
}

QWidget* SynthesizeWidget::detailsGroup() {
    auto* group = new QGroupBox("Model details", this);
    auto* layout = new QVBoxLayout(group);
    auto* form = new QFormLayout();
    noOfPred_ = resultField("NoOfPredText", group);
    rStart_ = resultField("RStartText", group);
    rLength_ = resultField("RLengthText", group);
    autoRegressLabel_ = namedLabel("AutoRegressLabel", group);
    processLabel_ = namedLabel("ProcessLabel", group);
    form->addRow("No. of predictors:", noOfPred_);
    form->addRow("Record start:", rStart_);
    form->addRow("Record length (days):", rLength_);
    form->addRow("Autoregression:", autoRegressLabel_);
    form->addRow("Process:", processLabel_);
    layout->addLayout(form);
    layout->addWidget(new QLabel("Predictand and predictors:", group));
    predictorList_ = new QListWidget(group);
    predictorList_->setObjectName("PredictorList");
    predictorList_->setSelectionMode(QAbstractItemView::NoSelection);
    layout->addWidget(predictorList_, 1);
    return group;
}

QWidget* SynthesizeWidget::runGroup() {
    auto* group = new QGroupBox("Synthesis", this);
    auto* form = new QFormLayout(group);
    form->addRow("Synthesis start (dd/mm/yyyy):", bindField("FStartText", record_.fStartText));
    form->addRow("Synthesis length (days):", bindField("FLengthText", record_.fLengthText));
    form->addRow("Ensemble size (1 to 100):", bindField("ESize", record_.eSize));
    auto* save = namedButton("Save To .OUT File", "SaveAsButton", group);
    outFileLabel_ = namedLabel("OutFileText", group);
    form->addRow(save, outFileLabel_);
    connect(save, &QPushButton::clicked, this, [this] {
        record_.pickOutFile(context_.dialogs);
        showRecord();
    });
    return group;
}

void SynthesizeWidget::showRecord() {
    parFileLabel_->setText(qt(record_.parFile.text));
    outFileLabel_->setText(qt(record_.outFile.text));
    folderLabel_->setText(qt(record_.predictorFolder));
    noOfPred_->setText(qt(record_.noOfPredText));
    rStart_->setText(qt(record_.rStartText));
    rLength_->setText(qt(record_.rLengthText));
    autoRegressLabel_->setText(qt(record_.autoRegressLabel));
    processLabel_->setText(qt(record_.processLabel));
    predictorList_->clear();
    for (const std::string& name : record_.predictorList) {
        predictorList_->addItem(qt(name));
    }
}

void SynthesizeWidget::refreshGlobals() {
    record_.refreshGlobals();
    showFields();
}

void SynthesizeWidget::synthesize() {
    runLong([this](core::Progress& progress) {
        record_.synthesize(context_.dialogs, progress);
        showFields();
        showRecord();
    });
}

} // namespace varo::gui
