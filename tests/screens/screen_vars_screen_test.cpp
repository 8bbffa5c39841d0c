#include "screens/screen_vars_screen.hpp"
#include "support/recording_progress.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <numeric>

using namespace varo;
using varo::screens::ScreenVarsScreen;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;
using Outcome = varo::screens::RunOutcome;

namespace {

const std::string DataFolder = std::string(VARO_TEST_DATA) + "/screening/";

struct ScreenVarsFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    core::NullProgress progress;
    TempDir dir;
    ScreenVarsFixture() {
        core::initialiseState(state);
        state.defaultDir = dir.folder();
    }

    // Thirteen predictor files named after table codes, and a predictand.
    void fillFolder() {
        for (const char* code : {"temp", "mslp", "p500", "p850", "rhum", "r500", "r850", "sphu",
                                 "p__f", "p__z", "p__v", "p__u", "p_th"}) {
            dir.write(std::string("obs_") + code + ".dat", "1\r\n2\r\n3\r\n");
        }
    }
};

} // namespace

TEST_F(ScreenVarsFixture, MoreThanTwelvePredictorsWarnAndCorrelationRefusesThem) {
    fillFolder();
    ScreenVarsScreen screen(state);
    ASSERT_EQ(screen.predictors.files.size(), 13u);
    screen.selectPredictorItems({3, 1}, dialogs);
    EXPECT_EQ(screen.predictors.count(), 2u);
    EXPECT_TRUE(dialogs.messages.empty());
    std::vector<size_t> all(13);
    std::iota(all.begin(), all.end(), 0);
    screen.selectPredictorItems(all, dialogs);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "Warning");
    EXPECT_EQ(dialogs.messages[0].text,
              "Can only display up to 12 predictors in correlation analysis.");

    screen.choosePredictand(dir.path("obs_mslp.dat"));
    EXPECT_EQ(screen.correlate(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "Sorry - you are allowed a maximum of 12 predictors only.");
    // Explained variance takes them all (the files are too short for the period, though).
    EXPECT_EQ(screen.explainVariance(dialogs, progress), Outcome::Failed);
    EXPECT_NE(dialogs.lastText().find("Input past end of file."), std::string::npos);
}

TEST_F(ScreenVarsFixture, FieldChecksRefuseAndRestoreTheLastGoodValue) {
    ScreenVarsScreen screen(state);
    screen.fsDate.text = "31/12/1960";
    EXPECT_FALSE(screen.checkFitStart(dialogs));
    EXPECT_EQ(screen.fsDate.text, "01/01/1961");
    screen.feDate.text = "31/12/1960"; // before the start
    EXPECT_FALSE(screen.checkFitEnd(dialogs));
    const auto level = [&](const std::string& text) {
        screen.sigLevelText.text = text;
        return screen.checkSigLevel(dialogs);
    };
    EXPECT_FALSE(level("five"));
    EXPECT_FALSE(level("0"));
    EXPECT_FALSE(level("1"));
    EXPECT_EQ(screen.sigLevelText.text, "0.05");
    EXPECT_TRUE(level("0.01"));
    EXPECT_EQ(screen.sigLevel, 0.01f);
    EXPECT_EQ(dialogs.errors(), (std::vector<std::string>{
                                    "Fit start date must be later than record start date.",
                                    "End date must be later than start date.",
                                    "Significance level must be a value.",
                                    "Significance level must be positive and less than 1.",
                                    "Significance level must be positive and less than 1.",
                                }));
}

TEST_F(ScreenVarsFixture, AutoregressionWithTheConditionalProcessWarns) {
    ScreenVarsScreen screen(state);
    screen.setAutoregression(true, dialogs);
    EXPECT_TRUE(dialogs.messages.empty());
    screen.setProcess(ScreenVarsScreen::Conditional, dialogs);
    screen.setAutoregression(false, dialogs);
    screen.setAutoregression(true, dialogs);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    for (const auto& shown : dialogs.messages) {
        EXPECT_EQ(shown.title, "Warning");
        EXPECT_EQ(shown.text, "Can only apply autoregression analysis to unconditional process.");
    }
}

TEST_F(ScreenVarsFixture, BothAnalysesReportAndThePredictandIsRemembered) {
    ScreenVarsScreen screen(state);
    dialogs.pickedFiles.push_back(DataFolder + "predictand.dat");
    screen.pickPredictand(dialogs);
    EXPECT_EQ(screen.predictand.text, "predictand.dat");
    EXPECT_EQ(state.selectedPredictandName, "predictand.dat");
    EXPECT_EQ(state.selectedPredictandPath, DataFolder + "predictand.dat");
    screen.predictors.setFolder(DataFolder);
    screen.selectPredictorItems({2, 1}, dialogs); // after make_reference.py
    screen.feDate.text = "31/12/1963";
    screen.datesCombo = 7; // March
    ASSERT_EQ(screen.correlate(dialogs, progress), Outcome::Done) << dialogs.lastText();
    EXPECT_EQ(screen.fileList, (std::vector<std::string>{"p1_mslp.dat", "p2_p500.dat"}));
    EXPECT_EQ(screen.report->lines[10], "Analysis Period: 01/01/1961 - 31/12/1963 (March)");
    screen.setAutoregression(true, dialogs);
    ASSERT_EQ(screen.explainVariance(dialogs, progress), Outcome::Done);
    EXPECT_EQ(screen.fileList.back(), "Autoregression");
    EXPECT_FALSE(screen.correlation.has_value());
    EXPECT_EQ(screen.report->lines[0], "   RESULTS: EXPLAINED VARIANCE");
}

TEST_F(ScreenVarsFixture, ACancelShowsNothingAndLeavesNoResults) {
    varo::testing::RecordingProgress stop(0);
    ScreenVarsScreen screen(state);
    screen.choosePredictand(DataFolder + "predictand.dat");
    screen.choosePredictors({DataFolder + "p1_mslp.dat"}, dialogs);
    screen.feDate.text = "31/12/1963";
    state.stopRequested.request();
    EXPECT_EQ(screen.correlate(dialogs, stop), Outcome::Cancelled);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_FALSE(screen.report.has_value());
    EXPECT_FALSE(state.stopRequested.checkStop()); // the cleanup clears the request
}

TEST_F(ScreenVarsFixture, RunsNeedTheirSelectionsAndScatterExactlyOnePredictor) {
    ScreenVarsScreen screen(state);
    EXPECT_EQ(screen.correlate(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You must select a predictand.");
    screen.choosePredictand(DataFolder + "predictand.dat");
    EXPECT_EQ(screen.explainVariance(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You must select at least one predictor.");
    screen.feDate.text = "31/12/1963";
    EXPECT_EQ(screen.scatter(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You must select one predictor to plot with.");
    screen.choosePredictors({DataFolder + "p1_mslp.dat", DataFolder + "p2_p500.dat"}, dialogs);
    EXPECT_EQ(screen.scatter(dialogs, progress), Outcome::Refused);
    EXPECT_EQ(dialogs.lastText(), "You must select only one predictor only to plot with.");
    screen.setAutoregression(true, dialogs);
    ASSERT_EQ(screen.scatter(dialogs, progress), Outcome::Done);
    EXPECT_EQ(screen.scatterPoints->xTitle, "Autoregression");
    EXPECT_EQ(screen.scatterPoints->points.size() + 8, 3u * 365 - 1);
}
