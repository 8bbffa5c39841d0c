// Summary statistics of a 100-member OUT file of 30 years: the whole `varo stats` run with
// eight statistics (the spell and percentile passes among them), for the ensemble mean over
// all members and for one member, beside reading the period of the file alone, the read the
// run itself makes.
#include "cli/cli.hpp"
#include "core/progress.hpp"
#include "core/random.hpp"
#include "core/series_file.hpp"
#include "series/period_reader.hpp"
#include "series/simulation_files.hpp"

#include <benchmark/benchmark.h>
#include <cmath>
#include <filesystem>
#include <sstream>

namespace {

constexpr int Members = 100;
constexpr int Days = 10957; // 01/01/1961 to 31/12/1990

struct BenchFiles {
    std::filesystem::path folder;
    std::string out;
    std::string results;
    std::string settings;

    BenchFiles() {
        folder = std::filesystem::temp_directory_path() / "varo-statistics-bench";
        std::filesystem::create_directories(folder);
        out = (folder / "run.OUT").string();
        results = (folder / "results.txt").string();
        settings = (folder / "VARO.INI").string();
        if (!std::filesystem::exists(out)) {
            write();
        }
    }

    // Rain-like values: about half the days dry, the rest skewed amounts.
    void write() const {
        varo::core::UniformRandom random;
        varo::core::TextFileWriter file(out);
        double values[Members];
        for (int day = 0; day < Days; ++day) {
            for (double& value : values) {
                const float u = random.next();
                value =
                    u < 0.5f ? 0.0 : std::round(-8.0 * std::log(1.0 - random.next()) * 1000) / 1000;
            }
            varo::series::writeDayLine(file, values, Members);
        }
        file.close();
        varo::series::SimulationDescription description;
        description.predictorCount = 0;
        description.fitStart = "01/01/1961";
        description.fitLength = Days;
        description.ensembleSize = Members;
        description.predictandName = "rain.dat";
        varo::series::writeSimulationDescription(varo::series::simPathFor(out), description);
    }
};

const BenchFiles& files() {
    static const BenchFiles instance;
    return instance;
}

void ReadOutFile(benchmark::State& state) {
    const auto& f = files();
    varo::series::DataSource source{f.out, Members, varo::core::RealCalendar, {1, 1, 1961}};
    varo::core::NullProgress progress;
    for (auto _ : state) {
        const auto period =
            varo::series::readPeriod(source, {1, 1, 1961}, {31, 12, 1990}, progress);
        benchmark::DoNotOptimize(period.values.data());
    }
    state.counters["values"] = static_cast<double>(Members) * Days;
}

// The whole command; argument 1 asks for the ensemble mean over all members, 0 for member 1
// (whose Sum still counts the blocks of every member).
void StatsCommand(benchmark::State& state) {
    const auto& f = files();
    const std::string members = state.range(0) == 1 ? "--ensemble-mean" : "--member=1";
    const std::vector<std::string> args = {
        "--settings", f.settings,
        "--quiet",    "stats",
        f.out,        "-o",
        f.results,    members,
        "--start",    "01/01/1961",
        "--end",      "31/12/1990",
        "--stats",    "Mean,Maximum,Median,Percentile,Sum,Max_NTot,Wet-spell,Dry-spell"};
    for (auto _ : state) {
        std::ostringstream out;
        std::ostringstream err;
        if (varo::cli::runCli(args, out, err) != 0) {
            state.SkipWithError(err.str().c_str());
            break;
        }
    }
}

} // namespace

BENCHMARK(ReadOutFile)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(StatsCommand)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK_MAIN();
