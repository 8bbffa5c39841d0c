#include "screens/calibrate_screen.hpp"

#include "calibration/calibration_test_support.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

using varo::screens::CalibrateScreen;
using varo::screens::RunOutcome;
using namespace varo::testing;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/calibration/driver";

varo::core::ProgramState sixYears() {
    varo::core::ProgramState state;
    varo::core::initialiseState(state);
    state.globalSDate = "01/01/1961";
    state.globalEDate = "31/12/1966";
    state.globalDays = 2191;
    state.defaultDir = Data;
    return state;
}

// A screen with every input good: predictand, both predictors, a parameter file.
void fill(CalibrateScreen& screen, const TempDir& dir) {
    screen.choosePredictand(Data + "/rain.dat");
    screen.choosePredictors({Data + "/mslp.dat", Data + "/shum.dat"});
    screen.chooseParFile(dir.path("MODEL.PAR"));
}

} // namespace

TEST(CalibrateScreen, OpensWithTheSettingsAndTheFolderList) {
    auto state = sixYears();
    state.selectedPredictandName = "rain.dat";
    state.selectedPredictandPath = Data + "/rain.dat";
    CalibrateScreen screen(state);
    EXPECT_EQ(screen.ptandText, "rain.dat");
    EXPECT_EQ(screen.fsDate.text, "01/01/1961");
    EXPECT_EQ(screen.feDate.text, "31/12/1966");
    EXPECT_EQ(screen.noOfDays, "2191");
    EXPECT_EQ(screen.histogramCatsText.text, "20");
    EXPECT_EQ(screen.parFileText, "*.PAR");
    EXPECT_EQ(screen.meanRatio[0], 1.0);
    // The list is sorted; a selection takes the list's order, whatever the clicks' order.
    ASSERT_GE(screen.folderFiles.size(), 3u);
    EXPECT_EQ(screen.folderFiles[0], "annual_unconditional.PAR");
    const auto mslp = std::find(screen.folderFiles.begin(), screen.folderFiles.end(), "mslp.dat");
    const auto shum = std::find(screen.folderFiles.begin(), screen.folderFiles.end(), "shum.dat");
    screen.selectListItems({static_cast<int>(shum - screen.folderFiles.begin()),
                            static_cast<int>(mslp - screen.folderFiles.begin())});
    EXPECT_EQ(screen.selectedPredictors,
              (std::vector<std::string>{Data + "/mslp.dat", Data + "/shum.dat"}));
    EXPECT_EQ(screen.noOfFiles(), 2);
}

TEST(CalibrateScreen, DateFieldsRefuseAndRestoreTheirLastGoodValue) {
    auto state = sixYears();
    CalibrateScreen screen(state);
    ScriptedDialogs dialogs;
    screen.fsDate.text = "01/01/1962";
    EXPECT_TRUE(screen.checkFitStart(dialogs));
    EXPECT_EQ(screen.noOfDays, "1826");
    const std::vector<std::pair<std::string, std::string>> starts{
        {"1/13/1962", "Start date is invalid - it must be in the format dd/mm/yyyy."},
        {"01/01/1967", "End date must be later than start date."},
        {"31/12/1960", "Fit start date must be later than record start date."},
    };
    for (const auto& [text, message] : starts) {
        screen.fsDate.text = text;
        EXPECT_FALSE(screen.checkFitStart(dialogs));
        EXPECT_EQ(dialogs.lastText(), message);
        EXPECT_EQ(screen.fsDate.text, "01/01/1962");
    }
    const std::vector<std::pair<std::string, std::string>> ends{
        {"", "End date is invalid - it must be in the format dd/mm/yyyy."},
        {"31/12/1961", "End date must be later than start date."},
        {"01/01/1967", "Fit end date must be earlier than record end date."},
    };
    for (const auto& [text, message] : ends) {
        screen.feDate.text = text;
        EXPECT_FALSE(screen.checkFitEnd(dialogs));
        EXPECT_EQ(dialogs.lastText(), message);
        EXPECT_EQ(screen.feDate.text, "31/12/1966");
    }
    // The record's own ends pass, and a one-day period too.
    screen.feDate.text = "01/01/1962";
    EXPECT_TRUE(screen.checkFitEnd(dialogs));
    EXPECT_EQ(screen.noOfDays, "1");
}

