#include "screens/analyse_screen.hpp"
#include "support/recording_progress.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

using namespace varo;
using screens::AnalyseScreen;
using screens::RunOutcome;
using varo::testing::RecordingProgress;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

namespace {

std::string data(const std::string& name) {
    return std::string(VARO_TEST_DATA) + "/statistics/" + name;
}

struct AnalyseFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    core::NullProgress progress;
    TempDir dir;
    AnalyseFixture() { core::initialiseState(state); }

    // A modelled run of the three-member test file that passes every check.
    AnalyseScreen readyScreen() {
        AnalyseScreen screen(state);
        screen.inputFileText = dir.path("run.OUT");
        writeCopy("ensemble3.OUT", "run.OUT");
        writeCopy("ensemble3.SIM", "run.SIM");
        screen.saveFileText = dir.path("results.txt");
        screen.startDateText.text = "01/01/1961";
        screen.endDateText.text = "31/12/1962";
        return screen;
    }
    void writeCopy(const std::string& from, const std::string& to) {
        dir.write(to, varo::testing::readFile(data(from)));
    }
    std::string refusal(AnalyseScreen& screen) {
        dialogs.messages.clear();
        const auto outcome = screen.run(dialogs, progress);
        return outcome == RunOutcome::Refused ? dialogs.lastText() : std::string();
    }
};

} // namespace

TEST_F(AnalyseFixture, RunChecksInTheirOrder) {
    AnalyseScreen screen(state);
    EXPECT_EQ(refusal(screen), "You must select a data file first.");
    screen.inputFileText = dir.write("obs.dat", "1\r\n");
    EXPECT_EQ(refusal(screen), "You must enter a filename to save summary results to.");
    screen.saveFileText = dir.path("results.txt");
    EXPECT_EQ(refusal(screen),
              "You must select an appropriate scenario file for modelled analyses.");
    screen.inputFileText = dir.write("run.Out", "1\r\n"); // the case of the extension counts
    EXPECT_EQ(refusal(screen),
              "You must select an appropriate scenario file for modelled analyses.");

    AnalyseScreen ready = readyScreen();
    ready.ensembleNumber.text = "4";
    EXPECT_EQ(refusal(ready), "Ensemble member does not exist in data file.");
    dir.write("run.SIM", " 2 \r\n 1 \r\n"); // short: not readable
    EXPECT_EQ(refusal(ready), "An error occurred opeing the *.SIM file. Please try again.\r\n"
                              "The SIM file '" +
                                  dir.path("run.SIM") +
                                  "' ends after line 2, where line 3 should hold the year length.");
    writeCopy("ensemble3.SIM", "run.SIM");
    ready.ensembleNumber.text = " ";
    EXPECT_EQ(refusal(ready),
              "You must enter an ensemble member if you do not wish to analyse the mean.");
    ready.ensembleNumber.text = "two";
    EXPECT_EQ(refusal(ready), "Ensemble member value is invalid.");
    ready.ensembleNumber.text = "0";
    EXPECT_EQ(refusal(ready), "Ensemble member cannot be zero or greater than 100.");
    ready.ensembleNumber.text = "x";
    ready.ensembleMeanCheck = true; // the member is not read for the mean
    ready.startDateText.text = "32/01/1961";
    EXPECT_EQ(refusal(ready), "Analysis start date is invalid.");
    ready.startDateText.text = "31/12/1962";
    EXPECT_EQ(refusal(ready), "Analysis end date must be later than analysis start date.");
    ready.startDateText.text = "01/01/1801";
    ready.endDateText.text = "31/12/1951";
    EXPECT_EQ(refusal(ready), "Analysis period must be less than 150 years.");
    ready.startDateText.text = "01/01/1960";
    ready.endDateText.text = "31/12/1962";
    EXPECT_EQ(refusal(ready),
              "The analysis period starts on 01/01/1960, before the first day of the data "
              "(01/01/1961).");
    EXPECT_FALSE(varo::testing::fileExists(dir.path("results.txt")));
}

