// Results tables on screen. A `core::ResultsTable` becomes a grid with the row labels in
// the first column and the numbers right-aligned, each cell the text the table gives it, so
// that the screen reads as the command line prints and the file stores. Missing cells show
// the table's missing text in grey; highlighted cells stand out in bold red, as on the
// other result pages. A column group's title stands over the heading of its first column.
// Several tables share a screen as tabs. Ctrl+C copies the selected
// cells as tab-separated lines for a spreadsheet.
#pragma once

#include "core/results_table.hpp"

#include <QTabWidget>
#include <QWidget>

class QLabel;
class QTableWidget;

namespace varo::gui {

class ResultsTableView : public QWidget {
    Q_OBJECT
public:
    explicit ResultsTableView(QWidget* parent = nullptr);

    void setTable(const core::ResultsTable& table);
    QTableWidget* grid() const { return grid_; }
    QLabel* title() const { return title_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void copySelection() const;

    QLabel* title_;
    QTableWidget* grid_;
};

// Named results tables, one tab each, in the order added.
class ResultsTabs : public QTabWidget {
    Q_OBJECT
public:
    explicit ResultsTabs(QWidget* parent = nullptr);

    void clearTables();
    ResultsTableView* addTable(const QString& name, const core::ResultsTable& table);
    ResultsTableView* view(int index) const;
};

} // namespace varo::gui
