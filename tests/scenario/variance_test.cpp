// The variance treatment against tests/data/scenario/make_variance_reference.py, which
// computes the same rules with numpy, and the lamda search's edge cases.
#include "core/failure.hpp"
#include "scenario/variance.hpp"
#include "scenario_test_support.hpp"
#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"
#include "support/reference_lines.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo;
using varo::testing::stopMessage;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/scenario";

scenario::ScenarioData referenceInput() {
    core::NullProgress progress;
    return scenario::readScenarioData(Data + "/variance_input.OUT", 3, progress);
}

} // namespace

// Lamda, transformed mean and inflation factor of each member, and every value after the
// treatment, for three conditional changes (up, down, and past what the bisection's upper
// bound reaches for no member) and an unconditional one.
TEST(VarianceTreatment, AgreesWithTheIndependentComputation) {
    const auto reference = varo::testing::referenceLines(Data + "/variance_reference.txt");
    const auto& cases = reference.at("case");
    const auto& values = reference.at("values");
    ASSERT_EQ(cases.size(), 12u);
    for (size_t first = 0; first < cases.size(); first += 3) {
        const double change = cases[first][0];
        const bool conditional = cases[first][1] == 1.0;
        const scenario::SeriesScope scope{0.0, -999.0, conditional};
        scenario::ScenarioData data = referenceInput();
        const auto statistics = scenario::memberStatistics(data, scope);
        const float factor = (static_cast<float>(change) + 100.0f) / 100.0f;
        std::vector<scenario::InflationResult> inflations;
        core::NullProgress progress;
        const auto lamda =
            scenario::applyVariance(data, factor, statistics, scope, progress, &inflations);
        ASSERT_EQ(inflations.size(), conditional ? 3u : 0u);
        for (size_t m = 0; m < 3; ++m) {
            const auto& expected = cases[first + m];
            SCOPED_TRACE("change " + std::to_string(change) + " member " + std::to_string(m + 1));
            if (conditional) {
                EXPECT_NEAR(inflations[m].lamda, expected[3], 1e-12);
                EXPECT_NEAR(inflations[m].transformedMean, expected[4], 1e-12);
                EXPECT_NEAR(inflations[m].factor, expected[5], 1e-12);
            } else {
                EXPECT_NEAR(statistics[m].mean, expected[4], 1e-12);
            }
            const auto& after = data.members[m];
            ASSERT_EQ(after.size(), values[first + m].size());
            for (size_t d = 0; d < after.size(); ++d) {
                ASSERT_NEAR(after[d], values[first + m][d], 1e-9 * (1 + std::abs(after[d])))
                    << "day " << d + 1;
            }
        }
        if (conditional) {
            EXPECT_EQ(lamda, inflations.back().lamda);
        } else {
            EXPECT_FALSE(lamda);
        }
    }
}

// Stretched by the square root of the factor about the mean of the values before; missing
// values stay. The mean of the member does not move.
TEST(VarianceTreatment, UnconditionalStretchesAboutTheMean) {
    auto data = varo::testing::scenarioOf({{1.0, 2.0, -999.0, 3.0, 6.0}});
    const scenario::SeriesScope scope{0.0, -999.0, false};
    const auto statistics = scenario::memberStatistics(data, scope);
    EXPECT_DOUBLE_EQ(statistics[0].mean, 3.0);
    EXPECT_DOUBLE_EQ(statistics[0].sd, std::sqrt(3.5)); // divisor n, not n - 1
    core::NullProgress progress;
    scenario::applyVariance(data, 4.0f, statistics, scope, progress);
    EXPECT_EQ(data.members[0], (std::vector<double>{-1.0, 1.0, -999.0, 3.0, 9.0}));

    auto negative = varo::testing::scenarioOf({{1.0, 2.0}});
    EXPECT_TRUE(varo::testing::failsWith(
        [&] { scenario::applyVariance(negative, -0.5f, statistics, scope, progress); },
        core::failure::Overflow, "below 0"));
}

