#include "charts/sample_charts.hpp"

#include "charts/chart_builders.hpp"
#include "core/number_format.hpp"
#include "core/random.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace varo::charts {

namespace {

constexpr double Pi = 3.14159265358979323846;

// Roughly normal noise: the sum of twelve uniform numbers less six.
class Noise {
public:
    double next() {
        double sum = 0.0;
        for (int i = 0; i < 12; ++i) {
            sum += random_.next();
        }
        return sum - 6.0;
    }

private:
    core::UniformRandom random_;
};

const std::array<std::string, 17> PeriodNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December",
    "Winter",  "Spring",   "Summer",    "Autumn",  "Annual"};

// A monthly statistic with its seasons (December to February first) and the year.
std::vector<double> withSeasonsAndYear(const std::array<double, 12>& months) {
    std::vector<double> rows(months.begin(), months.end());
    const auto mean3 = [&](int a, int b, int c) { return (months[a] + months[b] + months[c]) / 3; };
    rows.push_back(mean3(11, 0, 1));
    rows.push_back(mean3(2, 3, 4));
    rows.push_back(mean3(5, 6, 7));
    rows.push_back(mean3(8, 9, 10));
    double year = 0.0;
    for (const double month : months) {
        year += month / 12.0;
    }
    rows.push_back(year);
    return rows;
}

ChartModel resultSample(const core::ProgramState& state) {
    std::array<double, 12> observed{};
    std::array<double, 12> modelled{};
    for (int m = 0; m < 12; ++m) {
        observed[m] = 2.2 + 0.9 * std::cos(2 * Pi * m / 12.0) + 0.15 * std::sin(5.0 * m);
        modelled[m] = 2.1 + 0.8 * std::cos(2 * Pi * (m - 0.3) / 12.0);
    }
    return resultChart(true, {PeriodNames.begin(), PeriodNames.end()},
                       {{"observed.txt: Mean", withSeasonsAndYear(observed)},
                        {"modelled.txt: Mean", withSeasonsAndYear(modelled)}},
                       state);
}

ChartModel scatterSample(const core::ProgramState& state) {
    Noise noise;
    std::vector<double> x;
    std::vector<double> y;
    for (int day = 0; day < 800; ++day) {
        const double pressure = 1013.0 + 9.0 * noise.next();
        x.push_back(pressure);
        y.push_back(std::max(0.0, 0.35 * (1013.0 - pressure) + 2.0 + 2.5 * noise.next()));
    }
    return scatterChart("12 missing value(s): precip.dat", "mslp.dat", "precip.dat", x, y, state);
}

std::string dayLabel(int dayOfYear) {
    static constexpr std::array<int, 12> Lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int month = 0;
    while (dayOfYear >= Lengths[month]) {
        dayOfYear -= Lengths[month];
        ++month;
    }
    std::string label;
    for (const int value : {dayOfYear + 1, month + 1}) {
        label.append(value < 10 ? "0" : "").append(std::to_string(value)).append("/");
    }
    return label.append("1961");
}

ChartModel lineSample(const core::ProgramState& state) {
    Noise noise;
    std::vector<std::string> labels;
    std::vector<double> observed;
    std::vector<double> modelled;
    for (int day = 0; day < 365; ++day) {
        const double season = 14.0 - 8.0 * std::cos(2 * Pi * day / 365.0);
        labels.push_back(dayLabel(day));
        observed.push_back(season + 2.0 * noise.next());
        modelled.push_back(season + 0.5 + 1.7 * noise.next());
    }
    ChartModel chart = lineChart(labels, {{"tmax.dat", observed}, {"tmax.OUT", modelled}}, state);
    chart.yAxis.title = "Maximum temperature";
    chart.xAxis.title = "Day";
    return chart;
}

