#include "gui/main_window.hpp"

#include "gui/help_viewer.hpp"
#include "gui/intro_widget.hpp"
#include "gui/screen_registry.hpp"
#include "gui/settings_widget.hpp"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedWidget>
#include <QToolBar>

namespace varo::gui {

MainWindow::MainWindow(core::ProgramState& state, screens::Dialogs* dialogs, QWidget* parent)
    : QMainWindow(parent), state_(state) {
    setWindowTitle("VARO");
    setObjectName("Main");
    resize(1100, 760);
    if (dialogs == nullptr) {
        ownDialogs_ = std::make_unique<QtDialogs>(this);
        dialogs = ownDialogs_.get();
    }
    dialogs_ = dialogs;
    pickers_ = std::make_unique<RememberingDialogs>(*dialogs_);
    runs_ = std::make_unique<RunHost>(state_, *dialogs_, this);
    context_ = std::make_unique<ScreenContext>(ScreenContext{
        state_, *pickers_, *runs_, [this] { openSettings(); }, [this] { openHelp(); }});
    pages_ = new QStackedWidget(this);
    setCentralWidget(pages_);
    buildMenus();
    buildToolbar();
}

MainWindow::~MainWindow() {
    // Pages refer to the context; they go before it does.
    delete pages_;
}

void MainWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    QAction* settings = file->addAction("&Settings...");
    settings->setObjectName("tb1Settings");
    connect(settings, &QAction::triggered, this, &MainWindow::openSettings);
    file->addSeparator();
    QAction* exit = file->addAction("E&xit");
    exit->setObjectName("mnuExit");
    connect(exit, &QAction::triggered, this, &QMainWindow::close);
    QMenu* help = menuBar()->addMenu("&Help");
    QAction* guide = help->addAction("&User Guide");
    guide->setShortcut(QKeySequence::HelpContents);
    connect(guide, &QAction::triggered, this, &MainWindow::openHelp);
    QAction* about = help->addAction("&About VARO");
    connect(about, &QAction::triggered, this, [this] {
        dialogs_->message(
            "About VARO",
            "VARO 0.1.0\r\nStatistical downscaling of daily climate data: quality control, "
            "transforms, predictor screening, calibration, weather generation, scenarios "
            "and analysis of observed and modelled series.",
            screens::Icon::Information);
    });
}

void MainWindow::buildToolbar() {
    hubBar_ = addToolBar("Hub");
    hubBar_->setObjectName("Toolbar");
    hubBar_->setMovable(false);
    hubBar_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (const screens::ToolbarKey& key : screens::hubToolbar()) {
        QAction* action = hubBar_->addAction(
            QString::fromUtf8(key.caption.data(), static_cast<qsizetype>(key.caption.size())));
        action->setObjectName(
            QString::fromUtf8(key.name.data(), static_cast<qsizetype>(key.name.size())));
        const bool available = key.key == screens::ScreenKey::Home || screenAvailable(key.key);
        action->setEnabled(available);
        action->setToolTip(available ? QString::fromUtf8(key.toolTip.data(),
                                                         static_cast<qsizetype>(key.toolTip.size()))
                                     : QString("Not available in this version"));
        const screens::ScreenKey target = key.key;
        connect(action, &QAction::triggered, this, [this, target] { goTo(target); });
        keys_[key.key] = action;
    }
    hubBar_->addSeparator();
    QAction* settings = hubBar_->addAction("Settings");
    settings->setObjectName("tb1SettingsKey");
    connect(settings, &QAction::triggered, this, &MainWindow::openSettings);
    hubBar_->setEnabled(false);
}

bool MainWindow::screenAvailable(screens::ScreenKey key) const {
    return screenFactories().count(key) > 0;
}

void MainWindow::replacePage(QWidget* page) {
    closeSettings();
    pages_->addWidget(page);
    pages_->setCurrentWidget(page);
    if (page_ != nullptr) {
        pages_->removeWidget(page_);
        page_->deleteLater();
    }
    page_ = page;
}

void MainWindow::showStart() {
    if (!state_.splash) {
        showHome();
        return;
    }
    auto* intro = new IntroWidget(state_, this);
    connect(intro, &IntroWidget::started, this, &MainWindow::showHome);
    connect(intro, &IntroWidget::exitRequested, this, &MainWindow::exitWithoutAsking);
    hubBar_->setEnabled(false);
    replacePage(intro);
}

void MainWindow::showHome() {
    hubBar_->setEnabled(true);
    hub_ = screens::Hub();
    replacePage(new HomeWidget(this));
    setPickerScreen();
}

void MainWindow::goTo(screens::ScreenKey key) {
    if (runs_->running()) {
        return;
    }
    if (key == screens::ScreenKey::Home) {
        if (hub_.go(key)) {
            showHome();
        }
        return;
    }
    const auto factory = screenFactories().find(key);
    if (factory == screenFactories().end() || !hub_.go(key)) {
        closeSettings();
        return;
    }
    replacePage(factory->second(*context_));
    setPickerScreen();
}

// The pickers that open now are those of the page on show.
void MainWindow::setPickerScreen() {
    if (settingsPage_ != nullptr) {
        pickers_->setScreen("settings", false);
        return;
    }
    const screens::ScreenKey key = hub_.current();
    pickers_->setScreen(std::to_string(static_cast<int>(key)), picksPredictorFolder(key));
}

QWidget* MainWindow::currentPage() const {
    return pages_->currentWidget();
}

ScreenWidget* MainWindow::currentScreen() const {
    return qobject_cast<ScreenWidget*>(page_);
}

void MainWindow::openSettings() {
    if (settingsPage_ != nullptr || runs_->running()) {
        return;
    }
    settingsPage_ = new SettingsWidget(
        *context_, [this] { closeSettings(); }, this);
    pages_->addWidget(settingsPage_);
    pages_->setCurrentWidget(settingsPage_);
    setPickerScreen();
}

// Back from the settings: the screen below shows the global values afresh.
void MainWindow::closeSettings() {
    if (settingsPage_ == nullptr) {
        return;
    }
    pages_->removeWidget(settingsPage_);
    settingsPage_->deleteLater();
    settingsPage_ = nullptr;
    if (page_ != nullptr) {
        pages_->setCurrentWidget(page_);
    }
    setPickerScreen();
    if (ScreenWidget* screen = currentScreen()) {
        screen->refreshGlobals();
    }
}

QDialog* MainWindow::advancedSettingsDialog() {
    return new AdvSettingsDialog(*context_, this);
}

void MainWindow::openHelp() {
    const QString section =
        settingsPage_ != nullptr ? QString("Settings") : helpSection(hub_.current());
    auto* viewer = new HelpViewer(this, section);
    viewer->setAttribute(Qt::WA_DeleteOnClose);
    viewer->show();
}

void MainWindow::exitWithoutAsking() {
    leaving_ = true;
    close();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (leaving_) {
        event->accept();
        return;
    }
    if (runs_->running() || !screens::confirmExit(*dialogs_)) {
        event->ignore();
        return;
    }
    leaving_ = true;
    event->accept();
}

} // namespace varo::gui