TEST_F(AnalyseFixture, ObservedDataIgnoresTheEnsembleControls) {
    AnalyseScreen screen(state);
    screen.sourceButton = AnalyseScreen::Source::Observed;
    screen.inputFileText = dir.write("obs.dat", "1\r\n2\r\n3\r\n");
    screen.saveFileText = dir.path("r.txt");
    screen.ensembleNumber.text = "";
    screen.startDateText.text = "01/01/1961";
    screen.endDateText.text = "03/01/1961";
    ASSERT_EQ(screen.run(dialogs, progress), RunOutcome::Done) << dialogs.lastText();
    EXPECT_EQ(screen.labels.members, "1");
    EXPECT_EQ(screen.results->base.values[1][statistics::column::Mean], 2.0);
    EXPECT_EQ(dialogs.lastText(), "Summary statistics saved to r.txt.");
}

TEST_F(AnalyseFixture, ViewDetailsShowsTheSimFile) {
    AnalyseScreen screen(state);
    auto refusal = [&] {
        dialogs.messages.clear();
        return screen.showFileDetails(dialogs) ? std::string() : dialogs.lastText();
    };
    EXPECT_EQ(refusal(), "You must select a scenario file first.");
    screen.inputFileText = dir.write("obs.dat", "1\r\n");
    EXPECT_EQ(refusal(), "You must select an appropriate scenario (*.OUT) file.");
    screen.inputFileText = dir.path("run.OUT");
    screen.sourceButton = AnalyseScreen::Source::Observed;
    EXPECT_EQ(refusal(), "You have selected observed data.  There is no scenario file available "
                         "for observed data.");
    screen.sourceButton = AnalyseScreen::Source::Modelled;
    EXPECT_EQ(refusal(), "Sorry - an error has occurred opening the SIM file.  Please check "
                         "settings and try again.\r\nCannot open '" +
                             dir.path("run.SIM") + "': no such file.");
    writeCopy("cal360.SIM", "run.SIM");
    EXPECT_EQ(refusal(), "");
    EXPECT_EQ(screen.fileNPredictors, "2");
    EXPECT_EQ(screen.fileYearLength, "360");
    EXPECT_EQ(screen.fileEnsembleSize, "2");
    EXPECT_EQ(screen.fileStartDate, "01/01/1961");
    // A year length other than 360, 365 or 366 is no usable description.
    dir.write("run.SIM", " 2 \r\n 1 \r\n 362 \r\n01/01/1961\r\n 720 \r\n#TRUE#\r\n 2 \r\n 12 \r\n"
                         " 1 \r\n 1 \r\nrain.dat\r\na.dat\r\nb.dat\r\n");
    EXPECT_NE(refusal(), "");
}

