// Runs of the work screens on the bundled sample data, for pictures of what a screen shows
// after a run: the sample set is written to a folder, and the screen is filled in and run
// through its own keys as a person would, the file pickers answered from a list and the
// message boxes written to a log instead of waiting for a click.
#pragma once

#include "screens/dialogs.hpp"
#include "screens/navigation.hpp"

#include <deque>
#include <ostream>
#include <string>
#include <string_view>

namespace varo::gui {

class MainWindow;

class SampleDialogs final : public screens::Dialogs {
public:
    explicit SampleDialogs(std::ostream& log) : log_(log) {}

    std::deque<std::string> picks; // the next answers of the file and folder pickers

    void message(std::string_view title, std::string_view text, screens::Icon icon) override;
    bool askYesNo(std::string_view title, std::string_view text, screens::Icon icon) override;
    std::optional<std::string> pickOpenFile(std::string_view, std::string_view) override {
        return nextPick();
    }
    std::optional<std::string> pickSaveFile(std::string_view, std::string_view,
                                            std::string_view) override {
        return nextPick();
    }
    std::optional<std::string> pickFolder(std::string_view) override { return nextPick(); }

private:
    std::optional<std::string> nextPick();

    std::ostream& log_;
};

// The sample runs by name: "quality-results", "screen-results" and "stats-results" leave
// the screen with its results; "calibrate-results" opens the report of a calibration;
// "screen-scatter", "calibrate-scatter" and "calibrate-histogram" open the chart of the run
// over it.
bool isSampleRun(std::string_view name);

// Goes to the screen of the named run, writes the sample set into `folder` and runs the
// screen on it; false when there is no such run. The window must have been made with
// `dialogs`.
bool runSample(MainWindow& window, SampleDialogs& dialogs, std::string_view name,
               const std::string& folder);

} // namespace varo::gui
