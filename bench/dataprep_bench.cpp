// Transforms of a 30-year daily file (10,957 values) beside the time it takes to read it:
// the Box-Cox search on rainfall-like data (few distinct values, many zeros) and on a
// continuous series (nearly every value distinct), its inverse, and a logarithm.
#include "core/number_format.hpp"
#include "core/progress.hpp"
#include "core/series_file.hpp"
#include "dataprep/box_cox.hpp"
#include "dataprep/transform.hpp"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <random>
#include <string>

namespace {

constexpr int Days = 10957;

std::string benchPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() / ("varo-bench-" + name)).string();
}

// Rainfall: 60% dry days, gamma amounts to one decimal, a few missing values.
const std::string& rainFile() {
    static const std::string path = [] {
        const std::string file = benchPath("rain-30y.dat");
        std::mt19937 random(11);
        std::gamma_distribution<double> amounts(0.8, 6.0);
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        varo::core::TextFileWriter writer(file);
        const varo::core::NumberFormat format("0.0");
        for (int day = 0; day < Days; ++day) {
            const double draw = uniform(random);
            writer.writeLine(draw < 0.001 ? "-999"
                             : draw < 0.6 ? "0.0"
                                          : format.format(amounts(random)));
        }
        writer.close();
        return file;
    }();
    return path;
}

// A skewed continuous series with six decimals: nearly every value distinct.
const std::string& continuousFile() {
    static const std::string path = [] {
        const std::string file = benchPath("skewed-30y.dat");
        std::mt19937 random(12);
        std::lognormal_distribution<double> values(1.0, 0.6);
        varo::core::TextFileWriter writer(file);
        const varo::core::NumberFormat format("0.000000");
        for (int day = 0; day < Days; ++day) {
            writer.writeLine(format.format(values(random) - 2.0));
        }
        writer.close();
        return file;
    }();
    return path;
}

void readAll(const std::string& file) {
    varo::core::SeriesReader reader(file);
    double sum = 0.0;
    while (!reader.atEnd()) {
        sum += reader.readNumber();
    }
    benchmark::DoNotOptimize(sum);
}

void ReadRainFile(benchmark::State& state) {
    for (auto _ : state) {
        readAll(rainFile());
    }
}
BENCHMARK(ReadRainFile)->Unit(benchmark::kMillisecond);

void ReadContinuousFile(benchmark::State& state) {
    for (auto _ : state) {
        readAll(continuousFile());
    }
}
BENCHMARK(ReadContinuousFile)->Unit(benchmark::kMillisecond);

void BoxCoxRain(benchmark::State& state) {
    varo::core::NullProgress progress;
    for (auto _ : state) {
        const auto result =
            varo::dataprep::boxCoxFile(rainFile(), benchPath("rain-bc.dat"), 1, -999.0, progress);
        benchmark::DoNotOptimize(result.lamda);
    }
}
BENCHMARK(BoxCoxRain)->Unit(benchmark::kMillisecond);

void BoxCoxContinuous(benchmark::State& state) {
    varo::core::NullProgress progress;
    for (auto _ : state) {
        const auto result = varo::dataprep::boxCoxFile(continuousFile(), benchPath("skewed-bc.dat"),
                                                       1, -999.0, progress);
        benchmark::DoNotOptimize(result.lamda);
    }
}
BENCHMARK(BoxCoxContinuous)->Unit(benchmark::kMillisecond);

void UnBoxCoxContinuous(benchmark::State& state) {
    varo::core::NullProgress progress;
    for (auto _ : state) {
        const auto counts = varo::dataprep::unBoxCoxFile(
            continuousFile(), benchPath("skewed-ubc.dat"), 1, 0.3, 2.0, -999.0, progress);
        benchmark::DoNotOptimize(counts.rows);
    }
}
BENCHMARK(UnBoxCoxContinuous)->Unit(benchmark::kMillisecond);

void NaturalLogContinuous(benchmark::State& state) {
    varo::core::NullProgress progress;
    varo::dataprep::TransformSettings settings;
    settings.code = varo::dataprep::transform::NaturalLog;
    for (auto _ : state) {
        const auto counts = varo::dataprep::transformFile(
            continuousFile(), benchPath("skewed-ln.dat"), settings, progress);
        benchmark::DoNotOptimize(counts.rows);
    }
}
BENCHMARK(NaturalLogContinuous)->Unit(benchmark::kMillisecond);

} // namespace

// The files are written before any timing starts.
int main(int argc, char** argv) {
    rainFile();
    continuousFile();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