TEST(CalibrateScreen, FoldsAndHistogramFieldsKeepTheirBounds) {
    auto state = sixYears();
    CalibrateScreen screen(state);
    ScriptedDialogs dialogs;
    for (const auto& [text, ok] : std::vector<std::pair<std::string, bool>>{
             {"2", true}, {"10", true}, {"1", false}, {"11", false}, {"x", false}}) {
        screen.noOfFoldsText.text = text;
        EXPECT_EQ(screen.checkFolds(dialogs), ok) << text;
    }
    EXPECT_EQ(screen.noOfFoldsText.text, "10");
    EXPECT_EQ(dialogs.errors().back(), "Folds value is invalid.");
    EXPECT_EQ(dialogs.errors()[dialogs.errors().size() - 2],
              "Number of folds cannot be less than 2 or greater than 10.");
    for (const auto& [text, ok] : std::vector<std::pair<std::string, bool>>{
             {"5", true}, {"100", true}, {"4", false}, {"101", false}, {"", false}}) {
        screen.histogramCatsText.text = text;
        EXPECT_EQ(screen.checkHistogramCategories(dialogs), ok) << text;
    }
    EXPECT_EQ(screen.histogramCatsText.text, "100");
    EXPECT_EQ(dialogs.errors().back(), "Histogram catgeories value is invalid.");
}

TEST(CalibrateScreen, ChecksRunInOrderAndStopAtTheFirst) {
    TempDir dir;
    auto state = sixYears();
    CalibrateScreen screen(state);
    CountingProgress progress;
    const auto refusal = [&](const std::function<void(CalibrateScreen&)>& change) {
        CalibrateScreen s(state);
        fill(s, dir);
        change(s);
        ScriptedDialogs dialogs;
        EXPECT_EQ(s.calibrate(dialogs, progress), RunOutcome::Refused);
        EXPECT_EQ(dialogs.errors().size(), 1u);
        return dialogs.errors().empty() ? std::string() : dialogs.errors().front();
    };
    EXPECT_EQ(refusal([](auto& s) {
                  s.ptandText = "Not selected";
                  s.selectedPredictors.clear(); // the first refusal wins
              }),
              "You must select a predictand.");
    EXPECT_EQ(refusal([](auto& s) { s.selectedPredictors.clear(); }),
              "You must select at least one predictor.");
    EXPECT_EQ(refusal([](auto& s) { s.parFileText = "*.PAR"; }),
              "You must enter an appropriate output file name.");
    EXPECT_EQ(refusal([](auto& s) {
                  s.parFileText = "";
                  s.fsDate.text = "bad";
              }),
              "You must enter an appropriate output file name.");
    EXPECT_EQ(refusal([](auto& s) {
                  s.fsDate.text = "bad";
                  s.parFileText = "x";
              }),
              "Start date is invalid - it must be in the format dd/mm/yyyy.");
    EXPECT_EQ(refusal([&](auto& s) { s.parFileText = dir.path("MODEL.Par"); }),
              "PAR file name must end in .PAR or .par");
    EXPECT_EQ(refusal([](auto& s) { s.parFileText = ".PAR"; }), "PAR file name is unacceptable.");
    EXPECT_EQ(refusal([&](auto& s) { s.parFileText = dir.path(".par"); }),
              "You must select an appropriate PAR file name to save data to.");
    EXPECT_EQ(refusal([](auto& s) { s.histogramCatsText.text = "4"; }),
              "Histogram catgeories cannot be less than 5 or greater than 100.");
    EXPECT_EQ(refusal([](auto& s) { s.noOfFoldsText.text = "1"; }),
              "Number of folds cannot be less than 2 or greater than 10.");

    state.applyStepwise = true;
    std::vector<std::string> nine(9, Data + "/mslp.dat");
    EXPECT_EQ(refusal([&](auto& s) { s.choosePredictors(nine); }),
              "You cannot select more than 8 predictors for the stepwise approach.");
    EXPECT_EQ(refusal([](auto& s) { s.xValidationCheck = true; }),
              "You cannot perform a cross validation with the stepwise approach. Please go to "
              "advanced settings to deselect.");
    EXPECT_EQ(refusal([](auto& s) { s.modelType = CalibrateScreen::Seasonal; }),
              "You can only select an annual model for the stepwise approach.");
    EXPECT_EQ(refusal([](auto& s) {
                  s.modelType = CalibrateScreen::Annual;
                  s.parmOpt = CalibrateScreen::Conditional;
              }),
              "You can only select an unconditional model for the stepwise approach.");
    EXPECT_FALSE(fileExists(dir.path("MODEL.PAR")));
}

