#include "sampledata/sample_data.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numbers>

namespace varo::sampledata {

namespace {

constexpr int Count = static_cast<int>(PredictorCodes.size());
enum Predictor {
    Mslp,
    P500,
    Vorticity,
    ZonalWind,
    Humidity850,
    SurfaceHumidity,
    Temperature,
    Humidity850Specific
};

// How a predictor looks: its mean, seasonal cycle (amplitude and day of the peak), the
// spread of its day-to-day anomalies, their persistence from one day to the next, and the
// physical bounds its values keep to.
struct PredictorShape {
    double mean;
    double amplitude;
    double peakDay;
    double spread;
    double persistence;
    double low;
    double high;
};

constexpr PredictorShape Shapes[Count] = {
    {1013.0, 2.5, 15.0, 8.0, 0.85, 950.0, 1060.0},      // mslp, hPa
    {5600.0, 120.0, 200.0, 80.0, 0.90, 5000.0, 6000.0}, // p500, m
    {0.0, 0.0, 0.0, 1.0, 0.50, -6.0, 6.0},              // p__z, standardised vorticity
    {5.0, 3.0, 15.0, 5.0, 0.70, -40.0, 50.0},           // p8_u, m/s
    {70.0, -8.0, 200.0, 12.0, 0.60, 5.0, 100.0},        // r850, %
    {6.0, 3.0, 200.0, 1.2, 0.80, 0.5, 25.0},            // shum, g/kg
    {9.0, 7.0, 200.0, 3.0, 0.85, -40.0, 45.0},          // temp, deg C
    {4.5, 2.5, 200.0, 1.0, 0.80, 0.2, 20.0},            // s850, g/kg
};

// Correlation of the daily innovations, in the order of PredictorCodes.
constexpr double Correlation[Count][Count] = {
    {1.0, 0.5, -0.6, -0.2, -0.4, 0.0, 0.0, 0.0}, {0.5, 1.0, 0.0, 0.0, 0.0, 0.4, 0.6, 0.4},
    {-0.6, 0.0, 1.0, 0.2, 0.5, 0.0, 0.0, 0.0},   {-0.2, 0.0, 0.2, 1.0, 0.0, 0.0, 0.0, 0.0},
    {-0.4, 0.0, 0.5, 0.0, 1.0, 0.3, 0.0, 0.4},   {0.0, 0.4, 0.0, 0.0, 0.3, 1.0, 0.6, 0.7},
    {0.0, 0.6, 0.0, 0.0, 0.0, 0.6, 1.0, 0.5},    {0.0, 0.4, 0.0, 0.0, 0.4, 0.7, 0.5, 1.0},
};

// Rows of the station files that are marked missing.
constexpr int MissingRows[] = {400, 401, 402, 3650, 7000, 7001, 9999};

// SplitMix64 with normal and gamma variates of its own, so that the files are the same
// on every machine whatever its standard library.
class SampleRandom {
public:
    explicit SampleRandom(std::uint64_t seed) : state_(seed) {}

    // In the open interval (0, 1).
    double uniform() {
        state_ += 0x9E3779B97F4A7C15ULL;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
        z ^= z >> 31U;
        return (static_cast<double>(z >> 11U) + 0.5) / 9007199254740992.0;
    }

    double normal() {
        if (haveSpare_) {
            haveSpare_ = false;
            return spare_;
        }
        const double radius = std::sqrt(-2.0 * std::log(uniform()));
        const double angle = 2.0 * std::numbers::pi * uniform();
        spare_ = radius * std::sin(angle);
        haveSpare_ = true;
        return radius * std::cos(angle);
    }

