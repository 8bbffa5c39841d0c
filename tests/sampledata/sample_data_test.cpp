#include "core/record_calendar.hpp"
#include "core/series_file.hpp"
#include "sampledata/sample_data.hpp"
#include "support/temp_dir.hpp"

#include <Eigen/Dense>
#include <algorithm>
#include <gtest/gtest.h>

using namespace varo;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

std::vector<double> readAll(const std::string& path, long count) {
    core::SeriesReader reader(path);
    std::vector<double> values(static_cast<size_t>(count));
    for (double& value : values) {
        value = reader.readNumber();
    }
    EXPECT_TRUE(reader.atEnd()) << path;
    return values;
}

struct SampleFixture : ::testing::Test {
    static TempDir* dir;
    static sampledata::SampleFiles files;
    static void SetUpTestSuite() {
        dir = new TempDir();
        files = sampledata::writeSampleData(dir->path("sample"));
    }
    static void TearDownTestSuite() { delete dir; }
    std::vector<double> predictor(const std::string& code) const {
        return readAll(files.predictorFolder + "/" + sampledata::predictorFileName(code),
                       files.days);
    }
};
TempDir* SampleFixture::dir = nullptr;
sampledata::SampleFiles SampleFixture::files;

} // namespace

TEST_F(SampleFixture, FilesCoverTheirPeriodsRowForRow) {
    EXPECT_EQ(files.days, 10957);
    EXPECT_EQ(files.futureDays, 139 * 360);
    readAll(files.precipitation, files.days);
    readAll(files.maximumTemperature, files.days);
    for (const auto& name : files.predictorFiles) {
        readAll(files.predictorFolder + "/" + name, files.days);
        readAll(files.futureFolder + "/" + name, files.futureDays);
    }
    EXPECT_EQ(files.predictorFiles.front(), "mslp.dat");
}

TEST_F(SampleFixture, SameSeedSameBytesOtherSeedOtherData) {
    TempDir other;
    sampledata::SampleOptions shortRun;
    shortRun.lastYear = 1962;
    shortRun.futureLastYear = 1962;
    const auto first = sampledata::writeSampleData(other.path("first"), shortRun);
    const auto again = sampledata::writeSampleData(other.path("again"), shortRun);
    EXPECT_EQ(readFile(again.precipitation), readFile(first.precipitation));
    EXPECT_EQ(readFile(again.futureFolder + "/temp.dat"),
              readFile(first.futureFolder + "/temp.dat"));
    // The first years of the full set are those of the short one: the stream is the same.
    EXPECT_EQ(readFile(first.predictorFolder + "/mslp.dat"),
              readFile(files.predictorFolder + "/mslp.dat")
                  .substr(0, readFile(first.predictorFolder + "/mslp.dat").size()));
    shortRun.seed = 7;
    const auto different = sampledata::writeSampleData(other.path("different"), shortRun);
    EXPECT_NE(readFile(different.precipitation), readFile(first.precipitation));
}

TEST_F(SampleFixture, WetDayFractionsAreRealisticBySeasonAndAmountsSkewed) {
    const auto rain = readAll(files.precipitation, files.days);
    std::array<long, 5> wet{};
    std::array<long, 5> counted{};
    std::vector<double> amounts;
    core::RecordCalendar position(core::RealCalendar, {1, 1, 1961});
    long missing = 0;
    for (double value : rain) {
        if (value == -999.0) {
            ++missing;
        } else {
            const int season = position.season();
            ++counted[static_cast<size_t>(season)];
            if (value > 0.0) {
                ++wet[static_cast<size_t>(season)];
                amounts.push_back(value);
            }
        }
        position.stepDay();
    }
    EXPECT_EQ(missing, static_cast<long>(files.missingDays.size()));
    EXPECT_GE(missing, 3);
    for (int season = 1; season <= 4; ++season) {
        const double fraction = static_cast<double>(wet[static_cast<size_t>(season)]) /
                                static_cast<double>(counted[static_cast<size_t>(season)]);
        EXPECT_GT(fraction, 0.30) << "season " << season;
        EXPECT_LT(fraction, 0.60) << "season " << season;
    }
    std::sort(amounts.begin(), amounts.end());
    double mean = 0.0;
    for (double amount : amounts) {
        mean += amount / static_cast<double>(amounts.size());
    }
    EXPECT_GT(mean, 1.3 * amounts[amounts.size() / 2]); // a long right tail
    EXPECT_GT(amounts.back(), 30.0);
}

