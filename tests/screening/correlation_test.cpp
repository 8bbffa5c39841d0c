#include "screening/correlation.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "series_text.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>

using namespace varo;
using namespace varo::screening;
using varo::testing::TempDir;

namespace {

const std::string DataFolder = std::string(VARO_TEST_DATA) + "/screening/";

nlohmann::json reference() {
    std::ifstream file(DataFolder + "reference.json");
    return nlohmann::json::parse(file);
}

struct CorrelationFixture : ::testing::Test {
    core::ProgramState state;
    core::NullProgress progress;
    TempDir dir;
    CorrelationFixture() { core::initialiseState(state); }

    ScreeningRequest referenceRequest() const {
        ScreeningRequest asked;
        asked.predictandPath = DataFolder + "predictand.dat";
        for (const char* name : {"p1_mslp.dat", "p2_p500.dat", "p3_rhum.dat"}) {
            asked.predictorPaths.push_back(DataFolder + name);
        }
        asked.fitStart = {1, 1, 1961};
        asked.fitEnd = {31, 12, 1963};
        return asked;
    }

    std::string file(const std::string& name, const std::vector<double>& values) {
        return varo::testing::writeSeries(dir, name, values);
    }
};

void expectMatchesReference(const CorrelationResult& result, const nlohmann::json& expected) {
    EXPECT_EQ(result.n, expected["n"].get<long>());
    for (size_t i = 0; i < result.r.size(); ++i) {
        for (size_t j = 0; j < result.r.size(); ++j) {
            EXPECT_NEAR(result.r[i][j], expected["r"][i][j].get<double>(), 1e-12);
        }
    }
    ASSERT_EQ(result.partial.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(result.partial[i], expected["partial"][i].get<double>(), 1e-12);
        const double p = expected["pValue"][i].get<double>();
        EXPECT_NEAR(result.pValue[i], p, 1e-9 * p) << i;
    }
}

} // namespace

TEST_F(CorrelationFixture, MatrixAndPartialsAgreeWithTheInverseOfTheCorrelationMatrix) {
    const auto expected = reference();
    auto asked = referenceRequest();
    const auto annual = assembleScreeningData(asked, state, progress);
    expectMatchesReference(correlate(annual, false, state), expected["annual"]);
    asked.period = 11; // July
    const auto july = assembleScreeningData(asked, state, progress);
    expectMatchesReference(correlate(july, false, state), expected["july"]);
}

TEST(PartialCorrelation, FirstOrderAndNonPositiveDenominators) {
    const CorrelationMatrix r = {{1.0, 0.6, 0.3}, {0.6, 1.0, 0.5}, {0.3, 0.5, 1.0}};
    const double expected = (0.6 - 0.3 * 0.5) / std::sqrt((1 - 0.25) * (1 - 0.09));
    EXPECT_DOUBLE_EQ(partialCorrelation(r, 0, 1, {2}, 1), expected);
    const CorrelationMatrix collinear = {{1.0, 0.6, 1.0}, {0.6, 1.0, 0.5}, {1.0, 0.5, 1.0}};
    EXPECT_EQ(partialCorrelation(collinear, 0, 1, {2}, 1), -1.0);
}

TEST(PartialCorrelation, PValueIsTheSystemsExpressionWithSinglePrecisionPi) {
    EXPECT_EQ(partialPValue(0.9995, 100, 3.1415927f), 1.0);
    EXPECT_EQ(partialPValue(-0.999, 100, 3.1415927f), 1.0);
    const double t = std::sqrt(8.0) * 0.5 / std::sqrt(0.75);
    const double pi = static_cast<double>(3.1415927f);
    const double expected = std::pow(1 + t * t / 10, -5.5) / std::sqrt(pi * 10) * std::sqrt(10.0);
    EXPECT_EQ(partialPValue(0.5, 10, 3.1415927f), expected);
    EXPECT_NE(expected, std::pow(1 + t * t / 10, -5.5) / std::sqrt(M_PI * 10) * std::sqrt(10.0));
}