TEST(CalibrateScreen, StepwiseAsksBeforeItStarts) {
    TempDir dir;
    auto state = sixYears();
    state.applyStepwise = true;
    CalibrateScreen screen(state);
    fill(screen, dir);
    screen.modelType = CalibrateScreen::Annual;
    std::vector<std::string> eight(8, Data + "/mslp.dat");
    eight[0] = Data + "/shum.dat";
    screen.choosePredictors(eight);
    ScriptedDialogs dialogs;
    CountingProgress progress;
    EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Refused);
    EXPECT_EQ(dialogs.questions, std::vector<std::string>{"Stepwise regression is selected.  "
                                                          "This can take some time. Do you "
                                                          "want to proceed?"});
    EXPECT_FALSE(fileExists(dir.path("MODEL.PAR")));
    dialogs.answers.push_back(true);
    EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
    EXPECT_TRUE(fileExists(dir.path("MODEL.PAR")));
    EXPECT_LE(screen.results->parameters.predictorNames.size(), 2u); // mslp eight times over
}

TEST(CalibrateScreen, CancelInTheSimplexLeavesNoParameterFile) {
    TempDir dir;
    auto state = sixYears();
    state.optimisationChoice = 2;
    CalibrateScreen screen(state);
    fill(screen, dir);
    screen.modelType = CalibrateScreen::Annual;
    ScriptedDialogs dialogs;
    CountingProgress probe;
    ASSERT_EQ(screen.calibrate(dialogs, probe), RunOutcome::Done);
    std::filesystem::remove(dir.path("MODEL.PAR"));

    // Stop a few reports before the end of a full run: inside the simplex.
    CountingProgress progress(probe.reports - 6);
    state.stopRequested.request(); // a stale request from before the run is cleared
    EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Cancelled);
    EXPECT_EQ(progress.captions.back(), "Calibrating Model");
    EXPECT_FALSE(fileExists(dir.path("MODEL.PAR")));
    EXPECT_FALSE(screen.results.has_value());
    EXPECT_FALSE(state.stopRequested.checkStop());
    EXPECT_TRUE(dialogs.errors().empty()); // a cancel shows no box
}

TEST(CalibrateScreen, FailuresShowTheBoxAndWriteNothing) {
    TempDir dir;
    auto state = sixYears();
    CalibrateScreen screen(state);
    fill(screen, dir);
    screen.choosePredictors({Data + "/mslp.dat", Data + "/mslp.dat"});
    ScriptedDialogs dialogs;
    CountingProgress progress;
    EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Failed);
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0],
              "Sorry - an error has occurred - please check all selections and try again.\r\n"
              "Matrix is singular and cannot be inverted.\r\n"
              "Matrix is singular and cannot be inverted.");
    EXPECT_FALSE(fileExists(dir.path("MODEL.PAR")));

    // The simplex warns of the same design once, and the run goes on to its file.
    state.optimisationChoice = 2;
    ScriptedDialogs warned;
    EXPECT_EQ(screen.calibrate(warned, progress), RunOutcome::Done);
    ASSERT_EQ(warned.messages.size(), 1u);
    EXPECT_EQ(warned.messages[0].title, "Warning");
    EXPECT_EQ(warned.messages[0].text, "Linear dependencies between predictors.");
    EXPECT_TRUE(fileExists(dir.path("MODEL.PAR")));
}

TEST(CalibrateScreen, ResetKeepsTheMeanRatios) {
    TempDir dir;
    auto state = sixYears();
    state.modelTransformation = 4.0f;
    CalibrateScreen screen(state);
    fill(screen, dir);
    screen.parmOpt = CalibrateScreen::Conditional;
    screen.modelType = CalibrateScreen::Annual;
    ScriptedDialogs dialogs;
    CountingProgress progress;
    ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
    const double ratio = screen.meanRatio[3];
    EXPECT_EQ(ratio, screen.results->parameters.amounts[3].meanRatio);
    EXPECT_FALSE(screen.reportText().empty());
    screen.reset();
    EXPECT_EQ(screen.meanRatio[3], ratio);
    EXPECT_EQ(screen.parFileText, "*.PAR");
    EXPECT_TRUE(screen.reportText().empty());
}
