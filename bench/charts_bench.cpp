// Drawing charts to pictures beside reading the data they show: a scatter of 11,000 points
// (a predictor against a predictand over 30 years) and one of the most points a scatter
// analysis hands over, and a line chart of 36,525 days (100 years), read from data files by
// the free-format reader and drawn at 800 x 600 pixels to PNG and SVG by the renderer that
// the chart screens and `varo --plot` share.
#include "charts/chart_builders.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"
#include "gui/charts/chart_render.hpp"
#include "screening/scatter.hpp"

#include <QApplication>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <map>
#include <random>

namespace {

constexpr int ScatterPoints = 11000;
constexpr int LineDays = 36525;
const QSize PictureSize(800, 600);

std::string benchFile(const std::string& name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

// A file of `rows` lines of `columns` values: pressure-like, then rain-like amounts.
const std::string& dataFile(int rows, int columns) {
    static std::map<std::pair<int, int>, std::string> made;
    auto& path = made[{rows, columns}];
    if (path.empty()) {
        path = benchFile("varo-bench-chart-" + std::to_string(rows) + "x" +
                         std::to_string(columns) + ".dat");
        std::mt19937 random(11);
        std::normal_distribution<double> pressure(1013.0, 9.0);
        std::gamma_distribution<double> rain(0.7, 6.0);
        const varo::core::NumberFormat format("0.000");
        varo::core::TextFileWriter writer(path);
        for (int row = 0; row < rows; ++row) {
            std::string line = format.format(pressure(random));
            for (int column = 1; column < columns; ++column) {
                line += ' ' + format.format(rain(random));
            }
            writer.writeLine(line);
        }
        writer.close();
    }
    return path;
}

std::vector<std::vector<double>> readColumns(const std::string& path, int rows, int columns) {
    varo::core::SeriesReader reader(path);
    std::vector<std::vector<double>> values(static_cast<size_t>(columns));
    for (auto& column : values) {
        column.reserve(static_cast<size_t>(rows));
    }
    for (int row = 0; row < rows; ++row) {
        for (auto& column : values) {
            column.push_back(reader.readNumber());
        }
    }
    return values;
}

varo::core::ProgramState& state() {
    static varo::core::ProgramState made = [] {
        varo::core::ProgramState fresh;
        varo::core::initialiseState(fresh);
        return fresh;
    }();
    return made;
}

varo::charts::ChartModel scatterModel(int points = ScatterPoints) {
    auto columns = readColumns(dataFile(points, 2), points, 2);
    return varo::charts::scatterChart("0 missing value(s): rain.dat", "mslp.dat", "rain.dat",
                                      std::move(columns[0]), std::move(columns[1]), state());
}

varo::charts::ChartModel lineModel() {
    auto columns = readColumns(dataFile(LineDays, 1), LineDays, 1);
    std::vector<std::string> days(static_cast<size_t>(LineDays));
    for (int day = 0; day < LineDays; day += 365) {
        days[static_cast<size_t>(day)] = std::to_string(1961 + day / 365);
    }
    return varo::charts::lineChart(std::move(days), {{"mslp.dat", std::move(columns[0])}}, state());
}

void ReadScatterData(benchmark::State& bench) {
    dataFile(ScatterPoints, 2);
    for (auto _ : bench) {
        benchmark::DoNotOptimize(readColumns(dataFile(ScatterPoints, 2), ScatterPoints, 2));
    }
    bench.SetItemsProcessed(bench.iterations() * ScatterPoints);
}
BENCHMARK(ReadScatterData)->Unit(benchmark::kMillisecond);

void ReadLineData(benchmark::State& bench) {
    dataFile(LineDays, 1);
    for (auto _ : bench) {
        benchmark::DoNotOptimize(readColumns(dataFile(LineDays, 1), LineDays, 1));
    }
    bench.SetItemsProcessed(bench.iterations() * LineDays);
}
BENCHMARK(ReadLineData)->Unit(benchmark::kMillisecond);

void ScatterToPng(benchmark::State& bench) {
    const auto model = scatterModel();
    const std::string path = benchFile("varo-bench-scatter.png");
    for (auto _ : bench) {
        varo::gui::saveChartPicture(model, path, PictureSize);
    }
    bench.SetItemsProcessed(bench.iterations() * ScatterPoints);
}
BENCHMARK(ScatterToPng)->Unit(benchmark::kMillisecond);

// The scatter analysis's limit: what a redraw of its chart screen costs at most.
void LargestScatterToPng(benchmark::State& bench) {
    constexpr int Points = static_cast<int>(varo::screening::MaxScatterPoints);
    const auto model = scatterModel(Points);
    const std::string path = benchFile("varo-bench-largest-scatter.png");
    for (auto _ : bench) {
        varo::gui::saveChartPicture(model, path, PictureSize);
    }
    bench.SetItemsProcessed(bench.iterations() * Points);
}
BENCHMARK(LargestScatterToPng)->Unit(benchmark::kMillisecond);

void ScatterToSvg(benchmark::State& bench) {
    const auto model = scatterModel();
    const std::string path = benchFile("varo-bench-scatter.svg");
    for (auto _ : bench) {
        varo::gui::saveChartPicture(model, path, PictureSize);
    }
    bench.SetItemsProcessed(bench.iterations() * ScatterPoints);
}
BENCHMARK(ScatterToSvg)->Unit(benchmark::kMillisecond);

void LineToPng(benchmark::State& bench) {
    const auto model = lineModel();
    const std::string path = benchFile("varo-bench-line.png");
    for (auto _ : bench) {
        varo::gui::saveChartPicture(model, path, PictureSize);
    }
    bench.SetItemsProcessed(bench.iterations() * LineDays);
}
BENCHMARK(LineToPng)->Unit(benchmark::kMillisecond);

void LineToSvg(benchmark::State& bench) {
    const auto model = lineModel();
    const std::string path = benchFile("varo-bench-line.svg");
    for (auto _ : bench) {
        varo::gui::saveChartPicture(model, path, PictureSize);
    }
    bench.SetItemsProcessed(bench.iterations() * LineDays);
}
BENCHMARK(LineToSvg)->Unit(benchmark::kMillisecond);

} // namespace

// Pictures are drawn offscreen, as the command line draws them.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
