// Whole runs against OUT and SIM files computed independently by
// tests/data/weathergen/make_references.py, and the run's failure and cancel paths.
#include "core/failure.hpp"
#include "core/program_state.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"
#include "weathergen/synthesis_driver.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <vector>

using namespace varo;
using varo::testing::fileExists;
using varo::testing::readFile;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/weathergen";

std::string data(const std::string& name) {
    return Data + "/" + name;
}

weathergen::SynthesisRequest request(const std::string& par, const std::string& out,
                                     core::Date start, long days, int members) {
    weathergen::SynthesisRequest r;
    r.parameterPath = par;
    r.predictorFolder = Data;
    r.outPath = out;
    r.start = start;
    r.days = days;
    r.ensembleSize = members;
    return r;
}

// Stops the run at the given report of the day loop.
class StopAtDay final : public core::Progress {
public:
    explicit StopAtDay(long day) : day_(day) {}
    void report(long current, long, std::string_view caption) override {
        if (caption == weathergen::SynthesisCaption && current > 0) {
            ++days_;
        }
    }
    bool stopRequested() override { return days_ == day_; }

private:
    long day_;
    long days_ = 0;
};

// The first n lines of a text with CR LF line ends.
std::string firstLines(const std::string& text, int n) {
    size_t end = 0;
    for (int i = 0; i < n; ++i) {
        end = text.find("\r\n", end) + 2;
    }
    return text.substr(0, end);
}

// A folder for the run's files and a state with the fixed random stream.
struct SynthesisRun : ::testing::Test {
    varo::testing::TempDir dir;
    core::ProgramState state;
    core::NullProgress progress;
    SynthesisRun() { state.randomSeed = false; }

    // Runs into `out` in the folder and gives the OUT file's text.
    std::string run(const std::string& par, const std::string& out, core::Date start, long days,
                    int members) {
        weathergen::synthesize(request(par, dir.path(out), start, days, members), state, progress);
        return readFile(dir.path(out));
    }

    ::testing::AssertionResult fails(const weathergen::SynthesisRequest& r, int number,
                                     const std::string& part) {
        return varo::testing::failsWith([&] { weathergen::synthesize(r, state, progress); }, number,
                                        part);
    }

    // The parameter file `name` of the test data with its "@DATA@" made the data folder and
    // `from` replaced by `to`, written to the folder.
    std::string parameterFile(const std::string& name, const std::string& from = "@DATA@",
                              const std::string& to = "@DATA@") {
        const std::string text = std::regex_replace(readFile(data(name)), std::regex(from), to);
        return dir.write("edited_" + name, std::regex_replace(text, std::regex("@DATA@"), Data));
    }
};

} // namespace

TEST_F(SynthesisRun, NoiseFreeUnconditionalRunRepeatsTheRegression) {
    state.precN = 0;
    EXPECT_EQ(run(data("reg.PAR"), "reg.OUT", {27, 2, 1960}, 40, 3), readFile(data("reg.OUT")));
    EXPECT_EQ(readFile(dir.path("reg.SIM")), readFile(data("reg.SIM")));
    state.allowNeg = false;
    EXPECT_EQ(run(data("reg.PAR"), "reg.OUT", {27, 2, 1960}, 40, 3),
              readFile(data("reg_noneg.OUT")));
}

TEST_F(SynthesisRun, FixedThresholdRunsAreDeterministicUnderEveryTransformation) {
    state.randomSeed = true; // no random number may be drawn at all
    state.precN = 0;
    state.conditionalSelection = 2;
    state.conditionalThresh = 0.5f;
    state.biasCorrection = 0.9f;
    state.thresh = 0.3f;
    for (const char* code : {"1", "2", "3", "5"}) {
        const std::string name = std::string("fixed_c") + code;
        EXPECT_EQ(run(data(name + ".PAR"), name + ".OUT", {27, 2, 1960}, 40, 2),
                  readFile(data(name + ".OUT")))
            << name;
    }
}

TEST_F(SynthesisRun, StochasticBoxCoxRunFollowsTheOrderOfDraws) {
    state.yearIndicator = 360;
    state.allowNeg = false;
    state.thresh = 0.1f;
    series::ParameterFile shown;
    weathergen::synthesize(
        request(data("stochastic.PAR"), dir.path("stochastic.OUT"), {15, 1, 1961}, 60, 5), state,
        progress, [&](const series::ParameterFile& h) { shown = h; });
    EXPECT_EQ(readFile(dir.path("stochastic.OUT")), readFile(data("stochastic.OUT")));
    EXPECT_EQ(readFile(dir.path("stochastic.SIM")), readFile(data("stochastic.SIM")));
    EXPECT_FALSE(shown.hasAutoregressionLine);
    EXPECT_EQ(shown.predictandName, "rain.dat");

    // The fixed state repeats the file exactly; a clock seed gives another stream.
    EXPECT_EQ(run(data("stochastic.PAR"), "stochastic.OUT", {15, 1, 1961}, 60, 5),
              readFile(data("stochastic.OUT")));
    state.randomSeed = true;
    EXPECT_NE(run(data("stochastic.PAR"), "stochastic.OUT", {15, 1, 1961}, 60, 5),
              readFile(data("stochastic.OUT")));
}

