#include "gui/charts/chart_window.hpp"

#include "charts/chart_export.hpp"
#include "core/failure.hpp"
#include "gui/charts/chart_render.hpp"
#include "gui/charts/chart_settings_dialog.hpp"
#include "gui/widget_helpers.hpp"
#include "screens/file_choice.hpp"
#include "screens/navigation.hpp"

#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QClipboard>
#include <QMenuBar>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>

namespace varo::gui {

ChartWindow::ChartWindow(core::ProgramState& state, screens::Dialogs& dialogs,
                         charts::ChartModel model, QWidget* parent)
    : QMainWindow(parent, Qt::Window), dialogs_(dialogs), record_(std::move(model), state),
      view_(new QChartView(this)) {
    setObjectName(qt(charts::screenName(record_.screen())));
    setAttribute(Qt::WA_DeleteOnClose);
    view_->setObjectName("Chart");
    view_->setRenderHint(QPainter::Antialiasing);
    setCentralWidget(view_);
    buildMenu();
    resize(820, 640);
    redraw();
}

ChartWindow::~ChartWindow() {
    delete view_->chart();
}

void ChartWindow::buildMenu() {
    const auto add = [this](const QString& caption, const QString& name, auto action) {
        QAction* made = menuBar()->addAction(caption);
        made->setObjectName(name);
        connect(made, &QAction::triggered, this, action);
    };
    add("&Back", "mnuBack", [this] { close(); });
    add("&Copy", "mnuCopy", [this] { copyPicture(); });
    add("&Print...", "mnuPrint", [this] { printChart(); });
    add("Save &Picture...", "mnuSavePicture", [this] { savePicture(); });
    add("&Settings...", "mnuSettings", [this] { openSettings(); });
    add("&Reset", "mnuReset", [this] { resetAll(); });
    add("E&xit", "mnuExit", [this] { exitProgram(); });
}

void ChartWindow::redraw() {
    setWindowTitle(qt(record_.caption()));
    QChart* old = view_->chart();
    view_->setChart(buildChart(record_.chart()));
    delete old;
}

QSize ChartWindow::pictureSize() const {
    return view_->size();
}

QImage ChartWindow::picture() const {
    return renderChartImage(record_.chart(), pictureSize());
}

ChartSettingsDialog* ChartWindow::openSettings() {
    if (settings_ == nullptr) {
        settings_ = new ChartSettingsDialog(dialogs_, record_, this);
        connect(settings_, &ChartSettingsDialog::chartChanged, this, &ChartWindow::redraw);
    }
    settings_->show();
    settings_->raise();
    return settings_;
}

ChartSettingsDialog* ChartWindow::settingsDialog() const {
    return settings_;
}

void ChartWindow::resetAll() {
    if (settings_ != nullptr) {
        settings_->close();
    }
    record_.resetAll();
    redraw();
}

void ChartWindow::copyPicture() {
    QApplication::clipboard()->setImage(picture());
}

void ChartWindow::printChart() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    QPainter painter(&printer);
    const QRect page = painter.viewport();
    const QSize size = pictureSize();
    const double scale = std::min(static_cast<double>(page.width()) / size.width(),
                                  static_cast<double>(page.height()) / size.height());
    painter.scale(scale, scale);
    drawChart(record_.chart(), painter, size);
}

void ChartWindow::savePicture() {
    const auto path =
        dialogs_.pickSaveFile(screens::filter::Pictures, record_.state().defaultDir, "PNG");
    if (!path) {
        return;
    }
    if (const auto problem = charts::checkPicturePath(*path)) {
        dialogs_.error(*problem);
        return;
    }
    try {
        saveChartPicture(record_.chart(), *path, pictureSize());
    } catch (const core::Failure& failure) {
        dialogs_.error(core::reportFailureText(failure.number(), failure.description()));
    }
}

// Exit asks the program's own question through the main window.
void ChartWindow::exitProgram() {
    if (QWidget* main = parentWidget()) {
        main->window()->close();
    } else if (screens::confirmExit(dialogs_)) {
        QApplication::quit();
    }
}

ChartWindow* openChartScreen(core::ProgramState& state, screens::Dialogs& dialogs,
                             charts::ChartModel model, QWidget* parent) {
    auto* window = new ChartWindow(state, dialogs, std::move(model), parent);
    window->show();
    window->record().open(dialogs);
    return window;
}

void replaceChartScreen(QPointer<ChartWindow>& shown, core::ProgramState& state,
                        screens::Dialogs& dialogs, charts::ChartModel model, QWidget* parent) {
    if (shown != nullptr) {
        shown->close();
    }
    shown = openChartScreen(state, dialogs, std::move(model), parent);
}

} // namespace varo::gui