TEST(MemberStatistics, CountOnlyWetValuesOfAConditionalSeriesAndMissingWhenNone) {
    const auto data = varo::testing::scenarioOf({{0.0, 2.0, 4.0, -999.0}, {0.0, 0.0, 0.0, 0.0}});
    const auto statistics = scenario::memberStatistics(data, {0.0, -999.0, true});
    EXPECT_DOUBLE_EQ(statistics[0].mean, 3.0);
    EXPECT_DOUBLE_EQ(statistics[0].sd, 1.0);
    EXPECT_EQ(statistics[1].mean, -999.0);
    EXPECT_EQ(statistics[1].sd, -999.0);
}

// Eleven values are enough to score, ten are not; a lamda of exactly 0 is the logarithm.
// The logarithms of these values are -4 .. 4 with three zeros, so at lamda 0 the mean (0)
// equals the median, the 5th of 11 (ranks from 1, the element below the middle), and the
// score is exactly 0. The second search's grid, summed from -0.25 by 0.05, misses 0.
TEST(LamdaSearch, ScoresElevenValuesOrMoreAndTakesTheLogarithmAtZero) {
    const scenario::SeriesScope scope{0.0, -999.0, true};
    std::vector<double> values{0.0}; // not wet: neither counted nor scored
    for (const int k : {4, 3, 2, 1}) {
        values.push_back(std::ldexp(1.0, -k));
        values.push_back(std::ldexp(1.0, k));
    }
    values.insert(values.end(), {1.0, 1.0, 1.0});
    EXPECT_EQ(scenario::searchLamda(values, scope, -2.0, 2.0, 0.25), 0.0);
    const auto second = scenario::searchLamda(values, scope, -0.25, 0.25, 0.05);
    ASSERT_TRUE(second);
    EXPECT_NE(*second, 0.0);
    EXPECT_LT(std::abs(*second), 0.06);

    values.pop_back();
    EXPECT_EQ(scenario::searchLamda(values, scope, -2.0, 2.0, 0.25), std::nullopt);
    EXPECT_EQ(stopMessage([&] { scenario::optimumLamda(values, scope); }),
              scenario::LamdaFailureMessage);
    EXPECT_EQ(scenario::searchLamda(std::vector<double>(20, 3.0), scope, -2.0, 2.0, 0.25),
              std::nullopt);
}

TEST(LamdaSearch, NegativeWetValuesHaveNoPower) {
    const scenario::SeriesScope scope{-5.0, -999.0, true};
    std::vector<double> values(20, 2.0);
    values[4] = -1.5;
    EXPECT_TRUE(varo::testing::failsWith([&] { scenario::optimumLamda(values, scope, 4); },
                                         core::failure::Overflow,
                                         "The wet value -1.5 of member 4 is below 0"));
}

// Fewer than eleven wet values in a member stop the whole treatment, with nothing changed
// in the member; the captions follow the phases.
TEST(VarianceTreatment, ConditionalMemberWithTooFewWetValuesStops) {
    std::vector<double> wet;
    for (int k = 1; k <= 40; ++k) {
        wet.push_back(k % 3 == 0 ? 0.0 : 1.0 + k * 0.37);
    }
    auto data = varo::testing::scenarioOf({wet, std::vector<double>(40, 0.0)});
    data.members[1][0] = 2.0;
    const scenario::SeriesScope scope{0.0, -999.0, true};
    const auto statistics = scenario::memberStatistics(data, scope);
    varo::testing::RecordingProgress progress;
    EXPECT_EQ(
        stopMessage([&] { scenario::applyVariance(data, 1.5f, statistics, scope, progress); }),
        scenario::LamdaFailureMessage);
    EXPECT_EQ(progress.captions,
              (std::vector<std::string>{"Applying Variance", "Calculating Lamda for Transform",
                                        "Calculating Appropriate Inflation Factor",
                                        "Applying Variance", "Calculating Lamda for Transform"}));
    EXPECT_EQ(data.members[1][0], 2.0);
}
