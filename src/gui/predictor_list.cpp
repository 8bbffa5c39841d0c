#include "gui/predictor_list.hpp"
#include "gui/widget_helpers.hpp"

#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace varo::gui {

PredictorList::PredictorList(ScreenContext& context, screens::PredictorPicker& picker,
                             bool describe, Select select, QWidget* parent)
    : QWidget(parent), context_(context), picker_(picker), describe_(describe),
      select_(std::move(select)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    const PickRow folder = addPickRow(layout, "Predictor Folder...", "Dir2", "Dir2Text", this);
    folder_ = folder.label;
    folder_->setWordWrap(true);
    files_ = new QTreeWidget(this);
    files_->setObjectName("File2");
    files_->setRootIsDecorated(false);
    files_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    if (describe_) {
        files_->setHeaderLabels({"Predictor file", "Description"});
        files_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    } else {
        files_->setHeaderLabels({"Predictor file"});
    }
    layout->addWidget(files_, 1);
    count_ = namedLabel("NoOfFiles", this);
    layout->addWidget(count_);

    connect(folder.button, &QPushButton::clicked, this, [this] {
        picker_.pickFolder(context_.dialogs);
        showPicker();
    });
    connect(files_, &QTreeWidget::itemSelectionChanged, this, [this] {
        std::vector<size_t> chosen;
        for (QTreeWidgetItem* item : files_->selectedItems()) {
            chosen.push_back(static_cast<size_t>(files_->indexOfTopLevelItem(item)));
        }
        select_(chosen);
        showCount();
    });
}

void PredictorList::showPicker() {
    folder_->setText(qt(picker_.folder));
    const QSignalBlocker quiet(files_);
    files_->clear();
    for (size_t i = 0; i < picker_.files.size(); ++i) {
        auto* item = new QTreeWidgetItem(files_);
        item->setText(0, qt(picker_.files[i]));
        if (describe_) {
            item->setText(1, qt(screens::predictorDescription(context_.state, picker_.files[i])));
        }
        item->setSelected(picker_.isSelected(i));
    }
    showCount();
}

void PredictorList::showCount() {
    count_->setText(QString::number(picker_.count()) + " selected");
}

} // namespace varo::gui
