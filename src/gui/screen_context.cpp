#include "gui/screen_context.hpp"

#include "gui/progress_bar.hpp"
#include "screens/navigation.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace varo::gui {

GuiProgress::GuiProgress(core::ProgramState& state, ProgressBar* bar) : state_(state), bar_(bar) {}

void GuiProgress::report(long current, long total, std::string_view caption) {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastYield_ < std::chrono::milliseconds(30)) {
        return;
    }
    lastYield_ = now;
    if (bar_) {
        bar_->setProgress(
            current, total,
            QString::fromUtf8(caption.data(), static_cast<qsizetype>(caption.size())));
    }
    QApplication::processEvents();
}

bool GuiProgress::stopRequested() {
    return state_.stopRequested.checkStop();
}

RunHost::RunHost(core::ProgramState& state, screens::Dialogs& dialogs, QWidget* window)
    : state_(state), dialogs_(dialogs), window_(window) {
    qApp->installEventFilter(this);
}

RunHost::~RunHost() {
    qApp->removeEventFilter(this);
}

void RunHost::run(ProgressBar* bar, const std::function<void(core::Progress&)>& body) {
    if (running_) {
        return;
    }
    // Restores the window however the run ends.
    struct Scope {
        RunHost& host;
        ProgressBar* bar;
        Scope(RunHost& owner, ProgressBar* progressBar) : host(owner), bar(progressBar) {
            host.running_ = true;
            host.state_.stopRequested.clear();
            QApplication::setOverrideCursor(Qt::WaitCursor);
            if (bar != nullptr) {
                bar->show();
            }
        }
        ~Scope() {
            if (bar != nullptr) {
                bar->clear();
                bar->hide();
            }
            QApplication::restoreOverrideCursor();
            host.state_.stopRequested.clear();
            host.running_ = false;
        }
    } scope(*this, bar);
    GuiProgress progress(state_, bar);
    body(progress);
}

bool RunHost::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    const bool input = type == QEvent::KeyPress || type == QEvent::MouseButtonPress ||
                       type == QEvent::MouseButtonDblClick;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!running_ || asking_ || !input || widget == nullptr || widget->window() != window_) {
        return QObject::eventFilter(watched, event);
    }
    if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        asking_ = true;
        QApplication::setOverrideCursor(Qt::ArrowCursor);
        const bool stop = screens::confirmCancel(dialogs_);
        QApplication::restoreOverrideCursor();
        asking_ = false;
        if (stop) {
            state_.stopRequested.request();
        }
    }
    // Other input during a run is not for the screens: no second run can start and no
    // field can change under it.
    return true;
}

} // namespace varo::gui
