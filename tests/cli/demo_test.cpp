#include "cli_test_support.hpp"

#include "sampledata/sample_data.hpp"
#include "series/parameter_file.hpp"
#include "series/simulation_files.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

using namespace varo;
using varo::testing::fileExists;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

long countLines(const std::string& path) {
    const std::string text = readFile(path);
    return static_cast<long>(std::count(text.begin(), text.end(), '\n'));
}

// The closing list of the demo's output: each entry's name (a folder ends in '/') and what
// it says the entry holds.
std::map<std::string, std::string> listedFiles(const std::string& out) {
    std::map<std::string, std::string> listed;
    const size_t start = out.find("Files written in ");
    if (start == std::string::npos) {
        return listed;
    }
    std::istringstream lines(out.substr(start));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line) && line.rfind("  ", 0) == 0) {
        const size_t nameEnd = line.find(' ', 2);
        const size_t holds = line.find_first_not_of(' ', nameEnd);
        listed[line.substr(2, nameEnd - 2)] =
            holds == std::string::npos ? std::string() : line.substr(holds);
    }
    return listed;
}

} // namespace

// The whole chain on six years of sample data: every step leaves its files, they parse,
// and the temperature model recovers the relation the sample was made with.
TEST(CliDemo, ShortChainWritesEveryStepsFilesAndRecoversTheKnownRelation) {
    TempDir dir;
    const std::string folder = dir.path("demo");
    const auto run = varo::testing::runVaro(dir, {"demo", folder, "--short"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("$ varo --set ModelTransformation=2 calibrate"), std::string::npos);
    EXPECT_NE(run.out.find("Projected change"), std::string::npos);
    const auto path = [&](const std::string& name) { return folder + "/" + name; };

    // Sample data and the demo's own settings file.
    EXPECT_EQ(countLines(path("precip.dat")), 6 * 365 + 1);
    EXPECT_NE(readFile(path("VARO.INI")).find("RandomSeed=False"), std::string::npos);
    const std::string screening = readFile(path("screening.txt"));
    EXPECT_NE(screening.find("CORRELATION MATRIX"), std::string::npos);
    // Saved as the screening screen saves a report: every line ends in CR LF.
    EXPECT_EQ(std::count(screening.begin(), screening.end(), '\n'),
              std::count(screening.begin(), screening.end(), '\r'));

    // Models.
    const auto rain = series::readParameterFile(path("precip.PAR"));
    EXPECT_TRUE(rain.conditional);
    EXPECT_EQ(rain.transformation, core::TransformFourthRoot);
    EXPECT_EQ(rain.predictorCount(), 4);
    const auto tmax = series::readParameterFile(path("tmax.PAR"));
    EXPECT_FALSE(tmax.conditional);
    ASSERT_EQ(tmax.predictorNames, (std::vector<std::string>{"temp.dat", "p500.dat", "r850.dat"}));
    // Six years give about 180 days a month: each month's coefficients lie within a few
    // standard errors of the known ones, and their mean much closer.
    double temp = 0.0;
    double p500 = 0.0;
    double r850 = 0.0;
    for (const auto& month : tmax.months) {
        EXPECT_NEAR(month.coefficients[0], sampledata::TmaxIntercept, 0.6);
        EXPECT_NEAR(month.coefficients[1], sampledata::TmaxOnTemp, 1.0);
        EXPECT_NEAR(month.standardError, sampledata::TmaxNoise, 0.2);
        temp += month.coefficients[1] / 12.0;
        p500 += month.coefficients[2] / 12.0;
        r850 += month.coefficients[3] / 12.0;
    }
    EXPECT_NEAR(temp, sampledata::TmaxOnTemp, 0.25);
    EXPECT_NEAR(p500, sampledata::TmaxOnP500, 0.2);
    EXPECT_NEAR(r850, sampledata::TmaxOnR850, 0.15);

    // Generated series: five members a day, with their descriptions.
    for (const char* model : {"precip", "tmax"}) {
        const auto observed =
            series::readSimulationDescription(path(std::string(model) + "-observed.SIM"));
        EXPECT_EQ(observed.ensembleSize, 5);
        EXPECT_EQ(observed.yearIndicator, 366);
        EXPECT_EQ(countLines(path(std::string(model) + "-observed.OUT")), observed.fitLength);
        const auto projected =
            series::readSimulationDescription(path(std::string(model) + "-model.SIM"));
        EXPECT_EQ(projected.yearIndicator, 360);
        EXPECT_EQ(projected.fitLength, 139 * 360);
        EXPECT_EQ(countLines(path(std::string(model) + "-model.OUT")), projected.fitLength);
    }

    // Results files.
    for (const char* results :
         {"precip-observed-stats.txt", "precip-modelled-stats.txt", "tmax-observed-stats.txt",
          "tmax-modelled-stats.txt", "precip-change.txt", "tmax-change.txt"}) {
        EXPECT_EQ(readFile(path(results)).rfind("SUMMARY STATISTICS FOR: ", 0), 0u) << results;
    }
    EXPECT_NE(readFile(path("tmax-change.txt")).find("T Test Results"), std::string::npos);

    // The scenarios: 10 % fewer wet days with the total kept to the written decimals, and
    // a warming of 2 degrees by the last day.
    const auto values = [&](const std::string& name) {
        std::vector<double> read;
        std::istringstream in(readFile(path(name)));
        for (double value = 0; in >> value;) {
            read.push_back(value);
        }
        return read;
    };
    const auto wet = [](const std::vector<double>& series, double& sum) {
        long count = 0;
        sum = 0.0;
        for (const double value : series) {
            if (value > 0.0) {
                ++count;
                sum += value;
            }
        }
        return count;
    };
    double observedSum = 0.0;
    double scenarioSum = 0.0;
    const long observedWet = wet(values("precip.dat"), observedSum);
    const long scenarioWet = wet(values("precip-scenario.OUT"), scenarioSum);
    EXPECT_NEAR(static_cast<double>(scenarioWet), 0.9 * static_cast<double>(observedWet), 0.5);
    EXPECT_NEAR(scenarioSum, observedSum, 0.0005 * static_cast<double>(scenarioWet));
    const std::vector<double> tmaxValues = values("tmax.dat");
    const std::vector<double> warmer = values("tmax-scenario.OUT");
    ASSERT_EQ(warmer.size(), tmaxValues.size());
    size_t last = tmaxValues.size() - 1;
    while (tmaxValues[last] == -999.0) {
        --last; // a missing day stays missing
    }
    EXPECT_NEAR(warmer[last] - tmaxValues[last],
                2.0 * static_cast<double>(last + 1) / static_cast<double>(tmaxValues.size()), 0.01);
    EXPECT_NE(run.out.find("$ varo scenario "), std::string::npos);
    EXPECT_NE(run.out.find("Scenarios against the observed series"), std::string::npos);

    // The climate model's warming comes through: the summary's change of maximum
    // temperature by 2071-2099, in deg C, lies near the known shift of its predictors.
    const size_t late = run.out.find("  2071-2099");
    ASSERT_NE(late, std::string::npos);
    const std::string line = run.out.substr(late, run.out.find('\n', late) - late);
    const double warming = std::stod(line.substr(line.rfind('%') + 1));
    EXPECT_GT(warming, 1.5) << line;
    EXPECT_LT(warming, 4.0) << line;

    // The closing list names every file and folder the demo left, each with what it holds,
    // and nothing it did not write; the summary calls the sample's noise by its name.
    const auto listed = listedFiles(run.out);
    std::set<std::string> present;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        present.insert(entry.path().filename().string() + (entry.is_directory() ? "/" : ""));
    }
    std::set<std::string> names;
    for (const auto& [name, holds] : listed) {
        names.insert(name);
        EXPECT_GT(holds.size(), 10u) << name;
    }
    EXPECT_EQ(names, present);
    EXPECT_NE(run.out.find("the sample data's built-in noise: 1.50"), std::string::npos);
}

TEST(CliDemo, UnwritableFolderFailsWithItsMessage) {
    TempDir dir;
    const auto run = varo::testing::runVaro(dir, {"demo", "/proc/varo-demo-here", "--short"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("/proc/varo-demo-here"), std::string::npos);
}
