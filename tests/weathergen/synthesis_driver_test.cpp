// Whole runs against OUT and SIM files computed independently by
// tests/data/weathergen/make_references.py, and the run's failure and cancel paths.
#include "core/failure.hpp"
#include "core/program_state.hpp"
#include "support/temp_dir.hpp"
#include "weathergen/synthesis_driver.hpp"

#include <gtest/gtest.h>

#include <regex>

using namespace varo;
using varo::testing::fileExists;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/weathergen";

std::string data(const std::string& name) {
    return Data + "/" + name;
}

core::ProgramState fixedState() {
    core::ProgramState state;
    state.randomSeed = false;
    return state;
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

void expectRunFails(const weathergen::SynthesisRequest& r, const core::ProgramState& state,
                    int number, const std::string& descriptionPart) {
    core::NullProgress progress;
    try {
        weathergen::synthesize(r, state, progress);
        ADD_FAILURE() << "the run did not fail";
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), number) << failure.description();
        EXPECT_NE(failure.description().find(descriptionPart), std::string::npos)
            << failure.description();
    }
}

} // namespace

TEST(SynthesisGolden, NoiseFreeUnconditionalRunRepeatsTheRegression) {
    TempDir dir;
    core::ProgramState state = fixedState();
    state.precN = 0;
    core::NullProgress progress;
    const auto out = dir.path("reg.OUT");
    weathergen::synthesize(request(data("reg.PAR"), out, {27, 2, 1960}, 40, 3), state, progress);
    EXPECT_EQ(readFile(out), readFile(data("reg.OUT")));
    EXPECT_EQ(readFile(dir.path("reg.SIM")), readFile(data("reg.SIM")));

    state.allowNeg = false;
    weathergen::synthesize(request(data("reg.PAR"), out, {27, 2, 1960}, 40, 3), state, progress);
    EXPECT_EQ(readFile(out), readFile(data("reg_noneg.OUT")));
}

TEST(SynthesisGolden, FixedThresholdRunsAreDeterministicUnderEveryTransformation) {
    TempDir dir;
    core::ProgramState state = fixedState();
    state.randomSeed = true; // no random number may be drawn at all
    state.precN = 0;
    state.conditionalSelection = 2;
    state.conditionalThresh = 0.5f;
    state.biasCorrection = 0.9f;
    state.thresh = 0.3f;
    core::NullProgress progress;
    for (const char* code : {"1", "2", "3", "5"}) {
        const std::string name = std::string("fixed_c") + code;
        const auto out = dir.path(name + ".OUT");
        weathergen::synthesize(request(data(name + ".PAR"), out, {27, 2, 1960}, 40, 2), state,
                               progress);
        EXPECT_EQ(readFile(out), readFile(data(name + ".OUT"))) << name;
    }
}

TEST(SynthesisGolden, StochasticBoxCoxRunFollowsTheOrderOfDraws) {
    TempDir dir;
    core::ProgramState state = fixedState();
    core::setYearIndicator(state, 360);
    state.allowNeg = false;
    state.thresh = 0.1f;
    core::NullProgress progress;
    const auto out = dir.path("stochastic.OUT");
    weathergen::ParameterHeader shown;
    weathergen::synthesize(request(data("stochastic.PAR"), out, {15, 1, 1961}, 60, 5), state,
                           progress, [&](const weathergen::ParameterHeader& h) { shown = h; });
    EXPECT_EQ(readFile(out), readFile(data("stochastic.OUT")));
    EXPECT_EQ(readFile(dir.path("stochastic.SIM")), readFile(data("stochastic.SIM")));
    EXPECT_FALSE(shown.hasAutoRegressionLine);
    EXPECT_EQ(shown.predictandName, "rain.dat");

    // The fixed state repeats the file exactly; a clock seed gives another stream.
    weathergen::synthesize(request(data("stochastic.PAR"), out, {15, 1, 1961}, 60, 5), state,
                           progress);
    EXPECT_EQ(readFile(out), readFile(data("stochastic.OUT")));
    state.randomSeed = true;
    weathergen::synthesize(request(data("stochastic.PAR"), out, {15, 1, 1961}, 60, 5), state,
                           progress);
    EXPECT_NE(readFile(out), readFile(data("stochastic.OUT")));
}

