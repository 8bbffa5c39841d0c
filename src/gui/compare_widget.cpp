#include "gui/compare_widget.hpp"

#include "gui/charts/chart_window.hpp"
#include "gui/widget_helpers.hpp"

#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QVBoxLayout>

namespace varo::gui {

CompareWidget::CompareWidget(ScreenContext& context, QWidget* parent)
    : ScreenWidget(context, "Compare Results", parent), record_(context.state) {
    addKey("Plot", "tb1Plot", [this] { plot(); });
    addClosingKeys([this] {
        record_.reset();
        showRecord();
    });
    auto* files = new QHBoxLayout();
    files->addWidget(buildFile(0), 1);
    files->addWidget(buildFile(1), 1);
    content()->addLayout(files, 1);

    auto* kind = new QGroupBox("Chart", this);
    auto* kindRow = new QHBoxLayout(kind);
    // Option ids are the screen's: Bar 0, Line 1.
    chartOption_ = optionGroup(kind, kindRow, "ChartOption", {"Bar", "Line"},
                               [this](int option) { record_.selectChart(option); });
    kindRow->addStretch(1);
    content()->addWidget(kind);
    showRecord();
}

QWidget* CompareWidget::buildFile(size_t which) {
    const QString number = QString::number(which + 1);
    auto* box = new QGroupBox("File " + number, this);
    auto* layout = new QVBoxLayout(box);
    const PickRow pick = addPickRow(layout, "Select File " + number + "...",
                                    "File" + number + "Button", "File" + number + "Label", box);
    fileLabels_[which] = pick.label;
    connect(pick.button, &QPushButton::clicked, this, [this, which] {
        record_.pickFile(which, context_.dialogs);
        showRecord();
    });
    if (which == 1) {
        // Beside the file's name, so that both statistic lists start level.
        auto* clear = namedButton("Clear", "ClearFile2Button", box);
        layout->itemAt(layout->count() - 1)->layout()->addWidget(clear);
        connect(clear, &QPushButton::clicked, this, [this] {
            record_.clearFile(1);
            showRecord();
        });
    }
    layout->addWidget(new QLabel("Statistic:", box));
    auto* list = new QListWidget(box);
    list->setObjectName("StatList" + number);
    layout->addWidget(list, 1);
    statisticLists_[which] = list;
    connect(list, &QListWidget::itemClicked, this, [this, which](QListWidgetItem* item) {
        record_.pickStatistic(which, item->text().toStdString());
        showRecord();
    });
    return box;
}

void CompareWidget::showRecord() {
    for (size_t which = 0; which < 2; ++which) {
        const auto& file = record_.files[which];
        fileLabels_[which]->setText(qt(file.fileText));
        QListWidget* list = statisticLists_[which];
        const QSignalBlocker blocker(list);
        list->clear();
        for (const std::string& name : file.statisticList()) {
            list->addItem(qt(name));
        }
        if (file.statistic) {
            list->setCurrentRow(static_cast<int>(*file.statistic));
        }
    }
    selectOption(chartOption_, record_.chartOption);
}

ChartWindow* CompareWidget::chartWindow() const {
    return chart_;
}

void CompareWidget::plot() {
    auto chart = record_.plot(context_.dialogs);
    if (!chart) {
        return;
    }
    replaceChartScreen(chart_, context_.state, context_.dialogs, std::move(*chart), window());
}

} // namespace varo::gui
