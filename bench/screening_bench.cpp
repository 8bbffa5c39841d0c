// Screening 12 predictors against a predictand over 30 years (10,957 days), beside the
// time it takes just to read the 13 files day by day: the correlation matrix with its
// partial correlations (with and without the autoregression, which makes 13 controls
// of the recursion), and the explained variance by month.
#include "core/number_format.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "core/series_file.hpp"
#include "screening/correlation.hpp"
#include "screening/explained_variance.hpp"
#include "screening/screening_data.hpp"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <random>
#include <string>

namespace {

constexpr int Days = 10957; // 01/01/1961 to 31/12/1990
constexpr int Predictors = 12;

const varo::screening::ScreeningRequest& request() {
    static const varo::screening::ScreeningRequest asked = [] {
        varo::screening::ScreeningRequest made;
        const auto folder = std::filesystem::temp_directory_path();
        std::mt19937 random(5);
        std::normal_distribution<double> noise(0.0, 1.0);
        const varo::core::NumberFormat format("####0.000");
        for (int file = 0; file <= Predictors; ++file) {
            const std::string path =
                (folder / ("varo-bench-screen-" + std::to_string(file) + ".dat")).string();
            varo::core::TextFileWriter writer(path);
            for (int day = 0; day < Days; ++day) {
                writer.writeLine(format.format(10.0 + 3.0 * noise(random)));
            }
            writer.close();
            (file == 0 ? made.predictandPath : made.predictorPaths.emplace_back()) = path;
        }
        made.fitStart = {1, 1, 1961};
        made.fitEnd = {31, 12, 1990};
        return made;
    }();
    return asked;
}

varo::core::ProgramState& programState() {
    static varo::core::ProgramState state = [] {
        varo::core::ProgramState made;
        varo::core::initialiseState(made);
        return made;
    }();
    return state;
}

void ReadThirteenFiles(benchmark::State& state) {
    for (auto _ : state) {
        auto files = varo::screening::screeningFiles(request(), programState());
        double sum = 0.0;
        for (int day = 0; day < Days; ++day) {
            sum += files.readDay()[0];
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(ReadThirteenFiles)->Unit(benchmark::kMillisecond);

void Correlation(benchmark::State& state) {
    varo::core::NullProgress progress;
    auto asked = request();
    asked.autoregression = state.range(0) != 0;
    for (auto _ : state) {
        const auto data = varo::screening::assembleScreeningData(asked, programState(), progress);
        const auto result = varo::screening::correlate(data, false, programState());
        const auto report = varo::screening::correlationReport(
            data, varo::screening::correlationTables(data, result), {}, false);
        benchmark::DoNotOptimize(report.lines.size());
    }
}
BENCHMARK(Correlation)->Arg(0)->Arg(1)->ArgName("autoregression")->Unit(benchmark::kMillisecond);

void ExplainedVariance(benchmark::State& state) {
    varo::core::NullProgress progress;
    auto asked = request();
    asked.autoregression = true;
    for (auto _ : state) {
        const auto result = varo::screening::explainVariance(asked, programState(), progress);
        const auto report = varo::screening::varianceReport(
            result, varo::screening::varianceTable(result, 0.05f), {});
        benchmark::DoNotOptimize(report.lines.size());
    }
}
BENCHMARK(ExplainedVariance)->Unit(benchmark::kMillisecond);

} // namespace

// The files are written before any timing starts.
int main(int argc, char** argv) {
    request();
    programState();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
