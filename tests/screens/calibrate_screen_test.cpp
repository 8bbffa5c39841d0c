#include "screens/calibrate_screen.hpp"

#include "calibration/calibration_test_support.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <numeric>

using varo::screens::CalibrateScreen;
using varo::screens::RunOutcome;
using namespace varo::testing;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/calibration/driver";

// Six years of record from 01/01/1961 in the folder of the test data.
struct CalibrateFixture : ::testing::Test {
    TempDir dir;
    varo::core::ProgramState state;
    ScriptedDialogs dialogs;
    CountingProgress progress;
    CalibrateFixture() {
        varo::core::initialiseState(state);
        state.globalSDate = {1, 1, 1961};
        state.globalEDate = {31, 12, 1966};
        state.defaultDir = Data;
    }

    // A screen with every input good: predictand, both predictors, a parameter file.
    CalibrateScreen filled() {
        CalibrateScreen screen(state);
        screen.predictand.choose(Data + "/rain.dat");
        screen.predictors.choose({Data + "/mslp.dat", Data + "/shum.dat"});
        screen.chooseParFile(dir.path("MODEL.PAR"));
        return screen;
    }
};

} // namespace

TEST_F(CalibrateFixture, OpensWithTheSettingsAndTheDefaultFolder) {
    state.selectedPredictandName = "rain.dat";
    state.selectedPredictandPath = Data + "/rain.dat";
    CalibrateScreen screen(state);
    EXPECT_EQ(screen.predictand.text, "rain.dat");
    EXPECT_EQ(screen.predictand.path, Data + "/rain.dat");
    EXPECT_EQ(screen.fsDate.text, "01/01/1961");
    EXPECT_EQ(screen.feDate.text, "31/12/1966");
    EXPECT_EQ(screen.noOfDays, "2191");
    EXPECT_EQ(screen.predictors.folder, Data);
    EXPECT_EQ(screen.predictors.files.at(0), "annual_unconditional.PAR");
}

TEST_F(CalibrateFixture, FieldChecksKeepTheirBoundsAndRestoreTheLastGoodValue) {
    CalibrateScreen screen(state);
    using Check = bool (CalibrateScreen::*)(varo::screens::Dialogs&);
    const auto leave = [&](varo::screens::TextField& field, Check check, const std::string& text) {
        dialogs.messages.clear();
        const std::string before = field.lastGood;
        field.text = text;
        const bool ok = (screen.*check)(dialogs);
        EXPECT_EQ(field.text, ok ? text : before) << text;
        return ok ? std::string() : dialogs.lastText();
    };
    EXPECT_EQ(leave(screen.fsDate, &CalibrateScreen::checkFitStart, "01/01/1962"), "");
    EXPECT_EQ(screen.noOfDays, "1826");
    EXPECT_EQ(leave(screen.fsDate, &CalibrateScreen::checkFitStart, "31/12/1960"),
              "Fit start date must be later than record start date.");
    EXPECT_EQ(leave(screen.feDate, &CalibrateScreen::checkFitEnd, "01/01/1962"), ""); // one day
    EXPECT_EQ(screen.noOfDays, "1");
    const auto folds = [&](const std::string& text) {
        return leave(screen.noOfFoldsText, &CalibrateScreen::checkFolds, text);
    };
    EXPECT_EQ(folds("x"), "Folds value is invalid.");
    EXPECT_EQ(folds("11"), "Number of folds cannot be less than 2 or greater than 10.");
    EXPECT_EQ(folds("10"), "");
    const auto categories = [&](const std::string& text) {
        return leave(screen.histogramCatsText, &CalibrateScreen::checkHistogramCategories, text);
    };
    EXPECT_EQ(categories(""), "Histogram catgeories value is invalid.");
    EXPECT_EQ(categories("101"), "Histogram catgeories cannot be less than 5 or greater than 100.");
    EXPECT_EQ(categories("100"), "");
    EXPECT_EQ(categories("5"), "");
}