TEST_F(CorrelationFixture, TheReportStandsInItsColumns) {
    const auto y = file("rain.dat", {0, 2, 1, 4, 3, 0.5, -999, 6});
    const auto x1 = file("mslp.dat", {1, 2, 2, 5, 3, 1, 4, 7});
    const auto x2 = file("shum.dat", {5, 3, 4, 2, 1, 4, 2, 1});
    ScreeningRequest asked;
    asked.predictandPath = y;
    asked.predictorPaths = {x1, x2};
    asked.fitStart = {1, 1, 1961};
    asked.fitEnd = {8, 1, 1961};
    asked.conditional = true;
    const auto data = assembleScreeningData(asked, state, progress);
    const auto result = correlate(data, true, state);
    const auto report = correlationReport(data, result, {"1/1/1961", "08/01/1961", "Annual"}, true);
    const std::vector<std::string> expected = {
        "",
        "",
        "",
        "",
        "Predictand: rain.dat",
        "Predictors: mslp.dat",
        "            shum.dat",
        "",
        "CORRELATION MATRIX",
        "",
        "Analysis Period: 1/1/1961 - 08/01/1961 (Annual)",
        "",
        "Missing values: 1",
        "Missing rows: 1",
        "Values less than or equal to threshold: 1",
        "",
        "                        1       2       3 ",
        " 1   rain.dat          1       " + core::formatPattern(result.r[0][1], "0.000") + "   " +
            core::formatPattern(result.r[0][2], "0.000"),
        " 2   mslp.dat          " + core::formatPattern(result.r[1][0], "0.000") + "   1       " +
            core::formatPattern(result.r[1][2], "0.000"),
        " 3   shum.dat          " + core::formatPattern(result.r[2][0], "0.000") + "  " +
            core::formatPattern(result.r[2][1], "0.000") + "  1",
        "",
        "",
        "PARTIAL CORRELATIONS WITH rain.dat",
        "",
        "                       Partial r   P value",
        "mslp.dat               " + core::formatPattern(result.partial[0], "0.000") + "       " +
            core::formatPattern(result.pValue[0], "0.0000"),
        "shum.dat               " + core::formatPattern(result.partial[1], "0.000") + "      " +
            core::formatPattern(result.pValue[1], "0.0000"),
    };
    EXPECT_EQ(report.lines, expected);
    EXPECT_LT(result.r[2][0], 0.0); // the layout above holds a minus sign in that column
    EXPECT_GT(result.partial[0], 0.0);
    EXPECT_LT(result.partial[1], 0.0);
}

TEST_F(CorrelationFixture, OnePredictorHasNoPartials) {
    ScreeningRequest asked;
    asked.predictandPath = file("y.dat", {1, 2, 3, 5});
    asked.predictorPaths = {file("x.dat", {2, 1, 4, 3})};
    asked.fitStart = {1, 1, 1961};
    asked.fitEnd = {4, 1, 1961};
    const auto data = assembleScreeningData(asked, state, progress);
    const auto result = correlate(data, false, state);
    EXPECT_TRUE(result.partial.empty());
    const auto report = correlationReport(data, result, {"a", "b", "Annual"}, false);
    EXPECT_EQ(report.lines.back(), "NO PARTIAL CORRELATIONS TO CALCULATE");
    for (const auto& line : report.lines) {
        EXPECT_EQ(line.find("threshold"), std::string::npos);
    }
}

TEST_F(CorrelationFixture, ASeriesWithoutSpreadCannotBeDividedOut) {
    ScreeningRequest asked;
    asked.predictandPath = file("y.dat", {1, 2, 3, 5});
    asked.predictorPaths = {file("flat.dat", {2, 2, 2, 2})};
    asked.fitStart = {1, 1, 1961};
    asked.fitEnd = {4, 1, 1961};
    const auto data = assembleScreeningData(asked, state, progress);
    try {
        correlate(data, false, state);
        FAIL();
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), core::failure::DivisionByZero);
        EXPECT_NE(failure.description().find("'flat.dat' does not vary"), std::string::npos);
    }
}
