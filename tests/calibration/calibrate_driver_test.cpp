#include "calibration/calibrate_driver.hpp"

#include "calibration_test_support.hpp"
#include "core/record_calendar.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace varo::calibration;
using varo::core::Date;
using varo::testing::Calibrator;
using varo::testing::CountingProgress;
using varo::testing::DriverData;
using varo::testing::failsWith;
using varo::testing::sixYearState;
using varo::testing::TempDir;

namespace {

std::string data(const std::string& name) {
    return DriverData + "/" + name;
}

CalibrationRequest request(ModelType type, bool conditional, bool lag = false) {
    CalibrationRequest r = varo::testing::driverRequest(type, conditional);
    r.autoregression = lag;
    return r;
}

// tests/data/calibration/driver/reference.txt (numpy, see make_data.py there); the numbers
// of the line `kind` for `month` (1 to 12), after the month's number and `skip` more.
std::vector<double> reference(const std::string& kind, int month = 0, size_t skip = 0) {
    const auto lines = varo::testing::referenceLines(data("reference.txt"));
    const auto& row = lines.at(kind).at(static_cast<size_t>(std::max(month - 1, 0)));
    const size_t from = month > 0 ? 1 + skip : 0;
    return {row.begin() + static_cast<long>(from), row.end()};
}

void expectCoefficients(const std::vector<double>& ours, const std::vector<double>& theirs,
                        const std::string& what) {
    ASSERT_EQ(ours.size(), theirs.size()) << what;
    for (size_t i = 0; i < ours.size(); ++i) {
        EXPECT_NEAR(ours[i], theirs[i], 1e-9 * (1 + std::fabs(theirs[i]))) << what << " #" << i;
    }
}

// The golden file's last line names the data folder as "DATA".
void expectGolden(const varo::series::ParameterFile& file, const std::string& golden) {
    std::string expected = varo::testing::readFile(data(golden));
    const size_t at = expected.rfind("DATA/");
    if (at != std::string::npos) {
        expected.replace(at, 4, DriverData);
    }
    const std::string produced = varo::series::parameterFileText(file);
    if (produced != expected) {
        std::ofstream(std::string(VARO_BINARY_DIR) + "/" + golden, std::ios::binary) << produced;
    }
    EXPECT_EQ(produced, expected) << "written to " << VARO_BINARY_DIR << "/" << golden;
}

} // namespace

TEST(CalibrateGolden, UnconditionalAnnualWithTwoPredictors) {
    const auto state = sixYearState();
    Calibrator run;
    const CalibrationResults results = run(state, request(ModelType::Annual, false));
    expectCoefficients(results.parameters.months[0].coefficients, reference("annual"), "annual");
    expectGolden(results.parameters, "annual_unconditional.PAR");
    // Unconditional fits keep their residual pairs, one a day of the fit.
    EXPECT_EQ(results.residualPairs.size(), static_cast<size_t>(results.statistics[0].rows));
    EXPECT_EQ(run.progress.captions,
              (std::vector<std::string>{"Reading Data", "Skipping Unnecessary Data", "Reading Data",
                                        "Calibrating Model"}));
}

TEST(CalibrateGolden, MonthlyConditionalBoxCox) {
    auto state = sixYearState();
    state.modelTransformation = varo::core::TransformBoxCox;
    Calibrator run;
    const CalibrationResults results = run(state, request(ModelType::Monthly, true));
    for (int m = 1; m <= 12; ++m) {
        expectCoefficients(results.parameters.months[static_cast<size_t>(m - 1)].coefficients,
                           reference("occurrence", m), "occurrence of month " + std::to_string(m));
        EXPECT_GT(results.statistics[static_cast<size_t>(m - 1)].third, 0.5); // prop correct
    }
    expectGolden(results.parameters, "monthly_conditional_boxcox.PAR");
}

TEST(CalibrateGolden, SeasonalConditionalInverseNormalRepeatsSeasonRows) {
    auto state = sixYearState();
    state.modelTransformation = varo::core::TransformInverseNormal;
    Calibrator run;
    const CalibrationResults results = run(state, request(ModelType::Seasonal, true));
    // The golden file repeats each season's rows for its months.
    EXPECT_EQ(run.meanRatio[6], results.parameters.amounts[6].meanRatio); // kept for later runs
    expectGolden(results.parameters, "seasonal_conditional_inverse_normal.PAR");

    // A later run with another transformation writes the mean ratios the screen kept.
    state.modelTransformation = varo::core::TransformFourthRoot;
    const CalibrationResults later = run(state, request(ModelType::Seasonal, true));
    EXPECT_EQ(later.parameters.amounts[6].meanRatio, run.meanRatio[6]);
}