// Each step mends the one refusal before; the rest of the screen is still wrong.
TEST_F(CalibrateFixture, RunChecksComeInTheirOrderAndStopAtTheFirst) {
    state.applyStepwise = true;
    CalibrateScreen screen(state);
    const auto refusal = [&] {
        dialogs.messages.clear();
        EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Refused);
        EXPECT_LE(dialogs.messages.size(), 1u);
        return dialogs.lastText();
    };
    screen.xValidationCheck = true;
    screen.parmOpt = CalibrateScreen::Conditional;
    screen.autoRegressionCheck = true;
    screen.fsDate.text = "bad";
    screen.noOfFoldsText.text = "1";
    screen.histogramCatsText.text = "4";
    EXPECT_EQ(refusal(), "You must select a predictand.");
    screen.predictand.choose(Data + "/rain.dat");
    EXPECT_EQ(refusal(), "You must select at least one predictor.");
    screen.predictors.choose(std::vector<std::string>(9, Data + "/mslp.dat"));
    EXPECT_EQ(refusal(), "You cannot select more than 8 predictors for the stepwise approach.");
    screen.predictors.choose({Data + "/mslp.dat", Data + "/shum.dat"});
    EXPECT_EQ(refusal(), "You cannot perform a cross validation with the stepwise approach. "
                         "Please go to advanced settings to deselect.");
    screen.xValidationCheck = false;
    EXPECT_EQ(refusal(), "You can only select an annual model for the stepwise approach.");
    screen.modelType = CalibrateScreen::Annual;
    EXPECT_EQ(refusal(), "You can only select an unconditional model for the stepwise approach.");
    screen.parmOpt = CalibrateScreen::Unconditional;
    EXPECT_EQ(refusal(), "You must enter an appropriate output file name."); // still "*.PAR"
    screen.parFileText = "";
    EXPECT_EQ(refusal(), "You must enter an appropriate output file name.");
    screen.parFileText = "x";
    EXPECT_EQ(refusal(), "Start date is invalid - it must be in the format dd/mm/yyyy.");
    // The refused date went back to its last good value.
    EXPECT_EQ(refusal(), "PAR file name must end in .PAR or .par");
    screen.parFileText = ".PAR";
    EXPECT_EQ(refusal(), "PAR file name is unacceptable.");
    screen.parFileText = dir.path(".par");
    EXPECT_EQ(refusal(), "You must select an appropriate PAR file name to save data to.");
    screen.parFileText = dir.path("MODEL.PAR");
    EXPECT_EQ(refusal(), "Number of folds cannot be less than 2 or greater than 10.");
    EXPECT_EQ(refusal(), "Histogram catgeories cannot be less than 5 or greater than 100.");
    // Stepwise selection with the lag term is allowed: the question comes next.
    EXPECT_EQ(refusal(), ""); // the question, answered No
    EXPECT_EQ(dialogs.questions.size(), 1u);
    EXPECT_FALSE(fileExists(dir.path("MODEL.PAR")));
}

TEST_F(CalibrateFixture, StepwiseAsksBeforeItStarts) {
    state.applyStepwise = true;
    CalibrateScreen screen = filled();
    screen.modelType = CalibrateScreen::Annual;
    std::vector<std::string> eight(8, Data + "/mslp.dat");
    eight[0] = Data + "/shum.dat";
    screen.predictors.choose(eight);
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

TEST_F(CalibrateFixture, CancelInTheSimplexLeavesNoParameterFile) {
    state.optimisationChoice = 2;
    CalibrateScreen screen = filled();
    screen.modelType = CalibrateScreen::Annual;
    ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
    std::filesystem::remove(dir.path("MODEL.PAR"));

    // Stop a few reports before the end of a full run: inside the simplex.
    CountingProgress stopping(progress.reports - 6);
    state.stopRequested.request(); // a stale request from before the run is cleared
    EXPECT_EQ(screen.calibrate(dialogs, stopping), RunOutcome::Cancelled);
    EXPECT_EQ(stopping.captions.back(), "Calibrating Model");
    EXPECT_FALSE(fileExists(dir.path("MODEL.PAR")));
    EXPECT_FALSE(screen.results.has_value());
    EXPECT_FALSE(state.stopRequested.checkStop());
    EXPECT_TRUE(dialogs.messages.empty()); // a cancel shows no box
}

TEST_F(CalibrateFixture, FailuresShowTheBoxAndWriteNothing) {
    CalibrateScreen screen = filled();
    screen.predictors.choose({Data + "/mslp.dat", Data + "/mslp.dat"});
    EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Failed);
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{
                  "Sorry - an error has occurred - please check all selections and try again.\r\n"
                  "Matrix is singular and cannot be inverted.\r\n"
                  "Matrix is singular and cannot be inverted."});
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

