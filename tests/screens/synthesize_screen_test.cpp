#include "screens/synthesize_screen.hpp"
#include "support/recording_progress.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <vector>

using namespace varo;
using screens::RunOutcome;
using varo::testing::fileExists;
using varo::testing::readFile;
using varo::testing::RecordingProgress;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/weathergen";

struct SynthesizeFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    core::NullProgress progress;
    TempDir dir;
    SynthesizeFixture() {
        core::initialiseState(state);
        state.randomSeed = false;
        state.defaultDir = dir.folder();
    }

    // A screen with reg.PAR's details shown, ready to run 10 days from 27/02/1960.
    screens::SynthesizeScreen readyScreen() {
        screens::SynthesizeScreen screen(state);
        screen.parFile.choose(Data + "/reg.PAR");
        screen.setPredictorFolder(Data);
        screen.outFile.choose(dir.path("run.OUT"));
        EXPECT_EQ(screen.viewDetails(dialogs), RunOutcome::Done);
        screen.fStartText.text = "27/02/1960";
        screen.fLengthText.text = "10";
        return screen;
    }

    // Runs and expects one refusal with the given title and text.
    void expectRefused(screens::SynthesizeScreen& screen, const std::string& title,
                       const std::string& text) {
        dialogs.messages.clear();
        EXPECT_EQ(screen.synthesize(dialogs, progress), RunOutcome::Refused);
        ASSERT_EQ(dialogs.messages.size(), 1u) << text;
        EXPECT_EQ(dialogs.messages[0].title, title);
        EXPECT_EQ(dialogs.messages[0].text, text);
        EXPECT_FALSE(fileExists(dir.path("run.OUT")));
    }
};

} // namespace

TEST_F(SynthesizeFixture, ParameterFileCheckRunsInOrder) {
    screens::SynthesizeScreen screen(state);
    const auto errorFor = [&](const std::string& path) {
        screen.parFile.choose(path);
        dialogs.messages.clear();
        screen.checkParameterFile(dialogs);
        return dialogs.lastText();
    };
    EXPECT_EQ(errorFor(""), "You must select a parameter file first.");
    EXPECT_EQ(errorFor(".PAR"), "You must select an appropriate parameter file.");
    EXPECT_EQ(errorFor("a.Par"), "You must select a .PAR file.");
    EXPECT_EQ(errorFor("a.PAR"), "");
    EXPECT_EQ(errorFor("a.par"), "");
    // A path that passes the check but names no file fails while reading.
    EXPECT_EQ(screen.viewDetails(dialogs), RunOutcome::Failed);
    EXPECT_NE(dialogs.lastText().find("File not found."), std::string::npos);
}

TEST_F(SynthesizeFixture, ViewDetailsFillsTheScreenFromBothFileForms) {
    screens::SynthesizeScreen screen(state);
    screen.parFile.choose(Data + "/reg.PAR");
    EXPECT_EQ(screen.viewDetails(dialogs), RunOutcome::Done);
    EXPECT_EQ(screen.fStartText.text, "01/01/1960");
    EXPECT_EQ(screen.fLengthText.text, "3650");
    EXPECT_EQ(screen.predictorList,
              (std::vector<std::string>{"obs.dat", "reg_p1.dat", "reg_p2.dat"}));

    screens::SynthesizeScreen older(state);
    older.parFile.choose(Data + "/stochastic.PAR");
    EXPECT_EQ(older.viewDetails(dialogs), RunOutcome::Done);
    EXPECT_EQ(older.processLabel, "Conditional");
    EXPECT_EQ(older.autoRegressLabel, "Unknown");
    EXPECT_EQ(older.predictorList,
              (std::vector<std::string>{"rain.dat", "st_p1.dat", "st_p2.dat", "st_p3.dat"}));
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(SynthesizeFixture, RunChecksComeInTheirOrderAndResetTheirFields) {
    screens::SynthesizeScreen screen(state); // nothing chosen, no details shown
    screen.eSize.text = "";
    expectRefused(screen, "Error Message", "Ensemble Size must be a value between 1 and 100.");
    EXPECT_EQ(screen.eSize.text, "20");
    for (const char* size : {"100.5", "0.9", "-3"}) {
        screen.eSize.text = size;
        expectRefused(screen, "Error Message", "Ensemble Size must be between 1 and 100.");
        EXPECT_EQ(screen.eSize.text, "20");
    }
    screen.fStartText.text = "31/02/1961";
    expectRefused(screen, "Error Message",
                  "Fit start date is invalid - it must be in the format dd/mm/yyyy.");
    EXPECT_EQ(screen.fStartText.text, "01/01/1961");
    expectRefused(screen, "Warning",
                  "Please check that fit start date is later than record start date.");
    screen.rStartText = "01/01/1960";
    screen.fLengthText.text = "ten";
    expectRefused(screen, "Error Message", "Fit length is invalid - it must be a numeric.");
    EXPECT_EQ(screen.fLengthText.text, "365");
    expectRefused(screen, "Warning", "Please check that fit length is shorter than record length.");

    screens::SynthesizeScreen ready = readyScreen();
    ready.fStartText.text = "31/12/1959";
    expectRefused(ready, "Warning", "Fit start date should be later than record start date.");
    EXPECT_EQ(ready.fStartText.text, "01/01/1960");
    ready.fLengthText.text = "10000.5";
    expectRefused(ready, "Warning", "Fit length should be shorter than record length.");
    EXPECT_EQ(ready.fLengthText.text, "10000");
    ready.fLengthText.text = "0.4";
    expectRefused(ready, "Error Message", "Fit length must be at least one day.");
    EXPECT_EQ(ready.fLengthText.text, "365");
    ready.fLengthText.text = "10000"; // equal to the record length passes
    ready.outFile.path.clear();
    expectRefused(ready, "Error Message", "You must select a suitable output file to save to.");
    EXPECT_EQ(ready.fLengthText.text, "10000");
    ready.outFile.choose(dir.path("run.SIM"));
    expectRefused(ready, "Error Message",
                  "The output file's name must not end in SIM: the description file beside it "
                  "takes that name.");
    ready.outFile.choose(dir.path("run.OUT"));
    ready.parFile.choose(Data + "/reg.Par");
    expectRefused(ready, "Error Message", "You must select a .PAR file.");
}

TEST_F(SynthesizeFixture, RunWritesBothFilesAndSaysSoUnderResults) {
    state.precN = 0;
    screens::SynthesizeScreen screen = readyScreen();
    screen.fStartText.text = "27/2/1960";
    screen.eSize.text = "2.6";
    dialogs.messages.clear();
    ASSERT_EQ(screen.synthesize(dialogs, progress), RunOutcome::Done) << dialogs.lastText();
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "Results");
    EXPECT_EQ(dialogs.messages[0].text, "Synthesis completed.");
    EXPECT_EQ(screen.eSize.text, "3");
    // The same first ten days as the reference run of 3 members, and its description.
    const std::string reference = readFile(Data + "/reg.OUT");
    EXPECT_EQ(readFile(dir.path("run.OUT")), reference.substr(0, 10 * 44));
    EXPECT_EQ(readFile(dir.path("run.SIM")),
              std::regex_replace(readFile(Data + "/reg.SIM"), std::regex(" 40 "), " 10 "));
}

