// The scenario generator's screen: its twenty checks in their order and words, fields put
// back after a refusal, the refusals made before reading, and a run's "Results" box.
#include "screens/generate_screen.hpp"
#include "support/recording_progress.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

using namespace varo;
using screens::GenerateScreen;
using screens::RunOutcome;
using varo::testing::readFile;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

namespace {

struct GenerateFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    core::NullProgress progress;
    TempDir dir;
    std::string input;

    GenerateFixture() {
        core::initialiseState(state);
        state.defaultDir = dir.folder();
        state.settingsFile = dir.path("VARO.INI");
        input = dir.write("rain.dat", "0\r\n1.5\r\n0\r\n4.25\r\n-999\r\n2\r\n");
    }

    // A screen whose run passes every check: a linear trend of 1 a year on the input.
    GenerateScreen ready() {
        GenerateScreen screen(state);
        screen.fixedSeed = 5;
        screen.chooseInFile(input);
        screen.chooseOutFile(dir.path("out.OUT"));
        screen.trendCheck = true;
        screen.trendOption = GenerateScreen::Linear;
        screen.linearTrendText.text = "1";
        return screen;
    }

    std::string refusal(GenerateScreen& screen) {
        dialogs.messages.clear();
        EXPECT_EQ(screen.generate(dialogs, progress), RunOutcome::Refused);
        const auto errors = dialogs.errors();
        EXPECT_EQ(errors.size(), 1u);
        return errors.empty() ? std::string() : errors.front();
    }
};

} // namespace

// Each case breaks one step; the step before it would pass and the one after it is broken
// too, so the message shows the order.
TEST_F(GenerateFixture, ChecksRunInTheirOrderWithTheirWords) {
    using Screen = GenerateScreen;
    struct Case {
        std::function<void(Screen&)> breakIt;
        std::string message;
    };
    const auto badExp = [](Screen& s) { s.expTrendText.text = "0"; };
    const std::vector<Case> cases = {
        {[](Screen& s) { s.chooseInFile("a.da"); }, "You must select an input file first."},
        {[](Screen& s) { s.outFile.path.clear(); },
         "You must enter a filename to save results to."},
        {[](Screen& s) { s.trendCheck = false; }, "You must select at least one treatment."},
        {[](Screen& s) { s.occurenceCheck = true; },
         "You cannot perform an occurrence treatment on data that are unconditional."},
        {[&](Screen& s) { s.amountFactorText.text = "x", badExp(s); },
         "Factor must be a value between -100 and 100."},
        {[&](Screen& s) { s.amountFactorText.text = "-100.5", badExp(s); },
         "Factor must be between -100 and 100."},
        {[&](Screen& s) { s.amountCheck = true, s.amountOption = Screen::Factor, badExp(s); },
         "You are trying to apply an amount treatment but applying no change."},
        {[&](Screen& s) { s.expTrendText.text = "", s.amountAdditionText.text = "x"; },
         "Exponential trend must be a value other than zero."},
        {[](Screen& s) { s.amountAdditionText.text = "1e", s.linearTrendText.text = "x"; },
         "Addition must be a value between -100 and 100."},
        {[](Screen& s) { s.amountAdditionText.text = "101", s.linearTrendText.text = "x"; },
         "Addition must be between -100 and 100."},
        {[](Screen& s) {
             s.amountCheck = true, s.amountOption = Screen::Addition, s.linearTrendText.text = "x";
         },
         "You are trying to apply an amount treatment but applying no change."},
        {[](Screen& s) { s.linearTrendText.text = "one", s.logisticTrendText.text = "x"; },
         "Linear trend must be a value between -100 and 100."},
        {[](Screen& s) { s.linearTrendText.text = "100.01", s.logisticTrendText.text = "x"; },
         "Linear trend must be between -100 and 100."},
        {[](Screen& s) { s.logisticTrendText.text = "", s.thresholdText.text = "x"; },
         "Logistic trend must be a value between -100 and 100."},
        {[](Screen& s) { s.logisticTrendText.text = "-101", s.thresholdText.text = "x"; },
         "Logistic trend must be between -100 and 100."},
        {[](Screen& s) { s.thresholdText.text = "wet", s.frequencyChangeText.text = "x"; },
         "Threshold must be a value."},
        {[](Screen& s) { s.thresholdText.text = "100.5", s.frequencyChangeText.text = "x"; },
         "Threshold must be between -100 and 100."},
        {[](Screen& s) { s.frequencyChangeText.text = "x", s.varianceFactorText.text = "x"; },
         "Frequency change value must be between -99 and 100."},
        {[](Screen& s) { s.frequencyChangeText.text = "-99.5", s.varianceFactorText.text = "x"; },
         "Frequency change value must be between -99 and 100."},
        {[](Screen& s) { s.varianceFactorText.text = "x", s.startDateText.text = "x"; },
         "Factor must be a value."},
        {[](Screen& s) { s.varianceFactorText.text = "100001", s.startDateText.text = "x"; },
         "Factor must be a value."},
        {[](Screen& s) { s.startDateText.text = "31/02/1961", s.eSize.text = "x"; },
         "Start date is invalid - it must be in the format dd/mm/yyyy."},
        {[](Screen& s) { s.eSize.text = "", s.amountCheck = true; },
         "Ensemble Size must be a value between 1 and 100."},
        {[](Screen& s) { s.eSize.text = "0.6", s.amountCheck = true; },
         "Ensemble Size must be between 1 and 100."},
        {[](Screen& s) {
             s.conditionalCheck = true, s.occurenceCheck = true, s.amountCheck = true;
         },
         "You are trying to perform an occurrence treatment but applying zero frequency "
         "change."},
        {[](Screen& s) { s.amountCheck = true, s.trendOption = Screen::NoOption; },
         "You are trying to apply an amount but have not selected which treatment to apply."},
        {[](Screen& s) { s.trendOption = Screen::NoOption, s.varianceCheck = true; },
         "You are trying to apply a trend but have not selected which treatment to apply."},
        {[](Screen& s) { s.varianceCheck = true, s.varianceFactorText.text = "0"; },
         "You are trying to apply a variance change but have not entered an amount."},
    };
    for (const Case& c : cases) {
        GenerateScreen screen = ready();
        c.breakIt(screen);
        EXPECT_EQ(refusal(screen), c.message);
        EXPECT_FALSE(varo::testing::fileExists(dir.path("out.OUT"))) << c.message;
    }
}

