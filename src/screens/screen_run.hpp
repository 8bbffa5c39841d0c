// How a screen's run begins and ends. Before it writes, a run refuses an output that is one
// of its inputs (`outputOverInput`); every run goes through `guardedRun`, the one place
// where failures, stops with a message and cancels are caught and answered.
#pragma once

#include "core/program_state.hpp"
#include "screens/dialogs.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace varo::screens {

enum class RunOutcome {
    Done,      // the run finished
    Refused,   // a check refused the input; its message has been shown
    Failed,    // a run-time failure; the failure box has been shown
    Cancelled, // the person confirmed a cancel
};

inline constexpr std::string_view OutOfMemoryText =
    "There is not enough memory to finish this run. What it had written stays as it is.";

// Runs `body`. A `core::Failure` shows the failure box (title "Error Message", the text of
// `reportFailureText`), a `core::RunStopped` shows its message in an "Error Message" box,
// running out of memory shows the failure box of failure 7 with `OutOfMemoryText`, and a
// `core::Cancelled` shows nothing; each of these then runs `cleanup`. The body's own
// outcome is returned when it ends normally.
RunOutcome guardedRun(Dialogs& dialogs, const std::function<RunOutcome()>& body,
                      const std::function<void()>& cleanup);

// The refusal of a run whose output would destroy a file it reads or the settings file in
// force (named by the message as an input), or nothing.
std::optional<std::string> outputOverInput(const core::ProgramState& state,
                                           const std::vector<std::string>& outputs,
                                           std::vector<std::string> inputs);

} // namespace varo::screens
