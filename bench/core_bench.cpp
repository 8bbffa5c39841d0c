// Reading and writing daily data files: a 100-column file of 36,525 rows (100 years of an
// ensemble of 100), read by the free-format reader, by lines cut into 14-character
// fields, and as plain bytes; written with print zones and by the "#####0.000" format.
#include "core/number_format.hpp"
#include "core/series_file.hpp"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

namespace {

constexpr int Rows = 36525;
constexpr int Columns = 100;

const std::string& sampleFile() {
    static const std::string path = [] {
        const std::string file =
            (std::filesystem::temp_directory_path() / "varo-bench-100x36525.out").string();
        std::mt19937 random(42);
        std::gamma_distribution<double> amounts(0.7, 6.0);
        const varo::core::NumberFormat format("#####0.000");
        varo::core::TextFileWriter writer(file);
        std::string line;
        for (int row = 0; row < Rows; ++row) {
            line.clear();
            for (int column = 0; column < Columns; ++column) {
                format.appendTo(line, amounts(random));
                varo::core::padToNextZone(line, 0);
            }
            writer.writeLine(line);
        }
        writer.close();
        return file;
    }();
    return path;
}

// Daily amounts as a weather generator writes them, cycled through by the writing benchmarks.
const std::vector<double>& sampleValues() {
    static const std::vector<double> values = [] {
        std::mt19937 random(7);
        std::gamma_distribution<double> amounts(0.7, 6.0);
        std::vector<double> drawn(4096);
        for (double& value : drawn) {
            value = amounts(random);
        }
        return drawn;
    }();
    return values;
}

long fileBytes() {
    return static_cast<long>(std::filesystem::file_size(sampleFile()));
}

void PlainRead(benchmark::State& state) {
    sampleFile(); // made once, outside the timing
    std::vector<char> buffer(1 << 20);
    for (auto _ : state) {
        std::FILE* file = std::fopen(sampleFile().c_str(), "rb");
        size_t total = 0;
        while (const size_t got = std::fread(buffer.data(), 1, buffer.size(), file)) {
            total += got;
        }
        std::fclose(file);
        benchmark::DoNotOptimize(total);
    }
    state.SetBytesProcessed(state.iterations() * fileBytes());
}
BENCHMARK(PlainRead)->Unit(benchmark::kMillisecond);

void ReadNumbers(benchmark::State& state) {
    sampleFile(); // made once, outside the timing
    for (auto _ : state) {
        varo::core::SeriesReader reader(sampleFile());
        double sum = 0.0;
        for (long i = 0; i < static_cast<long>(Rows) * Columns; ++i) {
            sum += reader.readNumber();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * fileBytes());
}
BENCHMARK(ReadNumbers)->Unit(benchmark::kMillisecond);

void ReadZoneFields(benchmark::State& state) {
    sampleFile(); // made once, outside the timing
    for (auto _ : state) {
        varo::core::SeriesReader reader(sampleFile());
        double sum = 0.0;
        for (int row = 0; row < Rows; ++row) {
            const std::string line = reader.readLine();
            for (int k = 1; k <= Columns; ++k) {
                sum += varo::core::zoneNumber(line, k, row + 1, sampleFile());
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * fileBytes());
}
BENCHMARK(ReadZoneFields)->Unit(benchmark::kMillisecond);

void WriteZonedValues(benchmark::State& state) {
    sampleFile(); // made once, outside the timing
    const std::string out = sampleFile() + ".written";
    const varo::core::NumberFormat format("#####0.000");
    for (auto _ : state) {
        varo::core::TextFileWriter writer(out);
        std::string line;
        size_t next = 0;
        for (int row = 0; row < Rows; ++row) {
            line.clear();
            for (int column = 0; column < Columns; ++column) {
                format.appendTo(line, sampleValues()[next++ & 4095U]);
                varo::core::padToNextZone(line, 0);
            }
            writer.writeLine(line);
        }
        writer.close();
    }
    state.SetBytesProcessed(state.iterations() * fileBytes());
    std::filesystem::remove(out);
}
BENCHMARK(WriteZonedValues)->Unit(benchmark::kMillisecond);

// The formatting alone, without the file: how much of writing is the number format.
void FormatValues(benchmark::State& state) {
    const varo::core::NumberFormat format("#####0.000");
    std::string line;
    size_t next = 0;
    for (auto _ : state) {
        line.clear();
        for (int column = 0; column < Columns; ++column) {
            format.appendTo(line, sampleValues()[next++ & 4095U]);
        }
        benchmark::DoNotOptimize(line.data());
    }
    state.SetItemsProcessed(state.iterations() * Columns);
}
BENCHMARK(FormatValues);

} // namespace

BENCHMARK_MAIN();