// A refused field gets its last good value back, and a run that refuses writes nothing;
// the ensemble size is written back rounded.
TEST_F(GenerateFixture, RefusedFieldsGetTheirLastGoodValueBack) {
    GenerateScreen screen = ready();
    screen.amountFactorText.text = "250";
    EXPECT_EQ(refusal(screen), "Factor must be between -100 and 100.");
    EXPECT_EQ(screen.amountFactorText.text, "0");
    screen.thresholdText.text = "0.5";
    EXPECT_TRUE(screen.checkThreshold(dialogs));
    screen.thresholdText.text = "high";
    EXPECT_FALSE(screen.checkThreshold(dialogs));
    EXPECT_EQ(screen.thresholdText.text, "0.5");
    screen.eSize.text = "1.4";
    EXPECT_TRUE(screen.checkEnsembleSize(dialogs));
    EXPECT_EQ(screen.eSize.text, "1");
    EXPECT_EQ(screen.ensembleSize, 1);
}

// The defaults pass every check: the exponential trend starts at 1, not 0. Reset empties
// the choices again.
TEST_F(GenerateFixture, DefaultsPassAndResetRestoresThem) {
    state.thresh = 0.25f;
    GenerateScreen screen = ready();
    EXPECT_EQ(screen.thresholdText.text, ".25");
    EXPECT_EQ(screen.startDateText.text, "01/01/1961");
    EXPECT_EQ(screen.generate(dialogs, progress), RunOutcome::Done);
    screen.amountCheck = true;
    screen.amountOption = GenerateScreen::Addition;
    screen.expTrendText.text = "7";
    screen.reset();
    EXPECT_EQ(screen.inFile.text, "Not selected");
    EXPECT_EQ(screen.outFile.path, "");
    EXPECT_FALSE(screen.amountCheck || screen.trendCheck);
    EXPECT_EQ(screen.amountOption, GenerateScreen::NoOption);
    EXPECT_EQ(screen.trendOption, GenerateScreen::NoOption);
    EXPECT_EQ(screen.occurenceOption, GenerateScreen::Stochastic);
    EXPECT_EQ(screen.expTrendText.text, "1");
    EXPECT_EQ(screen.eSize.text, "1");
}

