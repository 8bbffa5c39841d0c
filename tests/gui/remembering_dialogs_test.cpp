#include "gui/remembering_dialogs.hpp"
#include "support/scripted_dialogs.hpp"

#include <gtest/gtest.h>

using varo::gui::RememberingDialogs;
using varo::testing::ScriptedDialogs;

namespace {

enum class Picker { Open, Save, Folder };

struct PickStep {
    std::string screen;
    bool predictorScreen;
    Picker picker;
    std::string asked;  // the start folder the screen asks for
    std::string picked; // empty: cancelled
    std::string opensOn;
};

} // namespace

TEST(RememberingDialogs, PickersOpenWhereTheirScreenLastPickedFromTheSameStart) {
    const std::vector<PickStep> steps = {
        {"quality", false, Picker::Open, "/home", "/data/a/x.dat", "/home"},
        {"quality", false, Picker::Open, "/home", "", "/data/a"},
        // A cancel forgets nothing; a save counts as a use of the screen's pickers.
        {"quality", false, Picker::Save, "/home", "/out/r.txt", "/data/a"},
        {"quality", false, Picker::Open, "/home", "", "/out"},
        // Another screen starts where it asks.
        {"transform", false, Picker::Open, "/home", "", "/home"},
        // A screen that asks for another start (the default folder changed) gets it.
        {"quality", false, Picker::Open, "/work", "/b/y.dat", "/work"},
        {"quality", false, Picker::Open, "/work", "", "/b"},
        // The predictor folder goes from screen to screen, whatever each asks for.
        {"screen", true, Picker::Folder, "/home", "/preds", "/home"},
        {"calibrate", true, Picker::Folder, "/home", "", "/preds"},
        {"calibrate", true, Picker::Folder, "/home", "/future", "/preds"},
        {"generate", true, Picker::Folder, "/elsewhere", "", "/future"},
        // ... but not a screen's file pickers, nor the folder picker of the settings.
        {"screen", true, Picker::Open, "/home", "", "/home"},
        {"settings", false, Picker::Folder, "/home", "/new-home", "/home"},
        {"settings", false, Picker::Folder, "/home", "", "/new-home"},
    };
    ScriptedDialogs inner;
    RememberingDialogs dialogs(inner);
    for (size_t i = 0; i < steps.size(); ++i) {
        const PickStep& step = steps[i];
        SCOPED_TRACE(i);
        dialogs.setScreen(step.screen, step.predictorScreen);
        if (!step.picked.empty()) {
            inner.pickedFiles.push_back(step.picked);
        }
        std::optional<std::string> got;
        switch (step.picker) {
        case Picker::Open:
            got = dialogs.pickOpenFile("All Files (*.*)|*.*", step.asked);
            break;
        case Picker::Save:
            got = dialogs.pickSaveFile("All Files (*.*)|*.*", step.asked, "TXT");
            break;
        case Picker::Folder:
            got = dialogs.pickFolder(step.asked);
            break;
        }
        EXPECT_EQ(inner.startFolders.back(), step.opensOn);
        EXPECT_EQ(got.value_or(""), step.picked);
    }
}

TEST(RememberingDialogs, MessagesAndQuestionsPassThrough) {
    ScriptedDialogs inner;
    inner.answers = {true};
    RememberingDialogs dialogs(inner);
    dialogs.error("No file.");
    EXPECT_TRUE(dialogs.askYesNo("Exit", "Exit VARO?", varo::screens::Icon::Question));
    EXPECT_EQ(inner.errors(), std::vector<std::string>{"No file."});
    EXPECT_EQ(inner.questions, std::vector<std::string>{"Exit VARO?"});
}