    // Gamma variate by the squeeze method; a shape below 1 is boosted by a power of a uniform.
    double gamma(double shape, double scale) {
        if (shape < 1.0) {
            return gamma(shape + 1.0, scale) * std::pow(uniform(), 1.0 / shape);
        }
        const double d = shape - 1.0 / 3.0;
        const double c = 1.0 / std::sqrt(9.0 * d);
        for (;;) {
            double x = 0.0;
            double v = 0.0;
            do {
                x = normal();
                v = 1.0 + c * x;
            } while (v <= 0.0);
            v = v * v * v;
            const double u = uniform();
            if (std::log(u) < 0.5 * x * x + d - d * v + d * std::log(v)) {
                return d * v * scale;
            }
        }
    }

private:
    std::uint64_t state_;
    double spare_ = 0.0;
    bool haveSpare_ = false;
};

// Lower triangle of the Cholesky factor of the innovation correlation.
std::array<std::array<double, Count>, Count> choleskyFactor() {
    std::array<std::array<double, Count>, Count> factor{};
    for (int i = 0; i < Count; ++i) {
        for (int j = 0; j <= i; ++j) {
            double sum = Correlation[i][j];
            for (int k = 0; k < j; ++k) {
                sum -= factor[i][k] * factor[j][k];
            }
            factor[i][j] = i == j ? std::sqrt(sum) : sum / factor[j][j];
        }
    }
    return factor;
}

// Standardised daily anomalies of the eight predictors: each persists from day to day with
// its own lag-one correlation, and their innovations are correlated with each other.
class LatentWeather {
public:
    explicit LatentWeather(std::uint64_t seed) : random_(seed), factor_(choleskyFactor()) {
        const auto start = innovations();
        anomalies_ = start;
    }

    void step() {
        const auto fresh = innovations();
        for (int i = 0; i < Count; ++i) {
            const double phi = Shapes[i].persistence;
            anomalies_[i] = phi * anomalies_[i] + std::sqrt(1.0 - phi * phi) * fresh[i];
        }
    }

    double operator[](int i) const { return anomalies_[i]; }
    SampleRandom& random() { return random_; }

private:
    std::array<double, Count> innovations() {
        std::array<double, Count> draws{};
        for (double& draw : draws) {
            draw = random_.normal();
        }
        std::array<double, Count> correlated{};
        for (int i = 0; i < Count; ++i) {
            for (int k = 0; k <= i; ++k) {
                correlated[i] += factor_[i][k] * draws[k];
            }
        }
        return correlated;
    }

    SampleRandom random_;
    std::array<std::array<double, Count>, Count> factor_;
    std::array<double, Count> anomalies_{};
};

// A predictor's value as its file holds it: the physical value (mean, seasonal cosine,
// anomaly and shift, kept within physical bounds), normalised by the baseline climate,
// whose variance is that of the anomalies plus that of the cosine.
double predictorValue(int i, double yearFraction, double anomaly, double shift) {
    const PredictorShape& shape = Shapes[i];
    const double cycle = std::cos(2.0 * std::numbers::pi * (yearFraction - shape.peakDay / 365.25));
    const double value =
        std::clamp(shape.mean + shape.amplitude * cycle + shape.spread * anomaly + shift, shape.low,
                   shape.high);
    const double deviation =
        std::sqrt(shape.spread * shape.spread + shape.amplitude * shape.amplitude / 2.0);
    return (value - shape.mean) / deviation;
}

// The predictor files of one folder, written a day at a time.
class PredictorWriter {
public:
    explicit PredictorWriter(const std::string& folder) {
        for (const char* code : PredictorCodes) {
            files_.push_back(
                std::make_unique<core::TextFileWriter>(folder + "/" + predictorFileName(code)));
        }
    }
    void write(const std::array<double, Count>& values) {
        for (int i = 0; i < Count; ++i) {
            files_[static_cast<size_t>(i)]->writeLine(format_.format(values[i]));
        }
    }
    void close() {
        for (auto& file : files_) {
            file->close();
        }
    }

private:
    std::vector<std::unique_ptr<core::TextFileWriter>> files_;
    core::NumberFormat format_{"0.000"};
};

// Walks the days of a period under a calendar, with each day's year and its fraction of
// the year (day of year over the year's length).
template <typename Visit>
long forEachDay(core::CalendarRule rule, int firstYear, int lastYear, Visit visit) {
    core::RecordCalendar position(rule, core::Date{1, 1, firstYear});
    const double yearLength = rule.yearLengthRow == 2 ? 360.0 : 365.25;
    long days = 0;
    int year = position.year();
    double dayOfYear = 0.0;
    while (position.year() <= lastYear) {
        if (position.year() != year) {
            year = position.year();
            dayOfYear = 0.0;
        }
        visit(position.year(), dayOfYear / yearLength);
        dayOfYear += 1.0;
        ++days;
        position.stepDay();
    }
    return days;
}

double logistic(double x) {
    return 1.0 / (1.0 + std::exp(-x));
}

// A wet day's chance rises with vorticity and humidity and falls with pressure, on a
// seasonal base that makes winters wetter; amounts are skewed (gamma, shape 0.8) with a
// mean that rises with humidity and vorticity.
double precipitation(const LatentWeather& weather, double yearFraction, SampleRandom& random) {
    const double base =
        -0.4 + 0.5 * std::cos(2.0 * std::numbers::pi * (yearFraction - 15.0 / 365.25));
    const double chance = logistic(base + 1.2 * weather[Vorticity] + 0.9 * weather[Humidity850] -
                                   0.8 * weather[Mslp]);
    const double draw = random.uniform();
    const double meanAmount = std::exp(1.3 + 0.35 * weather[Humidity850] +
                                       0.25 * weather[SurfaceHumidity] + 0.2 * weather[Vorticity]);
    const double amount = random.gamma(0.8, meanAmount / 0.8);
    if (draw >= chance) {
        return 0.0;
    }
    return std::max(0.1, std::round(amount * 10.0) / 10.0);
}

double maximumTemperature(const std::array<double, Count>& values, SampleRandom& random) {
    return TmaxIntercept + TmaxOnTemp * values[Temperature] + TmaxOnP500 * values[P500] +
           TmaxOnR850 * values[Humidity850] + TmaxNoise * random.normal();
}

void makeFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw core::Failure(core::failure::PathAccessError,
                            "Cannot create the folder '" + folder + "': " + error.message() + ".");
    }
}

} // namespace