TEST_F(SampleFixture, MaximumTemperatureFollowsItsKnownRelation) {
    const auto tmax = readAll(files.maximumTemperature, files.days);
    const auto temp = predictor("temp");
    const auto p500 = predictor("p500");
    const auto r850 = predictor("r850");
    std::vector<long> rows;
    for (long i = 0; i < files.days; ++i) {
        if (tmax[static_cast<size_t>(i)] != -999.0) {
            rows.push_back(i);
        }
    }
    Eigen::MatrixXd x(static_cast<long>(rows.size()), 4);
    Eigen::VectorXd y(static_cast<long>(rows.size()));
    for (size_t r = 0; r < rows.size(); ++r) {
        const auto i = static_cast<size_t>(rows[r]);
        x.row(static_cast<long>(r)) << 1.0, temp[i], p500[i], r850[i];
        y(static_cast<long>(r)) = tmax[i];
    }
    const Eigen::VectorXd beta = x.colPivHouseholderQr().solve(y);
    EXPECT_NEAR(beta(0), sampledata::TmaxIntercept, 0.05);
    EXPECT_NEAR(beta(1), sampledata::TmaxOnTemp, 0.05);
    EXPECT_NEAR(beta(2), sampledata::TmaxOnP500, 0.05);
    EXPECT_NEAR(beta(3), sampledata::TmaxOnR850, 0.05);
    const double residualSd =
        std::sqrt((y - x * beta).squaredNorm() / static_cast<double>(rows.size() - 4));
    EXPECT_NEAR(residualSd, sampledata::TmaxNoise, 0.06);
}

TEST_F(SampleFixture, PredictorsAreNormalisedOverTheBasePeriod) {
    for (const char* code : sampledata::PredictorCodes) {
        const auto values = predictor(code);
        double sum = 0.0;
        double squares = 0.0;
        for (double value : values) {
            sum += value;
            squares += value * value;
        }
        const double mean = sum / static_cast<double>(values.size());
        EXPECT_NEAR(mean, 0.0, 0.15) << code;
        EXPECT_NEAR(std::sqrt(squares / static_cast<double>(values.size()) - mean * mean), 1.0,
                    0.15)
            << code;
    }
}

TEST_F(SampleFixture, PredictorsPersistAndCorrelateLikeTheAtmosphere) {
    const auto mslp = predictor("mslp");
    const auto vorticity = predictor("p__z");
    double sxy = 0.0;
    double sxx = 0.0;
    double syy = 0.0;
    double lag = 0.0;
    for (size_t i = 0; i < mslp.size(); ++i) {
        sxy += mslp[i] * vorticity[i];
        sxx += mslp[i] * mslp[i];
        syy += vorticity[i] * vorticity[i];
        if (i > 0) {
            lag += vorticity[i] * vorticity[i - 1];
        }
    }
    EXPECT_LT(sxy / std::sqrt(sxx * syy), -0.4);
    EXPECT_NEAR(lag / syy, 0.5, 0.05); // the vorticity's own lag-one persistence
}

TEST_F(SampleFixture, FuturePredictorsCarryTheClimateShift) {
    const auto future = readAll(files.futureFolder + "/temp.dat", files.futureDays);
    const long perYear = 360;
    const auto meanOfYears = [&](int first, int last) {
        double sum = 0.0;
        for (long i = (first - 1961) * perYear; i < (last - 1961 + 1) * perYear; ++i) {
            sum += future[static_cast<size_t>(i)];
        }
        return sum / static_cast<double>((last - first + 1) * perYear);
    };
    const double change = meanOfYears(2071, 2099) - meanOfYears(1961, 1990);
    // The shift is in deg C; the file holds temperature over its deviation, sqrt(3^2 + 7^2/2).
    const double deviation = std::sqrt(9.0 + 49.0 / 2.0);
    const double expected =
        (sampledata::futureShift("temp", 2085) - sampledata::futureShift("temp", 1975)) / deviation;
    EXPECT_NEAR(change, expected, 0.1);
    EXPECT_GT(expected, 0.4);
    EXPECT_EQ(sampledata::futureShift("temp", 1990), 0.0);
}
