#include "gui/results_table_view.hpp"
#include "gui/widget_helpers.hpp"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>
#include <map>

namespace varo::gui {

namespace {

const QColor Emphasis(192, 0, 0);

QTableWidgetItem* labelItem(const std::string& text) {
    auto* item = new QTableWidgetItem(qt(text));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

QTableWidgetItem* valueItem(const core::ResultsTable& table, const core::ResultsTable::Cell& cell,
                            const QPalette& palette) {
    QTableWidgetItem* item = labelItem(table.cellText(cell));
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    if (!cell.value) {
        item->setForeground(palette.color(QPalette::Disabled, QPalette::Text));
        item->setToolTip("Missing: the statistic could not be computed");
    } else if (cell.highlighted) {
        QFont bold = item->font();
        bold.setBold(true);
        item->setFont(bold);
        item->setForeground(Emphasis);
    }
    return item;
}

} // namespace

ResultsTableView::ResultsTableView(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    title_ = namedLabel("ResultsTitle", this);
    title_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(title_);
    grid_ = new QTableWidget(this);
    grid_->setObjectName("ResultsGrid");
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->verticalHeader()->hide();
    grid_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    grid_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    grid_->horizontalHeader()->setMinimumSectionSize(72); // room for "-999.000"
    grid_->setAlternatingRowColors(true);
    grid_->installEventFilter(this);
    layout->addWidget(grid_, 1);
}

void ResultsTableView::setTable(const core::ResultsTable& table) {
    title_->setText(qt(table.title));
    title_->setVisible(!table.title.empty());
    grid_->clear();
    grid_->setRowCount(static_cast<int>(table.rows.size()));
    grid_->setColumnCount(static_cast<int>(table.columns.size()) + 1);
    QStringList headings{qt(table.rowHeading)};
    for (const std::string& column : table.columns) {
        headings << qt(column);
    }
    for (const auto& group : table.columnGroups) {
        if (group.firstColumn < table.columns.size()) {
            QString& heading = headings[static_cast<int>(group.firstColumn) + 1];
            heading = qt(group.title) + "\n" + heading;
        }
    }
    grid_->setHorizontalHeaderLabels(headings);
    for (int r = 0; r < grid_->rowCount(); ++r) {
        const auto& row = table.rows[static_cast<size_t>(r)];
        grid_->setItem(r, 0, labelItem(row.label));
        for (size_t c = 0; c < row.cells.size(); ++c) {
            grid_->setItem(r, static_cast<int>(c) + 1,
                           valueItem(table, row.cells[c], grid_->palette()));
        }
    }
}

bool ResultsTableView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == grid_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        copySelection();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

// The selected cells row by row, the columns between them separated by tabs.
void ResultsTableView::copySelection() const {
    std::map<int, std::map<int, QString>> cells;
    for (const QTableWidgetItem* item : grid_->selectedItems()) {
        cells[item->row()][item->column()] = item->text();
    }
    QStringList lines;
    for (const auto& [row, columns] : cells) {
        QStringList fields;
        for (const auto& [column, text] : columns) {
            fields << text;
        }
        lines << fields.join('\t');
    }
    QApplication::clipboard()->setText(lines.join('\n'));
}

ResultsTabs::ResultsTabs(QWidget* parent) : QTabWidget(parent) {
    setDocumentMode(true);
}

void ResultsTabs::clearTables() {
    while (count() > 0) {
        QWidget* page = widget(0);
        removeTab(0);
        delete page;
    }
}

ResultsTableView* ResultsTabs::addTable(const QString& name, const core::ResultsTable& table) {
    auto* view = new ResultsTableView(this);
    view->setObjectName(name);
    view->setTable(table);
    addTab(view, name);
    return view;
}

ResultsTableView* ResultsTabs::view(int index) const {
    return qobject_cast<ResultsTableView*>(widget(index));
}

} // namespace varo::gui
