#include "screens/screen_run.hpp"

#include "core/failure.hpp"
#include "core/output_paths.hpp"

#include <new>

namespace varo::screens {

RunOutcome guardedRun(Dialogs& dialogs, const std::function<RunOutcome()>& body,
                      const std::function<void()>& cleanup) {
    try {
        return body();
    } catch (const core::Failure& failure) {
        dialogs.error(core::reportFailureText(failure.number(), failure.description()));
        cleanup();
        return RunOutcome::Failed;
    } catch (const core::RunStopped& stopped) {
        dialogs.error(stopped.message());
        cleanup();
        return RunOutcome::Failed;
    } catch (const core::Cancelled&) {
        cleanup();
        return RunOutcome::Cancelled;
    } catch (const std::bad_alloc&) {
        dialogs.error(core::reportFailureText(core::failure::OutOfMemory, OutOfMemoryText));
        cleanup();
        return RunOutcome::Failed;
    }
}

std::optional<std::string> outputOverInput(const core::ProgramState& state,
                                           const std::vector<std::string>& outputs,
                                           std::vector<std::string> inputs) {
    inputs.push_back(state.settingsFile);
    inputs.push_back(state.defaultSettingsFile);
    return core::outputOverInput(outputs, inputs);
}

} // namespace varo::screens