TEST(CalibrateGolden, MonthlyAutoregressionWithUnfilledRows) {
    const auto state = sixYearState();
    Calibrator run;
    auto r = request(ModelType::Monthly, false, true);
    r.includeChow = true;
    const CalibrationResults results = run(state, r);
    for (int m = 1; m <= 12; ++m) {
        expectCoefficients(results.parameters.months[static_cast<size_t>(m - 1)].coefficients,
                           reference("lagged", m, 1), "lagged month " + std::to_string(m));
    }
    EXPECT_EQ(reference("lagged", 3)[0], 2);        // the March of 1963 has two runs of one day
    EXPECT_EQ(results.statistics[0].predictors, 3); // the lag counts for Chow
    EXPECT_NE(results.statistics[0].chow, -999.0);
    expectGolden(results.parameters, "monthly_autoregression.PAR");
}

TEST(CalibrateDriver, FitStartOnTheRecordStartOrOnAMissingDay) {
    const auto state = sixYearState();
    Calibrator whole;
    auto r = request(ModelType::Annual, false);
    r.data.fitStart = Date{1, 1, 1961};
    r.data.fitDays = 2191;
    whole(state, r);
    EXPECT_EQ(whole.progress.captions,
              (std::vector<std::string>{"Reading Data", "Calibrating Model"})); // no skip

    // Rain is missing on 5 May 1961: a fit from that day starts on the next.
    r.data.fitStart = Date{5, 5, 1961};
    r.data.fitDays = varo::core::daysInclusive(Date{5, 5, 1961}, Date{31, 12, 1966});
    auto fromNext = r;
    fromNext.data.fitStart = Date{6, 5, 1961};
    fromNext.data.fitDays = r.data.fitDays - 1;
    Calibrator a;
    Calibrator b;
    EXPECT_EQ(a(state, r).parameters.months[0].coefficients,
              b(state, fromNext).parameters.months[0].coefficients);
}

TEST(CalibrateDriver, AGroupOfFewerThanTenDaysIsInsufficient) {
    const auto state = sixYearState();
    Calibrator run;
    const auto nineDays = [](ModelType type) {
        return varo::testing::driverRequest(type, false, Date{9, 1, 1962});
    };
    EXPECT_EQ(varo::testing::stopMessage([&] { run(state, nineDays(ModelType::Annual)); }),
              "Insufficient data available to build a model.");
    EXPECT_NO_THROW(
        run(state, varo::testing::driverRequest(ModelType::Annual, false, Date{10, 1, 1962})));
    // Monthly: nine days of January leave every month short.
    EXPECT_THROW(run(state, nineDays(ModelType::Monthly)), varo::core::RunStopped);
}

TEST(CalibrateDriver, FileProblemsAreFailuresNamingTheFile) {
    TempDir dir;
    auto state = sixYearState();
    Calibrator run;
    // Record and fit end a year after the files do.
    state.globalEDate = {31, 12, 1967};
    auto tooLong = request(ModelType::Annual, false);
    tooLong.data.fitEnd = Date{31, 12, 1967};
    tooLong.data.fitDays = 2191;
    // The required lines stay; the description names the file, its last line and the
    // dates that asked for more.
    EXPECT_TRUE(failsWith([&] { run(state, tooLong); }, 62,
                          "'" + data("rain.dat") +
                              "' ends after line 2191, before the dates in use: record from "
                              "01/01/1961 to 31/12/1967, fit 01/01/1962 to 31/12/1967, year "
                              "length 366. Change the dates to match the file, or choose a file "
                              "that covers them."));

    state = sixYearState();
    std::string shum = varo::testing::readFile(data("shum.dat"));
    shum.replace(shum.find("\r\n", 5000) + 2, 3, "x.y");
    auto word = request(ModelType::Annual, false);
    word.data.predictorPaths[1] = dir.write("shum.dat", shum);
    EXPECT_TRUE(failsWith([&] { run(state, word); }, 13,
                          "of '" + dir.path("shum.dat") + "' is not a number"));

    auto missing = request(ModelType::Annual, false);
    missing.data.predictorPaths[0] = dir.path("nowhere.dat");
    EXPECT_TRUE(failsWith([&] { run(state, missing); }, 53, "nowhere.dat"));
}