TEST_F(SynthesisRun, InverseNormalAmountsComeFromTheCalibrationPeriod) {
    EXPECT_EQ(run(parameterFile("inverse.PAR"), "inverse.OUT", {20, 2, 1961}, 45, 4),
              readFile(data("inverse.OUT")));
}

TEST_F(SynthesisRun, EachDayUsesTheRowOfItsMonthUnderTheCalendarInForce) {
    // Intercept 100 times the month, nothing else: the OUT file shows each day's month.
    std::string par = " 0 \r\n 12 \r\n 366 \r\n01/01/1960\r\n 2000 \r\n01/01/1960\r\n 1000 \r\n"
                      "#FALSE#\r\n1\r\n 1 \r\nFalse\r\nobs.dat\r\n";
    for (int month = 1; month <= 12; ++month) {
        par += std::to_string(month * 100) + ".000       0.000         0.000         \r\n";
    }
    const auto parPath = dir.write("months.PAR", par);
    state.precN = 0;
    const auto months = [&](core::Date start, long days) {
        const std::string text = run(parPath, "months.OUT", start, days, 1);
        std::string firstDigits;
        for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
            firstDigits += text[at];
        }
        return firstDigits;
    };
    EXPECT_EQ(months({28, 2, 1960}, 3), "223");
    state.yearIndicator = 365;
    EXPECT_EQ(months({28, 2, 1960}, 3), "233");
    state.yearIndicator = 360;
    EXPECT_EQ(months({28, 2, 1961}, 5), "22233");
    // 31 January is no day of a 360-day year: the first step runs over into February.
    EXPECT_EQ(months({31, 1, 1961}, 2), "22");
    EXPECT_EQ(readFile(dir.path("months.OUT")).substr(0, 16), "200.000       \r\n");
}

TEST_F(SynthesisRun, MissingPredictorFileIsNamedAndLeavesAnEarlierSimAlone) {
    const auto parPath = parameterFile("reg.PAR", "reg_p2.dat", "absent.dat");
    const auto earlierSim = dir.write("run.SIM", "earlier");
    weathergen::SynthesisRequest r = request(parPath, dir.path("run.OUT"), {27, 2, 1960}, 5, 1);
    EXPECT_TRUE(fails(r, core::failure::FileNotFound,
                      "absent.dat.  Check Predictor Directory is set correctly and/or file "
                      "exists in archive."));
    EXPECT_EQ(readFile(earlierSim), "earlier");
    EXPECT_FALSE(fileExists(dir.path("run.OUT")));

    r.predictorFolder = dir.path("no-such-folder");
    EXPECT_TRUE(fails(r, core::failure::FileNotFound, "reg_p1.dat.  Check Predictor"));
}

// Whatever can be checked before the first day is: a run refused for any of these leaves
// the OUT and SIM files of an earlier run byte for byte as they were.
TEST_F(SynthesisRun, EverythingCheckedBeforeTheFirstDayLeavesEarlierFilesAlone) {
    const std::string par = readFile(data("reg.PAR"));
    const std::string predictor = readFile(data("reg_p1.dat"));
    const auto replaceLine = [](const std::string& text, int line, const std::string& by) {
        size_t start = 0;
        for (int i = 1; i < line; ++i) {
            start = text.find("\r\n", start) + 2;
        }
        return text.substr(0, start) + by + text.substr(text.find("\r\n", start));
    };
    struct Case {
        std::string what;
        std::string par;       // the parameter file's text
        std::string predictor; // reg_p1.dat's text
        core::Date start;
        long days;
        int number;
        std::string part;
    };
    const std::vector<Case> cases = {
        {"truncated rows",
         firstLines(par, 17),
         predictor,
         {27, 2, 1960},
         5,
         62,
         "ends after line 17"},
        {"a word in the last row",
         replaceLine(par, 26, "0.800         x"),
         predictor,
         {27, 2, 1960},
         5,
         13,
         "line 26"},
        {"a value to spare",
         replaceLine(par, 15,
                     "-0.300        0.750         -0.280        0.450         1.250         "
                     "0.610         9.000"),
         predictor,
         {27, 2, 1960},
         5,
         13,
         "more than the row holds"},
        {"a count above the names",
         replaceLine(par, 1, " 3 "),
         predictor,
         {27, 2, 1960},
         5,
         13,
         "the predictor count and the names listed after the predictand disagree"},
        {"a predictor too short for the run",
         par,
         predictor,
         {27, 2, 1960},
         300,
         62,
         "ends after line 200, before the dates in use: record from 01/01/1960, run of 300 days "
         "from 27/02/1960"},
        {"a start after the data", par, predictor, {1, 1, 1961}, 1, 62, "ends after line 200"},
        {"a word in a predictor",
         par,
         replaceLine(predictor, 150, "n/a"),
         {27, 2, 1960},
         120,
         13,
         "'n/a' on line 150, column 1"},
        {"a number beyond range in a predictor",
         par,
         replaceLine(predictor, 90, "1e999"),
         {27, 2, 1960},
         40,
         13,
         "beyond the range"},
    };
    for (const Case& c : cases) {
        varo::testing::TempDir folder;
        folder.write("reg_p1.dat", c.predictor);
        folder.write("reg_p2.dat", readFile(data("reg_p2.dat")));
        const auto parPath = folder.write("reg.PAR", c.par);
        const auto out = folder.write("run.OUT", "earlier days\r\n");
        const auto sim = folder.write("run.SIM", "earlier description\r\n");
        weathergen::SynthesisRequest r = request(parPath, out, c.start, c.days, 2);
        r.predictorFolder = folder.folder();
        EXPECT_TRUE(fails(r, c.number, c.part)) << c.what;
        EXPECT_EQ(readFile(out), "earlier days\r\n") << c.what;
        EXPECT_EQ(readFile(sim), "earlier description\r\n") << c.what;
    }
}