TEST(SynthesisGolden, InverseNormalAmountsComeFromTheCalibrationPeriod) {
    TempDir dir;
    const std::string par =
        std::regex_replace(readFile(data("inverse.PAR")), std::regex("@DATA@"), Data);
    const auto parPath = dir.write("inverse.PAR", par);
    core::ProgramState state = fixedState();
    core::NullProgress progress;
    const auto out = dir.path("inverse.OUT");
    weathergen::synthesize(request(parPath, out, {20, 2, 1961}, 45, 4), state, progress);
    EXPECT_EQ(readFile(out), readFile(data("inverse.OUT")));
}

TEST(SynthesisDates, EachDayUsesTheRowOfItsMonthUnderTheCalendarInForce) {
    TempDir dir;
    // Intercept 100 times the month, nothing else: the OUT file shows each day's month.
    std::string par = " 0 \r\n 12 \r\n 366 \r\n01/01/1960\r\n 2000 \r\n01/01/1960\r\n 1000 \r\n"
                      "#FALSE#\r\n1\r\n 1 \r\nFalse\r\nobs.dat\r\n";
    for (int month = 1; month <= 12; ++month) {
        par += std::to_string(month * 100) + ".000       0.000         0.000         \r\n";
    }
    const auto parPath = dir.write("months.PAR", par);
    const auto out = dir.path("months.OUT");
    core::ProgramState state = fixedState();
    state.precN = 0;
    core::NullProgress progress;
    const auto months = [&] {
        std::string text = readFile(out);
        std::string firstDigits;
        for (size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
            firstDigits += text[at];
        }
        return firstDigits;
    };
    weathergen::synthesize(request(parPath, out, {28, 2, 1960}, 3, 1), state, progress);
    EXPECT_EQ(months(), "223");
    core::setYearIndicator(state, 365);
    weathergen::synthesize(request(parPath, out, {28, 2, 1960}, 3, 1), state, progress);
    EXPECT_EQ(months(), "233");
    core::setYearIndicator(state, 360);
    weathergen::synthesize(request(parPath, out, {28, 2, 1961}, 5, 1), state, progress);
    EXPECT_EQ(months(), "22233");
    // 31 January is no day of a 360-day year: the first step runs over into February.
    weathergen::synthesize(request(parPath, out, {31, 1, 1961}, 2, 1), state, progress);
    EXPECT_EQ(months(), "22");
    EXPECT_EQ(readFile(out).substr(0, 16), "200.000       \r\n");
}

TEST(SynthesisFailures, MissingPredictorFileIsNamedAndLeavesAnEarlierSimAlone) {
    TempDir dir;
    const std::string par = readFile(data("reg.PAR"));
    const auto parPath =
        dir.write("gone.PAR", std::regex_replace(par, std::regex("reg_p2.dat"), "absent.dat"));
    const auto earlierSim = dir.write("run.SIM", "earlier");
    weathergen::SynthesisRequest r = request(parPath, dir.path("run.OUT"), {27, 2, 1960}, 5, 1);
    expectRunFails(r, fixedState(), core::failure::FileNotFound,
                   "absent.dat.  Check Predictor Directory is set correctly and/or file exists "
                   "in archive.");
    EXPECT_EQ(readFile(earlierSim), "earlier");
    EXPECT_FALSE(fileExists(dir.path("run.OUT")));

    r.predictorFolder = dir.path("no-such-folder");
    expectRunFails(r, fixedState(), core::failure::FileNotFound, "reg_p1.dat.  Check Predictor");
}