TEST_F(CalibrateFixture, ResetKeepsTheMeanRatios) {
    state.modelTransformation = varo::core::TransformInverseNormal;
    CalibrateScreen screen = filled();
    screen.parmOpt = CalibrateScreen::Conditional;
    screen.modelType = CalibrateScreen::Annual;
    ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
    const double ratio = screen.meanRatio[3];
    EXPECT_EQ(ratio, screen.results->parameters.amounts[3].meanRatio);
    EXPECT_FALSE(screen.reportText().empty());
    screen.reset();
    EXPECT_EQ(screen.meanRatio[3], ratio);
    EXPECT_EQ(screen.parFileText, "*.PAR");
    EXPECT_TRUE(screen.reportText().empty());
}

// The report's heading, the coefficient table and the stepwise lines follow what the search
// kept of the lag term (data and numpy's choice in tests/data/calibration/stepwise_lag).
TEST_F(CalibrateFixture, StepwiseWithTheLagTermReportsWhatItKept) {
    const std::string lagData = std::string(VARO_TEST_DATA) + "/calibration/stepwise_lag/";
    state.globalEDate = {30, 4, 1961};
    state.applyStepwise = true;
    struct Case {
        std::vector<std::string> predictors;
        std::string heading;
        std::vector<std::string> columns;
        std::string chosen;
    };
    const Case cases[] = {
        {{"a.dat", "dup.dat", "b.dat"},
         "Predictand: y.dat\nPredictors: a.dat\n            b.dat\nAutoregression\n",
         {"Constant", "a.dat", "b.dat", "Autoregression"},
         "Chosen: a.dat, b.dat, Autoregression (criterion 181.999)"},
        {{"a.dat", "ylag.dat"},
         "Predictand: y.dat\nPredictors: a.dat\n            ylag.dat\n\n",
         {"Constant", "a.dat", "ylag.dat"},
         "Chosen: a.dat, ylag.dat (criterion 179.304)"},
    };
    for (const Case& c : cases) {
        CalibrateScreen screen(state);
        screen.predictand.choose(lagData + "y.dat");
        std::vector<std::string> paths;
        for (const std::string& name : c.predictors) {
            paths.push_back(lagData + name);
        }
        screen.predictors.choose(paths);
        screen.chooseParFile(dir.path("LAG.PAR"));
        screen.modelType = CalibrateScreen::Annual;
        screen.autoRegressionCheck = true;
        dialogs.answers.push_back(true);
        ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done) << dialogs.lastText();
        EXPECT_EQ(screen.reportText().rfind(c.heading, 0), 0u) << screen.reportText();
        ASSERT_EQ(screen.coefficients.size(), 1u);
        EXPECT_EQ(screen.coefficients[0].columns, c.columns);
        ASSERT_EQ(screen.stepwiseLines.size(), 2u);
        EXPECT_EQ(screen.stepwiseLines[1], c.chosen);
        EXPECT_NE(screen.resultsText().find("\n" + c.chosen + "\n"), std::string::npos);
    }
}