TEST_F(GenerateFixture, RunShowsTheResultsBox) {
    GenerateScreen screen = ready();
    EXPECT_EQ(screen.generate(dialogs, progress), RunOutcome::Done);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "Results");
    EXPECT_EQ(dialogs.messages[0].text, "Scenario Generated.\r\n6 days processed.");
    // The linear trend of 1 a year in calendar years: day i gains i / 365.25; missing stays.
    EXPECT_EQ(readFile(dir.path("out.OUT")), "0.003         \r\n"
                                             "1.505         \r\n"
                                             "0.008         \r\n"
                                             "4.261         \r\n"
                                             "-999.000      \r\n"
                                             "2.016         \r\n");
    EXPECT_EQ(screen.lastResult->dayCount, 6);
}

// Forced occurrence takes the settings' wet-day profile; a member without wet days gives
// the zero-rainfall warning in a "Results" box before the closing one.
TEST_F(GenerateFixture, ForcedOccurrenceUsesTheSettingsProfileAndWarns) {
    state.monthModification.fill(100.0f);
    GenerateScreen screen = ready();
    screen.trendCheck = false;
    screen.conditionalCheck = true;
    screen.occurenceCheck = true;
    screen.occurenceOption = GenerateScreen::Forced;
    EXPECT_EQ(screen.generate(dialogs, progress), RunOutcome::Done);
    const std::string out = readFile(dir.path("out.OUT"));
    EXPECT_EQ(out.find("0.000"), std::string::npos) << out; // every dry day made wet

    dialogs.messages.clear();
    screen.chooseInFile(dir.write("dry.OUT", "0.000         0.000         \r\n"
                                             "0.000         1.000         \r\n"));
    screen.eSize.text = "2";
    EXPECT_EQ(screen.generate(dialogs, progress), RunOutcome::Done);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_EQ(dialogs.messages[0].title, "Results");
    EXPECT_EQ(dialogs.messages[0].icon, screens::Icon::Warning);
    EXPECT_EQ(dialogs.messages[0].text,
              "Warning - at least one ensemble has zero rainfall days and cannot be "
              "manipulated.");
    EXPECT_EQ(readFile(dir.path("out.OUT")), "0.000         1.000         \r\n"
                                             "0.000         1.000         \r\n");
}

// Before anything is read: an output that is the input, or the settings file, and a first
// line too short for the ensemble are refused, leaving the files as they were.
TEST_F(GenerateFixture, RefusesOutputOverInputAndANarrowFile) {
    GenerateScreen screen = ready();
    const std::string before = readFile(input);
    screen.chooseOutFile(dir.folder() + "/./rain.dat");
    EXPECT_NE(refusal(screen).find(input), std::string::npos);
    EXPECT_EQ(readFile(input), before);
    screen.chooseOutFile(state.settingsFile);
    dir.write("VARO.INI", "[VARO]\r\n");
    EXPECT_NE(refusal(screen).find("VARO.INI"), std::string::npos);

    screen.chooseOutFile(dir.path("out.OUT"));
    screen.chooseInFile(dir.write("wide.OUT", std::string(27, '1') + "\r\n"));
    screen.eSize.text = "2";
    EXPECT_EQ(refusal(screen),
              "Data file seems to be wrong size for ensemble size entered - please check.");
    EXPECT_FALSE(varo::testing::fileExists(dir.path("out.OUT")));
    // A missing input is the reading's failure, not a size refusal.
    screen.chooseInFile(dir.path("none.OUT"));
    dialogs.messages.clear();
    EXPECT_EQ(screen.generate(dialogs, progress), RunOutcome::Failed);
    EXPECT_NE(dialogs.lastText().find("File not found."), std::string::npos);
}

// A cancel during the run leaves no output and clears the stop request.
TEST_F(GenerateFixture, CancelLeavesNoOutput) {
    GenerateScreen screen = ready();
    varo::testing::RecordingProgress stopping(2);
    EXPECT_EQ(screen.generate(dialogs, stopping), RunOutcome::Cancelled);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_FALSE(varo::testing::fileExists(dir.path("out.OUT")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.folder()), {}), 1);
}
