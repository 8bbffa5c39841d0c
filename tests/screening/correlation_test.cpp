#include "screening/correlation.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "screening_fixture.hpp"
#include "support/failure_checks.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>

using namespace varo;
using namespace varo::screening;
using CorrelationFixture = varo::testing::ScreeningFixture;

namespace {

nlohmann::json reference() {
    std::ifstream file(varo::testing::ScreeningData + "reference.json");
    return nlohmann::json::parse(file);
}

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
    auto asked = request(y, {x1, x2}, 8);
    asked.conditional = true;
    const auto data = assembleScreeningData(asked, state, progress);
    const auto result = correlate(data, true, state);
    const auto tables = correlationTables(data, result);
    const auto report = correlationReport(data, tables, {"1/1/1961", "08/01/1961", "Annual"}, true);
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
    // The tables the report is written from: the matrix by series, the partials by predictor.
    EXPECT_EQ(tables.matrix.columns, data.names);
    EXPECT_EQ(tables.matrix.rows.at(2).cells.at(0).value, result.r[2][0]);
    ASSERT_TRUE(tables.partials.has_value());
    EXPECT_EQ(tables.partials->rows.at(1).label, "shum.dat");
    EXPECT_EQ(tables.partials->rows.at(1).cells.at(1).value, result.pValue[1]);
}

TEST_F(CorrelationFixture, OnePredictorHasNoPartials) {
    const auto y = file("y.dat", {1, 2, 3, 5});
    const auto data =
        assembleScreeningData(request(y, {file("x.dat", {2, 1, 4, 3})}, 4), state, progress);
    const auto result = correlate(data, false, state);
    EXPECT_TRUE(result.partial.empty());
    const auto tables = correlationTables(data, result);
    EXPECT_FALSE(tables.partials.has_value());
    const auto report = correlationReport(data, tables, {"a", "b", "Annual"}, false);
    EXPECT_EQ(report.lines.back(), "NO PARTIAL CORRELATIONS TO CALCULATE");
    for (const auto& line : report.lines) {
        EXPECT_EQ(line.find("threshold"), std::string::npos);
    }
}

TEST_F(CorrelationFixture, APredictorWithoutSpreadCannotBeDividedOut) {
    const auto y = file("y.dat", {1, 2, 3, 5});
    const auto flat =
        assembleScreeningData(request(y, {file("flat.dat", {2, 2, 2, 2})}, 4), state, progress);
    EXPECT_TRUE(varo::testing::failsWith([&] { correlate(flat, false, state); },
                                         core::failure::DivisionByZero,
                                         "'flat.dat' does not vary"));
}

TEST_F(CorrelationFixture, NoRowCountsWhenAFileIsMissingThroughoutAndItIsNamed) {
    const auto y = file("y.dat", {1, 2, 3, 5});
    const auto data = assembleScreeningData(
        request(y, {file("gaps.dat", {-999, -999, -999, -999}), file("x.dat", {2, 1, 4, 3})}, 4),
        state, progress);
    EXPECT_TRUE(varo::testing::failsWith(
        [&] { correlate(data, false, state); }, core::failure::DivisionByZero,
        "Only 0 rows of the analysis period count, too few to correlate. 'gaps.dat' holds only "
        "the missing value code -999 in the analysis period."));
}