TEST(CalibrateDriver, AllMissingDataSayNoDayIsFullNotOnlyWhichFileEnded) {
    TempDir dir;
    const auto state = sixYearState();
    Calibrator run;
    // The predictand is missing throughout; the first predictor is a year shorter, so it is
    // the file that runs out.
    std::string missing;
    std::string shorter;
    const std::string mslp = varo::testing::readFile(data("mslp.dat"));
    for (size_t line = 0, at = 0; line < 2191; ++line) {
        missing += "-999\r\n";
        const size_t end = mslp.find("\r\n", at);
        if (line < 1826) {
            shorter += mslp.substr(at, end + 2 - at);
        }
        at = end + 2;
    }
    auto allMissing = request(ModelType::Annual, false);
    allMissing.data.predictandPath = dir.write("rain.dat", missing);
    allMissing.data.predictorPaths[0] = dir.write("mslp.dat", shorter);
    EXPECT_TRUE(failsWith([&] { run(state, allMissing); }, 62,
                          "From the fit start 01/01/1962 to the end of the data, '" +
                              dir.path("rain.dat") +
                              "' holds only the missing value code -999, so no day can be used. "
                              "Reading past the end of '" +
                              dir.path("mslp.dat") + "' (after line 1826)."));
    // Each file has values, never on the same day.
    std::string alternate;
    for (size_t line = 0; line < 2191; ++line) {
        alternate += line % 2 == 0 ? "-999\r\n" : "1.5\r\n";
    }
    std::string mslpOdd;
    for (size_t line = 0, at = 0; line < 1826; ++line) {
        const size_t end = mslp.find("\r\n", at);
        mslpOdd += line % 2 == 0 ? mslp.substr(at, end + 2 - at) : "-999\r\n";
        at = end + 2;
    }
    allMissing.data.predictandPath = dir.write("rain.dat", alternate);
    allMissing.data.predictorPaths[0] = dir.write("mslp.dat", mslpOdd);
    EXPECT_TRUE(failsWith([&] { run(state, allMissing); }, 62,
                          "No day from the fit start 01/01/1962 on has a value in every file: "
                          "each day has the missing value code -999 in one file or another."));
}

TEST(CalibrateDriver, DependentPredictorsAreSingularOrWarnedOfOncePerRun) {
    auto state = sixYearState();
    auto twice = request(ModelType::Monthly, false);
    twice.data.predictorPaths = {data("mslp.dat"), data("mslp.dat")};
    Calibrator leastSquares;
    EXPECT_TRUE(failsWith([&] { leastSquares(state, twice); }, 1306,
                          "Matrix is singular and cannot be inverted."));

    // The simplex fits all twelve months and warns once.
    state.optimisationChoice = 2;
    Calibrator simplex;
    const auto results = simplex(state, twice);
    EXPECT_EQ(simplex.notifier.warnings,
              std::vector<std::string>{"Warning: Linear dependencies between predictors."});
    EXPECT_TRUE(results.dependencyWarned);
}

TEST(CalibrateDriver, CancelStopsReadingAndTheSimplex) {
    auto state = sixYearState();
    Calibrator reading;
    reading.progress = CountingProgress(400); // during the skip of 1961
    EXPECT_THROW(reading(state, request(ModelType::Annual, false)), varo::core::Cancelled);

    // A run that is let go shows how many reports it makes; a stop five reports before its
    // end falls inside the simplex's iterations.
    state.optimisationChoice = 2;
    Calibrator probe;
    probe(state, request(ModelType::Annual, false));
    ASSERT_GT(probe.progress.reports, 2200);
    Calibrator simplex;
    simplex.progress = CountingProgress(probe.progress.reports - 5);
    EXPECT_THROW(simplex(state, request(ModelType::Annual, false)), varo::core::Cancelled);
    EXPECT_EQ(simplex.progress.captions.back(), "Calibrating Model");
    EXPECT_EQ(simplex.progress.lastCurrent, 50);
}

TEST(CalibrateDriver, FixedLimitsAreBoundsFailures) {
    auto state = sixYearState();
    Calibrator run;
    auto wide = request(ModelType::Annual, false);
    wide.data.predictorPaths.assign(48, data("mslp.dat"));
    EXPECT_TRUE(failsWith([&] { run(state, wide); }, 9, "at most 50 parameters"));
    state.optimisationChoice = 2;
    wide.data.predictorPaths.resize(21);
    EXPECT_TRUE(failsWith([&] { run(state, wide); }, 9, "at most 20 predictors"));
}

TEST(CalibrateDriver, StepwiseChoosesAndNamesTheSubset) {
    auto state = sixYearState();
    state.applyStepwise = true;
    Calibrator run;
    auto r = request(ModelType::Annual, false);
    r.data.predictorPaths = {data("shum.dat"), data("mslp.dat")};
    const auto results = run(state, r);
    // The criterion is the largest, which with the regression sum of squares inside the
    // logarithm favours the full set here.
    EXPECT_EQ(results.parameters.predictorNames,
              (std::vector<std::string>{"shum.dat", "mslp.dat"}));
    EXPECT_NE(std::find(run.progress.captions.begin(), run.progress.captions.end(),
                        "Calibrating Stepwise Models"),
              run.progress.captions.end());
}

