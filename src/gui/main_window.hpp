// The desktop program's window: the hub's toolbar in the order of the work, the opening
// screen, one work screen at a time (built afresh on each visit), the settings screens and
// the help viewer. Leaving asks "Exit VARO?".
#pragma once

#include "gui/qt_dialogs.hpp"
#include "gui/remembering_dialogs.hpp"
#include "gui/screen_context.hpp"
#include "gui/screen_widget.hpp"
#include "screens/navigation.hpp"

#include <QMainWindow>
#include <map>
#include <memory>

class QAction;
class QDialog;
class QStackedWidget;
class QToolBar;

namespace varo::gui {

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // `dialogs` replaces the message boxes (tests script it); null means real boxes.
    MainWindow(core::ProgramState& state, screens::Dialogs* dialogs = nullptr,
               QWidget* parent = nullptr);
    ~MainWindow() override;

    // The opening screen when Splash is on, the hub's home page otherwise.
    void showStart();
    void showHome();
    // Goes to a work screen; the key of the screen already showing does nothing.
    void goTo(screens::ScreenKey key);
    void openSettings();
    // The user guide, at the section of the page on show.
    void openHelp();
    // A new advanced settings dialog over this window, not yet shown.
    QDialog* advancedSettingsDialog();
    // The page on show: the intro, the home page, a work screen or the settings screen.
    QWidget* currentPage() const;
    ScreenWidget* currentScreen() const;
    QAction* toolbarAction(screens::ScreenKey key) const { return keys_.at(key); }
    bool screenAvailable(screens::ScreenKey key) const;
    screens::Dialogs& dialogs() { return *dialogs_; }
    core::ProgramState& state() { return state_; }
    RunHost& runs() { return *runs_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void buildToolbar();
    void replacePage(QWidget* page);
    void closeSettings();
    void exitWithoutAsking();
    void setPickerScreen();

    core::ProgramState& state_;
    std::unique_ptr<QtDialogs> ownDialogs_;
    screens::Dialogs* dialogs_;
    // The screens' pickers open where they were last used, while the window lives.
    std::unique_ptr<RememberingDialogs> pickers_;
    std::unique_ptr<RunHost> runs_;
    std::unique_ptr<ScreenContext> context_;
    screens::Hub hub_;
    QStackedWidget* pages_;
    QWidget* page_ = nullptr;
    QWidget* settingsPage_ = nullptr;
    std::map<screens::ScreenKey, QAction*> keys_;
    QToolBar* hubBar_ = nullptr;
    bool leaving_ = false;
};

} // namespace varo::gui
