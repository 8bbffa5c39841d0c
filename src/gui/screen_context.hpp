// What every screen widget of the desktop program is given: the program state, the
// message boxes, and the host of runs (progress, busy cursor, Escape to cancel).
#pragma once

#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "screens/dialogs.hpp"

#include <QObject>
#include <QPointer>
#include <chrono>
#include <functional>

class QWidget;

namespace varo::gui {

class ProgressBar;

// A long run's progress: draws the bar, yields to the event loop (where Escape and repaints
// are handled) at most every few milliseconds, and reads the stop request of the state.
class GuiProgress final : public core::Progress {
public:
    GuiProgress(core::ProgramState& state, ProgressBar* bar);
    void report(long current, long total, std::string_view caption) override;
    bool stopRequested() override;

private:
    core::ProgramState& state_;
    QPointer<ProgressBar> bar_;
    std::chrono::steady_clock::time_point lastYield_{};
};

// Hosts one run at a time. While a run lasts the window takes no clicks, the cursor is busy
// and Escape asks "Do you really want to cancel processing?"; a Yes requests a stop.
class RunHost : public QObject {
    Q_OBJECT
public:
    // `window` is the main window: input to it is held back during a run, while message
    // boxes of the run still take theirs.
    RunHost(core::ProgramState& state, screens::Dialogs& dialogs, QWidget* window);
    ~RunHost() override;

    bool running() const { return running_; }
    // Runs `body` with a progress bound to `bar`; afterwards hides the bar and clears a stop
    // request that no loop read.
    void run(ProgressBar* bar, const std::function<void(core::Progress&)>& body);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    core::ProgramState& state_;
    screens::Dialogs& dialogs_;
    QWidget* window_;
    bool running_ = false;
    bool asking_ = false;
};

struct ScreenContext {
    core::ProgramState& state;
    screens::Dialogs& dialogs;
    RunHost& runs;
    std::function<void()> openSettings;
    std::function<void()> openHelp;
};

} // namespace varo::gui
