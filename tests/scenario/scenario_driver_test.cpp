// Whole scenario runs: the order of the treatments, the "Results" text, and runs that end
// early (a cancel in any phase, a stop with a message) leaving no output, an earlier output
// as it was and the input untouched.
#include "scenario/scenario_driver.hpp"
#include "scenario_test_support.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <gtest/gtest.h>

using namespace varo;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

// Asks for a stop at the first report under a caption.
class StopAtCaption final : public core::Progress {
public:
    explicit StopAtCaption(std::string caption) : caption_(std::move(caption)) {}
    void report(long, long, std::string_view caption) override {
        seen_ = seen_ || caption == caption_;
    }
    bool stopRequested() override { return seen_ && !stopped_ && (stopped_ = true); }
    bool stopped() const { return stopped_; }

private:
    std::string caption_;
    bool seen_ = false;
    bool stopped_ = false;
};

scenario::ScenarioRequest request(const std::string& in, const std::string& out, int members = 1) {
    scenario::ScenarioRequest r;
    r.inPath = in;
    r.outPath = out;
    r.ensembleSize = members;
    r.start = {core::RealCalendar, {1, 1, 1961}};
    return r;
}

scenario::ScenarioResult run(const scenario::ScenarioRequest& r, core::Progress& progress) {
    core::UniformRandom random;
    random.seed(3);
    varo::testing::KeptWarnings warnings;
    return scenario::runScenario(r, random, progress, warnings);
}

scenario::ScenarioResult run(const scenario::ScenarioRequest& r) {
    core::NullProgress progress;
    return run(r, progress);
}

const std::string ReferenceInput = std::string(VARO_TEST_DATA) + "/scenario/variance_input.OUT";

} // namespace

// The member statistics belong to the series before the amounts: +10 then a fourfold
// variance stretches 11, 12, 13, 16 about the old mean 3. The trend comes last.
TEST(ScenarioRun, TreatmentsRunInTheirOrder) {
    TempDir dir;
    auto r = request(dir.write("in.dat", "1\r\n2\r\n3\r\n6\r\n"), dir.path("out.OUT"));
    r.amount = scenario::AmountTreatment{scenario::AmountKind::Addition, 1.0f, 10.0};
    r.varianceFactor = 4.0f;
    r.trend = scenario::TrendTreatment{scenario::TrendKind::Linear, 365.25};
    const auto result = run(r);
    EXPECT_EQ(result.dayCount, 4);
    EXPECT_FALSE(result.lamda);
    EXPECT_EQ(readFile(r.outPath), "20.000        \r\n"
                                   "23.000        \r\n"
                                   "26.000        \r\n"
                                   "33.000        \r\n");
    EXPECT_EQ(scenario::resultsText(result), "Scenario Generated.\r\n4 days processed.");
}

TEST(ScenarioRun, ConditionalVarianceShowsTheLastMembersLamda) {
    TempDir dir;
    auto r = request(ReferenceInput, dir.path("out.OUT"), 3);
    r.scope.conditional = true;
    r.varianceFactor = 1.2f;
    const auto result = run(r);
    ASSERT_TRUE(result.lamda);
    EXPECT_EQ(scenario::resultsText(result),
              "Scenario Generated.\r\n1500 days processed.\r\nLamda for BoxCox transform: .2");
}

TEST(ScenarioRun, EmptyInputGivesNoDaysAndAnEmptyOutput) {
    TempDir dir;
    auto r = request(dir.write("in.dat", ""), dir.path("out.OUT"));
    r.trend = scenario::TrendTreatment{scenario::TrendKind::Logistic, 2.0};
    const auto result = run(r);
    EXPECT_EQ(scenario::resultsText(result), "Scenario Generated.\r\n0 days processed.");
    EXPECT_TRUE(varo::testing::fileExists(r.outPath));
    EXPECT_EQ(readFile(r.outPath), "");
}

// A cancel in any phase, or a run that stops with its message, leaves the earlier output and
// the input byte for byte and time for time, and nothing else in the folder.
TEST(ScenarioRun, RunsEndingEarlyLeaveNoOutputAndTheInputUntouched) {
    TempDir dir;
    const std::string in = dir.path("in.OUT");
    std::filesystem::copy_file(ReferenceInput, in);
    const std::string out = dir.write("out.OUT", "earlier\r\n");
    const auto inTime = std::filesystem::last_write_time(in);
    const auto outTime = std::filesystem::last_write_time(out);
    auto r = request(in, out, 3);
    r.scope.conditional = true;
    r.occurrence = scenario::OccurrenceTreatment{};
    r.occurrence->frequencyFactor = 0.8f;
    r.amount = scenario::AmountTreatment{scenario::AmountKind::Factor, 1.1f, 0.0};
    r.varianceFactor = 1.3f;
    r.trend = scenario::TrendTreatment{scenario::TrendKind::Exponential, 3.0};
    const auto untouched = [&] {
        EXPECT_EQ(readFile(in), readFile(ReferenceInput));
        EXPECT_EQ(std::filesystem::last_write_time(in), inTime);
        EXPECT_EQ(readFile(out), "earlier\r\n");
        EXPECT_EQ(std::filesystem::last_write_time(out), outTime);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.folder()), {}), 2);
    };
    for (const char* caption : {"Reading Data", "Applying Occurrence", "Applying Amount",
                                "Applying Variance", "Applying Trend", "Writing Data"}) {
        StopAtCaption progress(caption);
        EXPECT_THROW(run(r, progress), core::Cancelled) << caption;
        EXPECT_TRUE(progress.stopped()) << caption;
        untouched();
    }
    // Twice the wet days cannot fit: the overflow message, nothing written.
    r.occurrence->frequencyFactor = 2.0f;
    r.occurrence->kind = scenario::OccurrenceKind::Stochastic;
    EXPECT_EQ(varo::testing::stopMessage([&] { run(r); }), scenario::OverflowMessage);
    untouched();
    // A failure while reading.
    r.inPath = dir.write("bad.dat", "1\r\nx\r\n");
    r.ensembleSize = 1;
    EXPECT_TRUE(varo::testing::failsWith([&] { run(r); }, core::failure::TypeMismatch, "'x'"));
    std::filesystem::remove(r.inPath);
    untouched();
    // The whole run, then, replaces the output.
    r.inPath = in;
    r.ensembleSize = 3;
    r.occurrence->frequencyFactor = 0.8f;
    run(r);
    EXPECT_EQ(readFile(out).size(), readFile(in).size());
}
