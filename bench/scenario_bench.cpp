// The scenario generator at full size: an OUT file of 100 members over 100 years (36,525
// days) of rain-like values, through all four treatments (stochastic occurrence with the
// totals kept, an amount factor, the conditional variance treatment with its lamda search
// and bisection, a linear trend), beside the bare read and write of the same file, and
// each treatment alone on the series in memory. The full run should take no more than
// three times the bare read and write.
#include "core/random.hpp"
#include "scenario/amount.hpp"
#include "scenario/occurrence.hpp"
#include "scenario/scenario_driver.hpp"
#include "scenario/trend.hpp"
#include "scenario/variance.hpp"
#include "series/simulation_files.hpp"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

using namespace varo;

namespace {

constexpr int Members = 100;
constexpr long Days100Years = 36525;
const scenario::SeriesScope Scope{0.0, -999.0, true};

// Wet on about four days in ten, amounts from a gamma distribution in tenths of a
// millimetre, as a rain gauge gives them.
struct Workload {
    std::string folder;
    std::string input;
    Workload() {
        folder = (std::filesystem::temp_directory_path() / "varo-scenario-bench").string();
        std::filesystem::create_directories(folder);
        input = folder + "/rain.OUT";
        std::mt19937 engine(1961);
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        std::gamma_distribution<double> gamma(0.8, 6.0);
        core::TextFileWriter out(input);
        std::string line;
        double values[Members];
        for (long day = 0; day < Days100Years; ++day) {
            for (double& value : values) {
                const double amount = std::max(0.1, std::round(gamma(engine) * 10.0) / 10.0);
                value = uniform(engine) < 0.4 ? amount : 0.0;
            }
            line.clear();
            series::appendDayLine(line, values, Members);
            out.write(line);
            out.endLine();
        }
        out.close();
    }
    ~Workload() { std::filesystem::remove_all(folder); }
};

const Workload& workload() {
    static const Workload instance;
    return instance;
}

scenario::ScenarioRequest fullRequest(const Workload& files) {
    scenario::ScenarioRequest request;
    request.inPath = files.input;
    request.outPath = files.folder + "/scenario.OUT";
    request.ensembleSize = Members;
    request.scope = Scope;
    request.start = {core::RealCalendar, {1, 1, 1961}};
    scenario::OccurrenceTreatment occurrence;
    occurrence.frequencyFactor = 0.9f;
    occurrence.preserveTotals = true;
    request.occurrence = occurrence;
    request.amount = scenario::AmountTreatment{scenario::AmountKind::Factor, 1.1f, 0.0};
    request.varianceFactor = 1.2f;
    request.trend = scenario::TrendTreatment{scenario::TrendKind::Linear, 2.0};
    return request;
}

scenario::ScenarioData readInput() {
    core::NullProgress progress;
    return scenario::readScenarioData(workload().input, Members, progress);
}

void BM_ReadAndWrite(benchmark::State& state) {
    const Workload& files = workload();
    core::NullProgress progress;
    for (auto _ : state) {
        const auto data = scenario::readScenarioData(files.input, Members, progress);
        scenario::writeScenarioData(files.folder + "/copy.OUT", data, progress);
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(files.input)) / 1e6;
}
BENCHMARK(BM_ReadAndWrite)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_AllFourTreatments(benchmark::State& state) {
    const Workload& files = workload();
    const auto request = fullRequest(files);
    core::NullProgress progress;
    core::SilentNotifier notifier;
    for (auto _ : state) {
        core::UniformRandom random;
        random.seed(1);
        scenario::runScenario(request, random, progress, notifier);
    }
}
BENCHMARK(BM_AllFourTreatments)->Unit(benchmark::kMillisecond)->Iterations(3);

// Each treatment alone on the series in memory (a fresh copy each time, not timed).
template <typename Treat>
void timeTreatment(benchmark::State& state, Treat treat) {
    const scenario::ScenarioData original = readInput();
    for (auto _ : state) {
        state.PauseTiming();
        scenario::ScenarioData data = original;
        state.ResumeTiming();
        treat(data);
    }
}

void BM_Occurrence(benchmark::State& state) {
    const auto request = fullRequest(workload());
    timeTreatment(state, [&](scenario::ScenarioData& data) {
        core::UniformRandom random;
        core::NullProgress progress;
        core::SilentNotifier notifier;
        scenario::applyOccurrence(data, *request.occurrence, Scope, request.start, random, progress,
                                  notifier);
    });
}
BENCHMARK(BM_Occurrence)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Amount(benchmark::State& state) {
    const auto request = fullRequest(workload());
    timeTreatment(state, [&](scenario::ScenarioData& data) {
        core::NullProgress progress;
        scenario::applyAmount(data, *request.amount, Scope, progress);
    });
}
BENCHMARK(BM_Amount)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ConditionalVariance(benchmark::State& state) {
    timeTreatment(state, [&](scenario::ScenarioData& data) {
        core::NullProgress progress;
        const auto statistics = scenario::memberStatistics(data, Scope);
        scenario::applyVariance(data, 1.2f, statistics, Scope, progress);
    });
}
BENCHMARK(BM_ConditionalVariance)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Trend(benchmark::State& state) {
    const auto request = fullRequest(workload());
    timeTreatment(state, [&](scenario::ScenarioData& data) {
        core::NullProgress progress;
        scenario::applyTrend(data, *request.trend, 366, Scope, progress);
    });
}
BENCHMARK(BM_Trend)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();
