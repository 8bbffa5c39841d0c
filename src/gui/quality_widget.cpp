#include "gui/quality_widget.hpp"
#include "gui/widget_helpers.hpp"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace varo::gui {

QualityWidget::QualityWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Quality Control", parent), record_(context.state) {
    addKey("Check File", "tb1Check", [this] { check(); });
    addClosingKeys([this] {
        record_.reset();
        showRecord();
    });

    auto* fileRow = new QHBoxLayout();
    auto* select = new QPushButton("Select File", this);
    select->setObjectName("SelectFileButton");
    fileLabel_ = new QLabel(this);
    fileLabel_->setObjectName("SelectFileText");
    fileRow->addWidget(select);
    fileRow->addWidget(fileLabel_, 1);
    content()->addLayout(fileRow);
    connect(select, &QPushButton::clicked, this, [this] {
        record_.pickFile(context_.dialogs);
        showRecord();
    });

    auto* group = new QGroupBox("Results", this);
    group->setMaximumWidth(520);
    auto* form = new QFormLayout(group);
    const std::pair<const char*, std::pair<const char*, std::string*>> rows[] = {
        {"Number of values in file:", {"TotalText", &record_.totalText}},
        {"Missing values:", {"MissingText", &record_.missingText}},
        {"Number of values ok:", {"TotalOKText", &record_.totalOkText}},
        {"Missing value code:", {"MissingCode", &record_.missingCodeText}},
        {"Minimum value:", {"MinText", &record_.minText}},
        {"Maximum value:", {"MaxText", &record_.maxText}},
        {"Mean:", {"MeanText", &record_.meanText}},
        {"Largest difference:", {"MaxDiff", &record_.maxDiffText}},
        {"   between value:", {"MaxDiffVal1", &record_.maxDiffVal1Text}},
        {"   and the next:", {"MaxDiffVal2", &record_.maxDiffVal2Text}},
        {"Values above threshold:", {"ThreshCount", &record_.threshCountText}},
    };
    for (const auto& [caption, field] : rows) {
        QLineEdit* edit = resultField(field.first, group);
        form->addRow(caption, edit);
        results_.emplace_back(edit, field.second);
    }
    content()->addWidget(group);
    content()->addStretch(1);
    showRecord();
}

void QualityWidget::showRecord() {
    fileLabel_->setText(qt(record_.file.text));
    for (const auto& [edit, text] : results_) {
        edit->setText(QString::fromStdString(*text));
    }
}

void QualityWidget::refreshGlobals() {
    record_.refreshGlobals();
    showRecord();
}

void QualityWidget::check() {
    runLong([this](core::Progress& progress) {
        // The results stand on the screen before the closing box asks to be closed.
        ShowFirstDialogs dialogs(context_.dialogs, [this] { showRecord(); });
        record_.check(dialogs, progress);
        showRecord();
    });
}

} // namespace varo::gui