TEST_F(SynthesizeFixture, CancelEndsSilentlyWithTheDaysWrittenAndAnEmptySim) {
    screens::SynthesizeScreen screen = readyScreen();
    state.stopRequested.request();
    // The opening report, 57 skipped days, and a stop at the third day.
    RecordingProgress stop(1 + 57 + 2);
    dialogs.messages.clear();
    EXPECT_EQ(screen.synthesize(dialogs, stop), RunOutcome::Cancelled);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(readFile(dir.path("run.OUT")).size(), 2u * (20 * 14 + 2)); // 20 members
    EXPECT_EQ(readFile(dir.path("run.SIM")), "");
    EXPECT_FALSE(state.stopRequested.checkStop());
}

TEST_F(SynthesizeFixture, ResetPutsEveryFieldBack) {
    screens::SynthesizeScreen screen = readyScreen();
    state.globalSDate = {1, 1, 1971};
    screen.eSize.text = "7";
    screen.reset();
    EXPECT_EQ(screen.parFile.text, "Not selected");
    EXPECT_TRUE(screen.parFile.path.empty());
    EXPECT_EQ(screen.rLengthText, "unknown");
    EXPECT_EQ(screen.fStartText.text, "01/01/1971");
    EXPECT_EQ(screen.eSize.text, "20");
    EXPECT_EQ(screen.predictorFolder, dir.folder());
    EXPECT_TRUE(screen.predictorList.empty());
    EXPECT_EQ(screen.processLabel, "Unknown");
}

// An OUT file, or the SIM file beside it, that is one of the files the run reads is
// refused before anything is written, whatever path leads to it.
TEST_F(SynthesizeFixture, AnOutputThatIsAnInputIsRefusedAndTheInputStays) {
    const auto model = dir.write("reg.PAR", readFile(Data + "/reg.PAR"));
    const auto predictor = dir.write("reg_p1.dat", readFile(Data + "/reg_p1.dat"));
    dir.write("reg_p2.dat", readFile(Data + "/reg_p2.dat"));
    std::filesystem::create_symlink(model, dir.path("link.OUT"));
    std::filesystem::create_directories(dir.path("sub"));
    struct Case {
        std::string out;
        std::string input; // the file it is
    };
    const std::vector<Case> cases = {
        {model, model},
        {dir.path("sub/../reg_p1.dat"), predictor},
        {dir.path("link.OUT"), model},
    };
    for (const Case& c : cases) {
        screens::SynthesizeScreen screen(state);
        screen.parFile.choose(model);
        screen.setPredictorFolder(dir.folder());
        screen.outFile.choose(c.out);
        ASSERT_EQ(screen.viewDetails(dialogs), RunOutcome::Done);
        screen.fStartText.text = "27/02/1960";
        screen.fLengthText.text = "10";
        dialogs.messages.clear();
        EXPECT_EQ(screen.synthesize(dialogs, progress), RunOutcome::Refused) << c.out;
        EXPECT_EQ(dialogs.errors(),
                  std::vector<std::string>{"The output file '" + c.out +
                                           "' is the same file as the input file '" + c.input +
                                           "': writing it would destroy the input. Choose "
                                           "another output file."});
        EXPECT_FALSE(screen.outputStarted);
    }
    EXPECT_EQ(readFile(model), readFile(Data + "/reg.PAR"));
    EXPECT_EQ(readFile(predictor), readFile(Data + "/reg_p1.dat"));
}
