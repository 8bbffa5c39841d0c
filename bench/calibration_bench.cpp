// Calibration at full size: 30 years of daily data (10,957 days from 01/01/1961) with 12
// predictors. The whole `varo calibrate` command for a monthly conditional model with
// fourth-root amounts and for an annual least-absolute-deviations model, beside the cost
// of reading the 13 files alone and the simplex alone on the same data in memory.
//
//   calibration_bench                  runs the benchmarks
//   calibration_bench --workload DIR   writes rain.dat and p01.dat .. p12.dat into DIR
//                                      (used by peers/calibration_peer.sh)
#include "calibration/regression.hpp"
#include "cli/cli.hpp"
#include "core/series_file.hpp"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace varo;

namespace {

constexpr int Predictors = 12;
constexpr long Days = 10957;

void writeText(const std::string& path, const std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

std::string predictorPath(const std::string& folder, int i) {
    char name[16];
    std::snprintf(name, sizeof name, "/p%02d.dat", i);
    return folder + name;
}

// Standardised predictors and a rainfall-like predictand with about six wet days in ten,
// written as a data file holds them (three decimals, one value a line).
void writeWorkload(const std::string& folder) {
    std::filesystem::create_directories(folder);
    std::mt19937 engine(1961);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::vector<std::vector<double>> predictors(Predictors, std::vector<double>(Days));
    std::vector<double> latent(Days, 0.0);
    for (int i = 0; i < Predictors; ++i) {
        for (long day = 0; day < Days; ++day) {
            const double season = std::cos(2.0 * M_PI * (day - 15) / 365.25) * (i % 3 - 1) * 0.5;
            predictors[static_cast<size_t>(i)][static_cast<size_t>(day)] = normal(engine) + season;
            latent[static_cast<size_t>(day)] +=
                predictors[static_cast<size_t>(i)][static_cast<size_t>(day)] *
                (i % 2 == 0 ? 0.3 : -0.2) / (1.0 + i * 0.2);
        }
    }
    char buffer[32];
    for (int i = 0; i < Predictors; ++i) {
        std::string text;
        for (double value : predictors[static_cast<size_t>(i)]) {
            text.append(buffer, static_cast<size_t>(
                                    std::snprintf(buffer, sizeof buffer, "%.3f\r\n", value)));
        }
        writeText(predictorPath(folder, i + 1), text);
    }
    std::string rain;
    for (long day = 0; day < Days; ++day) {
        const double z = latent[static_cast<size_t>(day)] + 0.8 * normal(engine);
        const double amount =
            z > -0.25 ? std::max(0.1, std::exp(0.6 * z + 0.5 * normal(engine)) * 3.0) : 0.0;
        rain.append(buffer,
                    static_cast<size_t>(std::snprintf(buffer, sizeof buffer, "%.1f\r\n", amount)));
    }
    writeText(folder + "/rain.dat", rain);
}

struct Workload {
    std::string folder;
    Workload() {
        folder = (std::filesystem::temp_directory_path() / "varo-calibration-bench").string();
        writeWorkload(folder);
        writeText(folder + "/VARO.INI", "[VARO]\r\nYearIndicator=366\r\nGlobalSDate=01/01/1961\r\n"
                                        "GlobalEDate=31/12/1990\r\n");
    }
    ~Workload() { std::filesystem::remove_all(folder); }
};

const Workload& workload() {
    static const Workload instance;
    return instance;
}

std::vector<std::string> calibrateArgs(const std::string& folder, std::vector<std::string> sets,
                                       std::vector<std::string> options) {
    std::vector<std::string> args{"--settings", folder + "/VARO.INI", "--quiet"};
    for (const std::string& set : sets) {
        args.insert(args.end(), {"--set", set});
    }
    args.insert(args.end(), {"calibrate", folder + "/rain.dat"});
    for (int i = 1; i <= Predictors; ++i) {
        args.push_back(predictorPath(folder, i));
    }
    args.insert(args.end(), {"-o", folder + "/model.PAR"});
    args.insert(args.end(), options.begin(), options.end());
    return args;
}

void runCommand(benchmark::State& state, const std::vector<std::string>& args) {
    for (auto _ : state) {
        std::ostringstream out;
        std::ostringstream err;
        if (cli::runCli(args, out, err) != 0) {
            state.SkipWithError(err.str().c_str());
            return;
        }
    }
}

void BM_ReadThirteenFiles(benchmark::State& state) {
    const std::string& folder = workload().folder;
    for (auto _ : state) {
        std::vector<core::SeriesReader> files;
        files.emplace_back(folder + "/rain.dat");
        for (int i = 1; i <= Predictors; ++i) {
            files.emplace_back(predictorPath(folder, i));
        }
        double sum = 0.0;
        for (long day = 0; day < Days; ++day) {
            for (auto& file : files) {
                sum += file.readNumber();
            }
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_ReadThirteenFiles)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_CommandMonthlyConditionalFourthRoot(benchmark::State& state) {
    runCommand(state, calibrateArgs(workload().folder, {"ModelTransformation=2"},
                                    {"--model", "monthly", "--process", "conditional"}));
}
BENCHMARK(BM_CommandMonthlyConditionalFourthRoot)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_CommandAnnualLeastAbsoluteDeviations(benchmark::State& state) {
    runCommand(state, calibrateArgs(workload().folder, {"OptimisationChoice=2"},
                                    {"--model", "annual", "--process", "unconditional"}));
}
BENCHMARK(BM_CommandAnnualLeastAbsoluteDeviations)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The simplex alone on the annual design, read once.
void BM_SimplexAnnual(benchmark::State& state) {
    const std::string& folder = workload().folder;
    std::vector<core::SeriesReader> files;
    files.emplace_back(folder + "/rain.dat");
    for (int i = 1; i <= Predictors; ++i) {
        files.emplace_back(predictorPath(folder, i));
    }
    calibration::MatrixObject x(static_cast<int>(Days), Predictors + 1);
    calibration::MatrixObject y(static_cast<int>(Days), 1);
    for (int day = 0; day < Days; ++day) {
        y.setValue(day, 0, static_cast<float>(files[0].readNumber()));
        x.setValue(day, 0, 1.0);
        for (int i = 1; i <= Predictors; ++i) {
            x.setValue(day, i, static_cast<float>(files[static_cast<size_t>(i)].readNumber()));
        }
    }
    core::NullProgress progress;
    core::SilentNotifier notifier;
    for (auto _ : state) {
        calibration::FitEnvironment environment{progress, notifier};
        benchmark::DoNotOptimize(calibration::fitModel(
            x, y, calibration::FitMethod::LeastAbsoluteDeviations, environment));
    }
}
BENCHMARK(BM_SimplexAnnual)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--workload") == 0) {
        writeWorkload(argv[2]);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