std::string predictorFileName(const std::string& code) {
    return code + ".dat";
}

double futureShift(const std::string& code, int year) {
    const double centuries = std::max(0, year - 2000) / 100.0;
    if (code == "temp") {
        return 3.5 * centuries;
    }
    if (code == "shum") {
        return 1.2 * centuries;
    }
    if (code == "s850") {
        return 0.8 * centuries;
    }
    if (code == "mslp") {
        return -1.0 * centuries;
    }
    if (code == "p500") {
        return 45.0 * centuries;
    }
    if (code == "r850") {
        return -2.0 * centuries;
    }
    return 0.0;
}

SampleFiles writeSampleData(const std::string& folder, const SampleOptions& options) {
    SampleFiles files;
    files.predictorFolder = folder + "/predictors";
    files.futureFolder = folder + "/future";
    files.precipitation = folder + "/precip.dat";
    files.maximumTemperature = folder + "/tmax.dat";
    for (const char* code : PredictorCodes) {
        files.predictorFiles.push_back(predictorFileName(code));
    }
    makeFolder(files.predictorFolder);
    makeFolder(files.futureFolder);

    const core::NumberFormat stationFormat("0.0");
    const std::string missing = core::generalText(options.missingCode);
    {
        PredictorWriter predictors(files.predictorFolder);
        core::TextFileWriter rain(files.precipitation);
        core::TextFileWriter tmax(files.maximumTemperature);
        LatentWeather weather(options.seed);
        SampleRandom station(options.seed ^ 0x5DEECE66DULL);
        long row = 0;
        files.days = forEachDay(
            core::RealCalendar, options.firstYear, options.lastYear, [&](int, double yearFraction) {
                std::array<double, Count> values{};
                for (int i = 0; i < Count; ++i) {
                    values[i] = predictorValue(i, yearFraction, weather[i], 0.0);
                }
                predictors.write(values);
                const double amount = precipitation(weather, yearFraction, station);
                const double temperature = maximumTemperature(values, station);
                const bool isMissing = std::find(std::begin(MissingRows), std::end(MissingRows),
                                                 row) != std::end(MissingRows);
                if (isMissing) {
                    files.missingDays.push_back(static_cast<int>(row));
                }
                rain.writeLine(isMissing ? missing : stationFormat.format(amount));
                tmax.writeLine(isMissing ? missing : stationFormat.format(temperature));
                weather.step();
                ++row;
            });
        predictors.close();
        rain.close();
        tmax.close();
    }
    {
        PredictorWriter future(files.futureFolder);
        LatentWeather weather(options.seed + 2011);
        files.futureDays =
            forEachDay(core::calendarForYearLength(360), options.futureFirstYear,
                       options.futureLastYear, [&](int year, double yearFraction) {
                           std::array<double, Count> values{};
                           for (int i = 0; i < Count; ++i) {
                               values[i] = predictorValue(i, yearFraction, weather[i],
                                                          futureShift(PredictorCodes[i], year));
                           }
                           future.write(values);
                           weather.step();
                       });
        future.close();
    }
    return files;
}

} // namespace varo::sampledata