TEST(SynthesisFailures, PredictorFileShorterThanTheRunStopsWithItsName) {
    TempDir dir;
    // The predictor files hold 200 days from 01/01/1960: 1960 has 366 of them.
    const auto out = dir.path("long.OUT");
    expectRunFails(request(data("reg.PAR"), out, {27, 2, 1960}, 300, 1), fixedState(),
                   core::failure::InputPastEnd, "reg_p1.dat");
    // The days before the failure stay written; the SIM file stays empty.
    EXPECT_EQ(readFile(out).size(), static_cast<size_t>(200 - 57) * 16);
    EXPECT_EQ(readFile(dir.path("long.SIM")), "");
    expectRunFails(request(data("reg.PAR"), out, {1, 1, 1961}, 1, 1), fixedState(),
                   core::failure::InputPastEnd, "reg_p1.dat");
}

TEST(SynthesisFailures, TruncatedRowsLeaveTheEmptyOutputFilesTheRunHadOpened) {
    TempDir dir;
    const std::string par = readFile(data("reg.PAR"));
    const auto parPath = dir.write("short.PAR", firstLines(par, 17));
    weathergen::SynthesisRequest r = request(parPath, dir.path("short.OUT"), {27, 2, 1960}, 5, 1);
    expectRunFails(r, fixedState(), core::failure::InputPastEnd, "ends after line 17");
    EXPECT_EQ(readFile(dir.path("short.OUT")), "");
    EXPECT_EQ(readFile(dir.path("short.SIM")), "");
}

TEST(SynthesisFailures, InverseNormalSampleProblemsAreReported) {
    TempDir dir;
    const std::string par = readFile(data("inverse.PAR"));
    core::ProgramState state = fixedState();
    // A calibration period longer than a reference sample holds.
    const auto tooLong = dir.write(
        "long.PAR", std::regex_replace(std::regex_replace(par, std::regex(" 500 "), " 15001 "),
                                       std::regex("@DATA@"), Data));
    expectRunFails(request(tooLong, dir.path("a.OUT"), {20, 2, 1961}, 5, 1), state,
                   core::failure::FileTooLarge, "15001 days");
    // A predictand file that ends inside the calibration period.
    const auto shortObs = dir.write("obs.dat", "0\r\n1\r\n");
    const auto cut =
        dir.write("cut.PAR", std::regex_replace(par, std::regex("@DATA@/inv_obs.dat"), shortObs));
    expectRunFails(request(cut, dir.path("b.OUT"), {20, 2, 1961}, 5, 1), state,
                   core::failure::InputPastEnd, "obs.dat");
    // A record without one wet value.
    std::string dry;
    for (int i = 0; i < 600; ++i) {
        dry += "0\r\n";
    }
    const auto dryObs = dir.write("dry.dat", dry);
    const auto dryPar =
        dir.write("dry.PAR", std::regex_replace(par, std::regex("@DATA@/inv_obs.dat"), dryObs));
    expectRunFails(request(dryPar, dir.path("c.OUT"), {20, 2, 1961}, 5, 1), state,
                   core::failure::TypeMismatch, "no value above the threshold");
    // A fit start that a 360-day walk never meets.
    core::setYearIndicator(state, 360);
    const auto odd = dir.write(
        "odd.PAR",
        std::regex_replace(std::regex_replace(par, std::regex("01/03/1961"), "31/03/1961"),
                           std::regex("@DATA@"), Data));
    expectRunFails(request(odd, dir.path("d.OUT"), {20, 2, 1961}, 5, 1), state,
                   core::failure::TypeMismatch, "31/03/1961 is not a day of the record calendar");
}

TEST(SynthesisCancel, LeavesTheDaysWrittenAndAnEmptySimFile) {
    TempDir dir;
    core::ProgramState state = fixedState();
    state.precN = 0;
    const auto out = dir.path("cut.OUT");
    StopAtDay progress(4);
    EXPECT_THROW(weathergen::synthesize(request(data("reg.PAR"), out, {27, 2, 1960}, 40, 3), state,
                                        progress),
                 core::Cancelled);
    EXPECT_EQ(readFile(out), firstLines(readFile(data("reg.OUT")), 3));
    EXPECT_TRUE(fileExists(dir.path("cut.SIM")));
    EXPECT_EQ(readFile(dir.path("cut.SIM")), "");
}