namespace {

// tests/data/calibration/stepwise_lag (numpy, see make_reference.py there): 120 days of an
// annual model whose lag column is the last of the candidates.
const std::string StepwiseLagData = std::string(VARO_TEST_DATA) + "/calibration/stepwise_lag";

std::vector<double> stepwiseReference(const std::string& key) {
    return varo::testing::referenceLines(StepwiseLagData + "/reference.txt").at(key).at(0);
}

} // namespace

TEST(CalibrateStepwise, LagTermIsTheLastCandidateAndStaysOnlyWhenChosen) {
    struct Case {
        const char* name;
        std::vector<std::string> predictors;
        std::vector<std::string> chosen; // as the search names them
        std::vector<std::string> named;  // as the parameter file names them
        bool lag;
        int subsets;
    };
    const Case cases[] = {
        // dup.dat copies a.dat: every subset holding both is singular, and of the equal
        // triples the first, with a.dat, stays.
        {"kept",
         {"a.dat", "dup.dat", "b.dat"},
         {"a.dat", "b.dat", "Autoregression"},
         {"a.dat", "b.dat"},
         true,
         15},
        // ylag.dat equals the lag column: the pair (a, ylag) comes before (a, lag).
        {"dropped", {"a.dat", "ylag.dat"}, {"a.dat", "ylag.dat"}, {"a.dat", "ylag.dat"}, false, 7},
    };
    auto state = sixYearState();
    state.globalSDate = {1, 1, 1961};
    state.globalEDate = {30, 4, 1961};
    state.applyStepwise = true;
    for (const Case& c : cases) {
        CalibrationRequest r;
        r.data.predictandPath = StepwiseLagData + "/y.dat";
        for (const std::string& name : c.predictors) {
            r.data.predictorPaths.push_back(StepwiseLagData + "/" + name);
        }
        r.data.fitStart = Date{1, 1, 1961};
        r.data.fitEnd = Date{30, 4, 1961};
        r.data.fitDays = 120;
        r.data.modelType = ModelType::Annual;
        r.predictandName = "y.dat";
        r.fitStartText = "01/01/1961";
        r.autoregression = true;
        Calibrator run;
        const CalibrationResults results = run(state, r);
        ASSERT_TRUE(results.stepwise) << c.name;
        EXPECT_EQ(results.stepwise->chosen, c.chosen) << c.name;
        EXPECT_EQ(results.stepwise->subsetsTried, c.subsets) << c.name;
        const double criterion = stepwiseReference(std::string(c.name) + "_criterion")[0];
        EXPECT_NEAR(results.stepwise->criterion, criterion, 1e-9 * std::fabs(criterion));
        EXPECT_EQ(results.parameters.predictorNames, c.named) << c.name;
        EXPECT_EQ(results.parameters.autoregression, c.lag) << c.name;
        expectCoefficients(results.parameters.months[11].coefficients,
                           stepwiseReference(std::string(c.name) + "_coefficients"), c.name);
        EXPECT_EQ(results.statistics[0].predictors, static_cast<int>(c.chosen.size())) << c.name;
    }
}

TEST(CalibrateStepwise, EightPredictorsAndTheLagAreMoreSubsetsThanTheSearchKeeps) {
    auto state = sixYearState();
    state.applyStepwise = true;
    Calibrator run;
    auto r = request(ModelType::Annual, false, true);
    r.data.predictorPaths.assign(8, data("mslp.dat"));
    EXPECT_TRUE(failsWith([&] { run(state, r); }, 9, "at most 500 subsets; 9 candidates make 511"));
    EXPECT_EQ(std::find(run.progress.captions.begin(), run.progress.captions.end(),
                        "Calibrating Stepwise Models"),
              run.progress.captions.end());
}

TEST(CalibrateDriver, A360DayRecordEndsWhenThePositionRunsPastTheEndDate) {
    // Under 360 days the skip of 1961 takes 360 rows, and a fit ending on 1 March 1962
    // stops at the position 30 February, which counts as 2 March: 30 + 29 rows are read,
    // one of them (row 406, 10 February 1962 in the file's own calendar) missing.
    auto state = sixYearState();
    state.yearIndicator = 360;
    Calibrator run;
    const auto results =
        run(state, varo::testing::driverRequest(ModelType::Annual, false, Date{1, 3, 1962}));
    EXPECT_EQ(results.statistics[0].rows, 58);
    EXPECT_EQ(results.parameters.yearIndicator, 360);
}
