// The weather generator at full size: 100 members over 100 years (36,525 days) of a
// conditional Box-Cox model with 12 predictors and stochastic occurrence, beside the cost
// of the output alone: the same OUT file (36,525 lines of 100 zones) written from
// constants, once through the OUT writer and once with bare std::to_chars.
//
//   weathergen_bench                       runs the benchmarks
//   weathergen_bench --workload DIR YEARS  writes model.PAR and the 12 predictor files
//                                          for YEARS years from 01/01/1961 into DIR
//                                          (used by peers/weathergen_memory.sh)
#include "core/program_state.hpp"
#include "core/series_file.hpp"
#include "series/parameter_file.hpp"
#include "series/simulation_files.hpp"
#include "weathergen/synthesis_driver.hpp"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>

using namespace varo;

namespace {

constexpr int Predictors = 12;
constexpr int Members = 100;
constexpr long Days100Years = 36525;

// A monthly conditional Box-Cox model on predictors p01.dat .. p12.dat, record from
// 01/01/1961, with about four wet days in ten.
series::ParameterFile model(long days) {
    series::ParameterFile file;
    file.recordStart = "01/01/1961";
    file.recordDays = days;
    file.fitStart = "01/01/1961";
    file.fitDays = 3650;
    file.conditional = true;
    file.transformation = core::TransformBoxCox;
    file.predictandName = "rain.dat";
    file.predictandPath = "C:\\DATA\\rain.dat";
    for (int i = 1; i <= Predictors; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "p%02d.dat", i);
        file.predictorNames.emplace_back(name);
    }
    for (int m = 1; m <= 12; ++m) {
        auto& month = file.months[static_cast<size_t>(m - 1)];
        month.coefficients = {0.38 + 0.005 * m};
        auto& amount = file.amounts[static_cast<size_t>(m - 1)];
        amount.constant = 0.9;
        amount.meanRatio = 1.0;
        for (int i = 1; i <= Predictors; ++i) {
            month.coefficients.push_back((i % 2 == 0 ? 0.02 : -0.015) * i);
            amount.coefficients.push_back((i % 3 == 0 ? -0.04 : 0.03) * i / 4.0);
        }
        month.rSquared = 0.35;
        month.lamda = 0.25 + 0.01 * m;
        month.shift = 0.4;
        amount.standardError = 0.45;
        amount.rSquared = 0.3;
    }
    return file;
}

void writeText(const std::string& path, const std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

void writeWorkload(const std::string& folder, long days) {
    std::filesystem::create_directories(folder);
    series::writeParameterFile(folder + "/model.PAR", model(days));
    std::mt19937 engine(1961);
    std::normal_distribution<double> normal(0.0, 1.0);
    for (int i = 1; i <= Predictors; ++i) {
        std::string values;
        char buffer[32];
        for (long day = 0; day < days; ++day) {
            const int length = std::snprintf(buffer, sizeof buffer, "%.6f\r\n", normal(engine));
            values.append(buffer, static_cast<size_t>(length));
        }
        std::snprintf(buffer, sizeof buffer, "/p%02d.dat", i);
        writeText(folder + buffer, values);
    }
}

struct Workload {
    std::string folder;
    Workload() {
        folder = (std::filesystem::temp_directory_path() / "varo-weathergen-bench").string();
        writeWorkload(folder, Days100Years);
    }
    ~Workload() { std::filesystem::remove_all(folder); }
};

const Workload& workload() {
    static const Workload instance;
    return instance;
}

void BM_Synthesis100Members100Years(benchmark::State& state) {
    const Workload& files = workload();
    core::ProgramState settings;
    settings.randomSeed = false;
    weathergen::SynthesisRequest request;
    request.parameterPath = files.folder + "/model.PAR";
    request.predictorFolder = files.folder;
    request.outPath = files.folder + "/run.OUT";
    request.start = {1, 1, 1961};
    request.days = Days100Years;
    request.ensembleSize = Members;
    core::NullProgress progress;
    for (auto _ : state) {
        weathergen::synthesize(request, settings, progress);
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(request.outPath)) / 1e6;
}
BENCHMARK(BM_Synthesis100Members100Years)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// The same file through the OUT writer, every member 12.345 (and a wet-looking spread of
// values, so that the formatter sees different lengths).
void BM_WriteConstantOutFile(benchmark::State& state) {
    const Workload& files = workload();
    const std::string path = files.folder + "/constant.OUT";
    double values[Members];
    for (int m = 0; m < Members; ++m) {
        values[m] = m % 3 == 0 ? 0.0 : 12.345 + m;
    }
    for (auto _ : state) {
        core::TextFileWriter out(path);
        std::string line;
        for (long day = 0; day < Days100Years; ++day) {
            line.clear();
            series::appendDayLine(line, values, Members);
            out.write(line);
            out.endLine();
        }
        out.close();
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}
BENCHMARK(BM_WriteConstantOutFile)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// The floor of the output's cost: std::to_chars with three decimals, zones padded by hand,
// written in blocks of 1 MB.
void BM_WriteConstantToChars(benchmark::State& state) {
    const Workload& files = workload();
    const std::string path = files.folder + "/tochars.OUT";
    double values[Members];
    for (int m = 0; m < Members; ++m) {
        values[m] = m % 3 == 0 ? 0.0 : 12.345 + m;
    }
    for (auto _ : state) {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        std::string buffer;
        buffer.reserve(1 << 21);
        char field[64];
        for (long day = 0; day < Days100Years; ++day) {
            for (double value : values) {
                const auto end =
                    std::to_chars(field, field + sizeof field, value, std::chars_format::fixed, 3)
                        .ptr;
                const size_t length = static_cast<size_t>(end - field);
                buffer.append(field, length);
                buffer.append(14 - length % 14, ' ');
            }
            buffer += "\r\n";
            if (buffer.size() >= (1 << 20)) {
                std::fwrite(buffer.data(), 1, buffer.size(), file);
                buffer.clear();
            }
        }
        std::fwrite(buffer.data(), 1, buffer.size(), file);
        std::fclose(file);
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}
BENCHMARK(BM_WriteConstantToChars)->Unit(benchmark::kMillisecond)->MinTime(3.0);

} // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--workload") == 0) {
        const long years = std::stol(argv[3]);
        const long days = core::dayDifference({1, 1, 1961}, {1, 1, static_cast<int>(1961 + years)});
        writeWorkload(argv[2], days);
        std::printf("%ld\n", days);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