TEST_F(AnalyseFixture, FieldChecksOfMemberAndDates) {
    AnalyseScreen screen(state);
    EXPECT_EQ(screen.noOfDaysText, "10957");
    screen.ensembleNumber.text = "101";
    EXPECT_FALSE(screen.checkEnsembleNumber(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Ensemble member cannot be zero or greater than 100.");
    EXPECT_EQ(screen.ensembleNumber.text, "1");
    screen.startDateText.text = "31/12/1990";
    EXPECT_FALSE(screen.checkStartDate(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Analysis start date must be earlier than analysis end date.");
    screen.startDateText.text = "01/01/1841"; // 149 calendar years
    EXPECT_TRUE(screen.checkStartDate(dialogs));
    screen.endDateText.text = "01/01/1991";
    EXPECT_FALSE(screen.checkEndDate(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Analysis period must be less than 150 years.");
    screen.endDateText.text = "31/12/1960";
    EXPECT_TRUE(screen.checkEndDate(dialogs));
    EXPECT_EQ(screen.noOfDaysText, std::to_string(365 * 120 + 29));
}

TEST_F(AnalyseFixture, RunShowsItsPhasesAndACancelWritesNothing) {
    for (int c : {4, 11, 13, 17}) {
        state.statisticTable[static_cast<size_t>(c - 1)].selected = true;
    }
    state.statisticTable[1].selected = false; // eight in all
    AnalyseScreen screen = readyScreen();
    screen.startDateText.text = "01/02/1961";
    RecordingProgress recording;
    ASSERT_EQ(screen.run(dialogs, recording), RunOutcome::Done) << dialogs.lastText();
    // Each step of the N-day pass shows both of its captions.
    const std::vector<std::string> expected = {
        "Analysing Scenario",
        "Skipping Unnecessary Data",
        "Reading in Data",
        "Calculating Statistics - Please Wait",
        "Calculating Moments - Please Wait",
        "Calculating N Day Total - Please Wait",
        "Calculating Maximum N Day Total - Please Wait",
        "Calculating N Day Total - Please Wait",
    };
    ASSERT_GT(recording.captions.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(recording.captions.begin(),
                                       recording.captions.begin() + expected.size()),
              expected);
    EXPECT_EQ(screen.fileEnsembleSize, "3"); // the run shows the file's details

    std::remove(screen.saveFileText.c_str());
    RecordingProgress stopping(300);
    state.stopRequested.request();
    EXPECT_EQ(screen.run(dialogs, stopping), RunOutcome::Cancelled);
    EXPECT_FALSE(state.stopRequested.checkStop()); // the cleanup clears the request
    EXPECT_FALSE(screen.results);
    EXPECT_FALSE(varo::testing::fileExists(screen.saveFileText));
}

TEST_F(AnalyseFixture, DeltaRunTakesThePeriodsOfTheSelectionScreen) {
    AnalyseScreen screen = readyScreen();
    screen.deltaCheck = true;
    screen.startDateText.text = "not a date"; // not used by a delta run
    auto& p = state.statisticParameters;
    p.basePeriod = {{1, 1, 1961}, {31, 12, 1961}};
    p.periodA = {{1, 1, 1962}, {31, 12, 1962}};
    p.periodB = {{1, 1, 1963}, {30, 6, 1963}};
    p.periodC = {{1, 7, 1963}, {31, 12, 1963}};
    p.deltaKind = 2;
    ASSERT_EQ(screen.run(dialogs, progress), RunOutcome::Done) << dialogs.lastText();
    ASSERT_TRUE(screen.results->delta);
    EXPECT_EQ(screen.labels.startDate, "01/01/1961");
    EXPECT_EQ(screen.labels.periodEnd[2], "31/12/1963");
    const std::string text = varo::testing::readFile(screen.saveFileText);
    EXPECT_NE(text.find("DELTA STATISTICS for run.OUT (absolute difference)\r\n"),
              std::string::npos);
    p.periodA.start = {1, 1, 1900};
    EXPECT_EQ(refusal(screen),
              "Period A starts on 01/01/1900, before the first day of the data (01/01/1961).");
}

TEST_F(AnalyseFixture, AResultsFileThatIsTheDataOrItsDescriptionIsRefused) {
    AnalyseScreen screen = readyScreen();
    const std::string out = varo::testing::readFile(dir.path("run.OUT"));
    const std::string sim = varo::testing::readFile(dir.path("run.SIM"));
    std::filesystem::create_symlink(dir.path("run.SIM"), dir.path("link.txt"));
    for (const auto& [results, input] : std::vector<std::pair<std::string, std::string>>{
             {dir.path("run.OUT"), dir.path("run.OUT")},
             {dir.path("run.SIM"), dir.path("run.SIM")},
             {dir.path("link.txt"), dir.path("run.SIM")}}) {
        screen.saveFileText = results;
        dialogs.messages.clear();
        EXPECT_EQ(screen.run(dialogs, progress), RunOutcome::Refused) << results;
        EXPECT_EQ(dialogs.lastText(), "The output file '" + results +
                                          "' is the same file as the input file '" + input +
                                          "': writing it would destroy the input. Choose another "
                                          "output file.");
    }
    EXPECT_EQ(varo::testing::readFile(dir.path("run.OUT")), out);
    EXPECT_EQ(varo::testing::readFile(dir.path("run.SIM")), sim);
}