TEST_F(CalibrateFixture, AParameterFileThatIsTheDataIsRefusedBeforeAnythingIsRead) {
    using varo::testing::readFile;
    const auto predictand = dir.write("rain.PAR", readFile(Data + "/rain.dat"));
    const auto predictor = dir.write("mslp.par", readFile(Data + "/mslp.dat"));
    std::filesystem::create_symlink(predictor, dir.path("link.PAR"));
    for (const auto& [output, input] : std::vector<std::pair<std::string, std::string>>{
             {predictand, predictand}, {predictor, predictor}, {dir.path("link.PAR"), predictor}}) {
        CalibrateScreen screen = filled();
        screen.predictand.choose(predictand);
        screen.predictors.choose({predictor, Data + "/shum.dat"});
        screen.chooseParFile(output);
        dialogs.messages.clear();
        EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Refused) << output;
        EXPECT_EQ(dialogs.errors(),
                  std::vector<std::string>{"The output file '" + output +
                                           "' is the same file as the input file '" + input +
                                           "': writing it would destroy the input. Choose another "
                                           "output file."});
    }
    EXPECT_EQ(readFile(predictand), readFile(Data + "/rain.dat"));
    EXPECT_EQ(readFile(predictor), readFile(Data + "/mslp.dat"));
}

namespace {

// Read apart from the program's readers: the days with a value in every file of `filled`,
// and those of them whose predictand is above the threshold of 0.
struct FittedDays {
    size_t all = 0;
    size_t wet = 0;
};

FittedDays fittedDays() {
    std::ifstream rain(Data + "/rain.dat");
    std::ifstream mslp(Data + "/mslp.dat");
    std::ifstream shum(Data + "/shum.dat");
    FittedDays days;
    double r = 0, m = 0, s = 0;
    while (rain >> r && mslp >> m && shum >> s) {
        if (r != -999 && m != -999 && s != -999) {
            ++days.all;
            days.wet += static_cast<float>(r) > 0.0f ? 1 : 0;
        }
    }
    return days;
}

} // namespace

// After a run the plot is the one GraphType asks for: none, a point a fitted day, or the
// histogram of HistogramCatsText bars (a half converted to the even count), which counts
// every residual but the largest. A conditional model's residuals are its amounts', one a
// wet day.
TEST_F(CalibrateFixture, TheResidualPlotIsTheOneGraphTypeAsksFor) {
    const FittedDays days = fittedDays();
    CalibrateScreen screen = filled();
    ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
    EXPECT_FALSE(screen.residualPlot.has_value());

    screen.graphType = CalibrateScreen::ScatterPlot;
    ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
    ASSERT_TRUE(screen.residualPlot.has_value());
    EXPECT_EQ(screen.residualPlot->title, "Residual Plot");
    EXPECT_EQ(screen.residualPlot->series.at(0).x.size(), days.all);

    screen.parmOpt = CalibrateScreen::Conditional;
    screen.graphType = CalibrateScreen::Histogram;
    for (const auto& [text, count] : {std::pair{"7.5", 8u}, std::pair{"6.5", 6u}}) {
        screen.histogramCatsText.text = text;
        ASSERT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Done);
        ASSERT_TRUE(screen.residualPlot.has_value());
        EXPECT_EQ(screen.residualPlot->series.at(0).y.size(), count) << text;
    }
    EXPECT_EQ(screen.residualPlot->title, "VARO Residual Histogram");
    const std::vector<double>& bars = screen.residualPlot->series.at(0).y;
    const auto& pairs = screen.results->residualPairs;
    EXPECT_EQ(pairs.size(), days.wet);
    double largest = -1e300;
    for (const auto& pair : pairs) {
        largest = std::max(largest, pair.residual);
    }
    const auto atLargest = std::count_if(
        pairs.begin(), pairs.end(), [&](const auto& pair) { return pair.residual == largest; });
    EXPECT_EQ(std::accumulate(bars.begin(), bars.end(), 0.0) + static_cast<double>(atLargest),
              static_cast<double>(pairs.size()));

    screen.histogramCatsText.text = "4";
    EXPECT_EQ(screen.calibrate(dialogs, progress), RunOutcome::Refused);
    EXPECT_FALSE(screen.residualPlot.has_value());
}