ChartModel pdfSample(const core::ProgramState& state) {
    constexpr int Categories = 25;
    std::vector<std::string> labels(Categories);
    labels.front() = "0.000";
    labels.back() = "24.000";
    std::vector<double> observed;
    std::vector<double> modelled;
    for (int q = 0; q < Categories; ++q) {
        observed.push_back(std::round(900.0 * std::exp(-q / 3.2)));
        modelled.push_back(std::round(820.0 * std::exp(-q / 3.6)));
    }
    return pdfChart(labels, {{"precip.dat", observed}, {"precip.OUT", modelled}}, state);
}

ChartModel histogramSample(const core::ProgramState& state) {
    Noise noise;
    std::vector<double> residuals;
    for (int day = 0; day < 3000; ++day) {
        residuals.push_back(1.4 * noise.next());
    }
    const auto [low, high] = std::minmax_element(residuals.begin(), residuals.end());
    constexpr int Bars = 20;
    const double step = (*high - *low) / Bars;
    std::vector<std::string> labels;
    std::vector<double> counts(Bars, 0.0);
    for (int i = 0; i < Bars; ++i) {
        const double lower = *low + step * i;
        labels.push_back(core::formatPattern(i == Bars - 1 ? *high : lower, "####0.000"));
        counts[i] =
            static_cast<double>(std::count_if(residuals.begin(), residuals.end(), [&](double r) {
                return r >= lower && r < lower + step;
            }));
    }
    return histogramChart(labels, counts, state);
}

ChartModel timeSeriesSample(const core::ProgramState& state) {
    Noise noise;
    std::vector<std::string> years;
    std::vector<CategorySeries> series = {{"precip.dat", {}}, {"precip-model.dat", {}}};
    for (int year = 1961; year <= 2000; ++year) {
        years.push_back(std::to_string(year));
        series[0].values.push_back(780.0 + 60.0 * noise.next());
        series[1].values.push_back(760.0 + 1.5 * (year - 1961) + 50.0 * noise.next());
    }
    return timeSeriesChart(TimeSeriesKind::Analysed, "Sum", "Sum", years, series, state);
}

ChartModel frequencySample(const core::ProgramState& state) {
    constexpr int Years = 30;
    FrequencySeries observed{"precip.dat", {}, {}};
    FrequencySeries modelled{"precip.OUT", {}, {}};
    FrequencySeries upper{"95th percentile", {}, {}};
    FrequencySeries lower{"5th percentile", {}, {}};
    for (int rank = Years; rank >= 1; --rank) {
        const double period = static_cast<double>(Years) / rank;
        const double level = 28.0 + 9.0 * std::log(period);
        observed.returnPeriods.push_back(period);
        observed.values.push_back(level + 1.5 * std::sin(rank * 1.3));
        modelled.returnPeriods.push_back(period);
        modelled.values.push_back(level - 1.0);
        upper.returnPeriods.push_back(period);
        upper.values.push_back(level + 3.0 + 0.6 * std::log(period));
        lower.returnPeriods.push_back(period);
        lower.values.push_back(level - 5.0 - 0.6 * std::log(period));
    }
    return frequencyChart("Period: Annual;  Fit: Empirical", {observed, modelled},
                          std::make_pair(upper, lower), state);
}

} // namespace

const std::vector<ChartScreen>& allChartScreens() {
    static const std::vector<ChartScreen> screens = {
        ChartScreen::Result,    ChartScreen::Scatter,    ChartScreen::Line,     ChartScreen::Pdf,
        ChartScreen::Histogram, ChartScreen::TimeSeries, ChartScreen::Frequency};
    return screens;
}

ChartModel sampleChart(ChartScreen screen, const core::ProgramState& state) {
    switch (screen) {
    case ChartScreen::Result:
        return resultSample(state);
    case ChartScreen::Scatter:
        return scatterSample(state);
    case ChartScreen::Line:
        return lineSample(state);
    case ChartScreen::Pdf:
        return pdfSample(state);
    case ChartScreen::Histogram:
        return histogramSample(state);
    case ChartScreen::TimeSeries:
        return timeSeriesSample(state);
    case ChartScreen::Frequency:
        return frequencySample(state);
    }
    return resultSample(state);
}

} // namespace varo::charts