TEST_F(SynthesisRun, AnOutputThatIsAFolderIsRefusedBeforeEitherFileIsWritten) {
    const auto sim = dir.write("run.SIM", "earlier");
    std::filesystem::create_directories(dir.path("run.OUT"));
    EXPECT_TRUE(fails(request(data("reg.PAR"), dir.path("run.OUT"), {27, 2, 1960}, 5, 1),
                      core::failure::PathAccessError, "it is a folder"));
    EXPECT_EQ(readFile(sim), "earlier");
    std::filesystem::create_directories(dir.path("b.SIM"));
    EXPECT_TRUE(fails(request(data("reg.PAR"), dir.path("b.OUT"), {27, 2, 1960}, 5, 1),
                      core::failure::PathAccessError, "b.SIM': it is a folder"));
    EXPECT_FALSE(fileExists(dir.path("b.OUT")));
}

TEST_F(SynthesisRun, InputsAreTheModelThePredictorsAndForInverseNormalThePredictand) {
    weathergen::SynthesisRun regression(
        request(data("reg.PAR"), dir.path("a.OUT"), {27, 2, 1960}, 5, 1), state, progress);
    EXPECT_EQ(regression.inputPaths(),
              (std::vector<std::string>{data("reg.PAR"), data("reg_p1.dat"), data("reg_p2.dat")}));
    EXPECT_EQ(regression.outputPaths(),
              (std::vector<std::string>{dir.path("a.OUT"), dir.path("a.SIM")}));
    EXPECT_FALSE(fileExists(dir.path("a.OUT")));
    weathergen::SynthesisRun inverse(
        request(parameterFile("inverse.PAR"), dir.path("b.OUT"), {20, 2, 1961}, 5, 1), state,
        progress);
    EXPECT_EQ(inverse.inputPaths().back(), Data + "/inv_obs.dat");
}

TEST_F(SynthesisRun, InverseNormalSampleProblemsAreReported) {
    const auto inverse = [&](const std::string& par) {
        return request(par, dir.path("inverse.OUT"), {20, 2, 1961}, 5, 1);
    };
    // A calibration period longer than a reference sample holds.
    EXPECT_TRUE(fails(inverse(parameterFile("inverse.PAR", " 500 ", " 15001 ")),
                      core::failure::FileTooLarge, "15001 days"));
    // A predictand file that ends inside the calibration period.
    const auto shortObs = dir.write("obs.dat", "0\r\n1\r\n");
    EXPECT_TRUE(fails(inverse(parameterFile("inverse.PAR", "@DATA@/inv_obs.dat", shortObs)),
                      core::failure::InputPastEnd, "obs.dat"));
    // A record without one wet value.
    std::string dry;
    for (int i = 0; i < 600; ++i) {
        dry += "0\r\n";
    }
    const auto dryObs = dir.write("dry.dat", dry);
    EXPECT_TRUE(fails(inverse(parameterFile("inverse.PAR", "@DATA@/inv_obs.dat", dryObs)),
                      core::failure::TypeMismatch, "no value above the threshold"));
    // A fit start that a 360-day walk never meets.
    state.yearIndicator = 360;
    EXPECT_TRUE(fails(inverse(parameterFile("inverse.PAR", "01/03/1961", "31/03/1961")),
                      core::failure::TypeMismatch,
                      "31/03/1961 is not a day of the record calendar"));
}

TEST_F(SynthesisRun, CancelLeavesTheDaysWrittenAndAnEmptySimFile) {
    state.precN = 0;
    const auto out = dir.path("cut.OUT");
    StopAtDay stop(4);
    EXPECT_THROW(
        weathergen::synthesize(request(data("reg.PAR"), out, {27, 2, 1960}, 40, 3), state, stop),
        core::Cancelled);
    EXPECT_EQ(readFile(out), firstLines(readFile(data("reg.OUT")), 3));
    EXPECT_TRUE(fileExists(dir.path("cut.SIM")));
    EXPECT_EQ(readFile(dir.path("cut.SIM")), "");
}
