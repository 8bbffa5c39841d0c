#include "screening/explained_variance.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "screening_fixture.hpp"
#include "support/failure_checks.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

using namespace varo;
using namespace varo::screening;
using VarianceFixture = varo::testing::ScreeningFixture;

TEST_F(VarianceFixture, RSquaredByMonthAgreesWithNumpy) {
    std::ifstream file(varo::testing::ScreeningData + "reference.json");
    const auto expected = nlohmann::json::parse(file)["variance"];
    auto asked = referenceRequest();
    asked.autoregression = true;
    const auto result = explainVariance(asked, state, progress);
    ASSERT_EQ(result.cells.size(), 4u);
    EXPECT_EQ(result.names.back(), "Autoregression");
    for (size_t i = 0; i < 4; ++i) {
        for (size_t m = 0; m < 12; ++m) {
            const auto& cell = result.cells[i][m];
            const auto& want = expected[i][m];
            EXPECT_EQ(cell.n, want["n"].get<long>()) << i << " " << m;
            EXPECT_NEAR(cell.rSquared, want["rSquared"].get<double>(), 1e-11) << i << " " << m;
            EXPECT_NEAR(cell.t, want["t"].get<double>(), 1e-8) << i << " " << m;
            EXPECT_NEAR(cell.p, want["p"].get<double>(), 1e-9 * want["p"].get<double>() + 1e-300)
                << i << " " << m;
        }
    }
    // 36 month changes, each closing its month with a row for each of the four files.
    EXPECT_EQ(result.separators, 36 * 4);
    EXPECT_EQ(result.rowsPerMonth, 91 + 200);
}

TEST(VarianceCell, ConstantPredictorAndPerfectFit) {
    // A = N sumX2 - sumX^2 = 0 for a constant predictor.
    const auto flat = varianceCell(5, 0, 10, 20, 30, 15, 55, 3.1415927f);
    EXPECT_EQ(flat.r, 0.0);
    EXPECT_EQ(flat.rSquared, 0.0);
    EXPECT_EQ(flat.t, 0.0);
    // x = y = 1..5
    const auto perfect = varianceCell(5, 0, 15, 55, 55, 15, 55, 3.1415927f);
    EXPECT_DOUBLE_EQ(perfect.rSquared, 1.0);
    EXPECT_EQ(perfect.t, 10001.0);
    EXPECT_TRUE(isSignificant(perfect, 1e-6f));
    // With fewer than two pairs nothing can be tested.
    const auto empty = varianceCell(3, 3, 0, 0, 0, 0, 0, 3.1415927f);
    EXPECT_EQ(empty.n, 0);
    EXPECT_EQ(empty.p, 1.0);
}

TEST_F(VarianceFixture, ConditionalProcessExplainsOccurrence) {
    // Amounts vary, but a predictor that is 1 on wet days explains occurrence fully.
    std::vector<double> amounts;
    std::vector<double> wet;
    for (int day = 0; day < 31; ++day) {
        const bool rains = day % 3 == 0;
        amounts.push_back(rains ? 1.0 + day : 0.0);
        wet.push_back(rains ? 1.0 : 0.0);
    }
    auto asked = request(file("y.dat", amounts), {file("x.dat", wet)}, 31);
    const auto amount = explainVariance(asked, state, progress);
    EXPECT_LT(amount.cells[0][0].rSquared, 0.999);
    asked.conditional = true;
    const auto occurrence = explainVariance(asked, state, progress);
    EXPECT_DOUBLE_EQ(occurrence.cells[0][0].rSquared, 1.0);
    EXPECT_EQ(occurrence.cells[0][0].n, 31);
    EXPECT_EQ(occurrence.cells[0][0].missing, 1); // the separator closing January
    EXPECT_EQ(occurrence.reportedMissing(), 1 - 2);
}

TEST_F(VarianceFixture, TheLagPairNeverCrossesTheSeparator) {
    // January 1961 and January 1962: the lag of 1 January 1962 would be 31 January 1961
    // without the separator; y is x's lag within each stretch, and is broken across it.
    std::vector<double> y;
    for (int day = 0; day < 396; ++day) {
        y.push_back((day * 7919) % 101);
    }
    auto asked = request(file("y.dat", y), {file("x.dat", y)}, 396);
    asked.autoregression = true;
    const auto result = explainVariance(asked, state, progress);
    // January: 31 + 1 separator + 31 + 1 separator rows, pairs within each stretch.
    EXPECT_EQ(result.cells[1][0].n, 30 + 30);
    EXPECT_EQ(result.cells[0][0].n, 62);
    EXPECT_DOUBLE_EQ(result.cells[0][0].rSquared, 1.0);
}

TEST_F(VarianceFixture, TheReportMarksTheBestAndLeavesInsignificantPlacesEmpty) {
    ExplainedVariance result;
    result.predictandName = "rain.dat";
    result.names = {"mslp.dat", "shum.dat"};
    result.cells.resize(2);
    result.totalMissing = 30;
    result.separators = 24;
    result.cells[0][0] = {90, 0, 0.5, 0.25, 5.0, 0.001, true};
    result.cells[1][0] = {90, 0, 0.3, 0.09, 3.0, 0.01, false};
    result.cells[1][11] = {90, 0, 0.9, 0.81, 20.0, 0.0, true};
    result.cells[0][11] = {90, 0, 0.2, 0.04, 2.0, 0.0500001, false};
    const auto table = varianceTable(result, 0.05f);
    const auto report = varianceReport(result, table, {"01/01/1961", "31/12/1990", "0.05"});
    const std::vector<std::string> expected = {
        "   RESULTS: EXPLAINED VARIANCE",
        "   Analysis Period: 01/01/1961 - 31/12/1990",
        "   Significance level: 0.05",
        "   Total missing values: 6",
        "   Predictand: rain.dat",
        "   Predictors:         JAN     FEB     MAR     APR     MAY     JUN     JUL     AUG"
        "     SEP     OCT     NOV     DEC",
        "   mslp.dat            0.250*",
        "   shum.dat            0.090" + std::string(111 - 28, ' ') + "0.810*",
    };
    EXPECT_EQ(report.lines, expected);
    EXPECT_EQ(report.highlights, (std::vector<Highlight>{{6, 23, 5}, {7, 111, 5}}));
    // A month just above the level is missing from the table; every statistic of it stands
    // in the table of that statistic.
    EXPECT_FALSE(table.rows[0].cells[11].value.has_value());
    EXPECT_TRUE(table.rows[1].cells[11].highlighted);
    EXPECT_EQ(varianceStatisticTable(result, "p").rows[0].cells[11].value, 0.0500001);
    EXPECT_EQ(varianceStatisticTable(result, "n").rows[1].cells[0].value, 90.0);
}

TEST_F(VarianceFixture, AMonthOutgrowingItsRowsFails) {
    // 150 years: January holds 150 * 31 days and 150 separators, more than 54787 / 12 + 200.
    state.globalSDate = {1, 1, 1850};
    std::vector<double> values(54787, 1.0);
    const auto y = file("y.dat", values);
    auto asked = request(y, {y}, 1, {1, 1, 1850});
    asked.fitEnd = {31, 12, 1999};
    EXPECT_TRUE(varo::testing::failsWith([&] { explainVariance(asked, state, progress); },
                                         core::failure::FileTooLarge));
}
