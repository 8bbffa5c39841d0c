#include "engine_support.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

using namespace varo;
using namespace varo::statistics;
using namespace varo::testing;

namespace {

ResultTable compute(MemberRows rows, const EngineSettings& settings) {
    core::NullProgress progress;
    return memberStatistics(rows, settings, progress);
}

} // namespace

TEST(FirstPass, MissingForInactiveRowsAllDryRowsAndMaximaBelowTheStart) {
    const auto inactive =
        compute(rowsWith({{1, {Missing, Missing, BE, RE}}}),
                settingsFor({column::Mean, column::Sum, column::Median, column::Acf,
                             column::MaxNTot, column::WetSpell, column::Variance}));
    for (int c = 1; c <= StatisticCount; ++c) {
        EXPECT_EQ(inactive[1][c], Missing) << c;
    }
    EXPECT_EQ(inactive[2][column::Mean], Missing); // a row without any day

    // Under the wet filter an all-dry row counts 0 days and has no values.
    const auto dry = compute(rowsWith({{1, {0.0, 0.0, BE, RE}}}),
                             settingsFor({column::WetDaysPercent, column::Median, column::Pop,
                                          column::MinRange, column::MaxRange}));
    EXPECT_EQ(dry[1][column::Count], 0.0);
    EXPECT_EQ(dry[1][column::WetDaysPercent], 0.0);
    for (const int c : {column::Mean, column::Maximum, column::Median, column::Pop,
                        column::MaxRange, column::MinRange}) {
        EXPECT_EQ(dry[1][c], Missing) << c;
    }

    // Values below the starting maximum of -999999 never move it.
    const auto low = compute(rowsWith({{1, {-2000000.0, -3000000.0, BE, RE}}}),
                             settingsFor({column::Mean, column::Maximum, column::Minimum}));
    EXPECT_EQ(low[1][column::Maximum], Missing);
    EXPECT_EQ(low[1][column::Minimum], -3000000.0);
    EXPECT_EQ(low[1][column::Mean], -2500000.0);
}

TEST(FirstPass, WetFilterTurnsEveryStatisticIntoAWetDayStatisticAndRangesGoByBlock) {
    const std::vector<double> list = {0.0, 0.0, 4.0, 2.0, Missing, BE, RE};
    const auto plain = compute(rowsWith({{1, list}}), settingsFor({column::Mean, column::Count}));
    EXPECT_DOUBLE_EQ(plain[1][column::Mean], 1.5);
    EXPECT_EQ(plain[1][column::Count], 4.0);
    EXPECT_EQ(plain[1][column::Minimum], 0.0);

    const auto wet = compute(rowsWith({{1, list}}),
                             settingsFor({column::Mean, column::Count, column::WetDaysPercent}));
    EXPECT_DOUBLE_EQ(wet[1][column::Mean], 3.0);
    EXPECT_EQ(wet[1][column::Count], 2.0);
    EXPECT_EQ(wet[1][column::Minimum], 2.0);
    EXPECT_DOUBLE_EQ(wet[1][column::WetDaysPercent], 0.5); // a fraction, not a percentage

    // The range statistics alone do not set the filter.
    const auto ranges =
        compute(rowsWith({{1, list}}), settingsFor({column::Mean, column::MaxRange}));
    EXPECT_DOUBLE_EQ(ranges[1][column::Mean], 1.5);
    // Ranges are taken per block and skip empty blocks.
    const auto perBlock = compute(rowsWith({{1, {1.0, 5.0, BE, Missing, BE, 2.0, 2.0, BE, RE}}}),
                                  settingsFor({column::MaxRange, column::MinRange}));
    EXPECT_EQ(perBlock[1][column::MaxRange], 4.0);
    EXPECT_EQ(perBlock[1][column::MinRange], 0.0);
}

TEST(FirstPass, PeakThresholdsCompareInSinglePrecision) {
    // 0.1000000015 lies above 0.1f as a double but rounds to 0.1f.
    auto plain = settingsFor({column::Pot, column::Pbt});
    plain.peaksOverThreshold = 0.1f;
    plain.peaksBelowThreshold = 0.1f;
    const auto p = compute(rowsWith({{1, {0.1000000015, 0.2, 0.05, BE, RE}}}), plain);
    EXPECT_EQ(p[1][column::Pot], 2.0); // at or above
    EXPECT_EQ(p[1][column::Pbt], 2.0); // at or below
}

TEST(Moments, PopulationVarianceAndSkewness) {
    const auto settings = settingsFor({column::Variance, column::Skewness});
    const auto t = compute(
        rowsWith({{1, {1.0, 2.0, BE, 10.0, BE, RE}}, {2, {3.0, 3.0, 3.0, BE, RE}}}), settings);
    EXPECT_NEAR(t[1][column::Variance], 16.222222222222222, 1e-12);
    EXPECT_NEAR(t[1][column::Skewness], 0.6745554845457661, 1e-12);
    EXPECT_EQ(t[2][column::Variance], 0.0);
    EXPECT_EQ(t[2][column::Skewness], 0.0);
    // With the wet filter and no wet day both are 0, not missing.
    const auto dry = compute(rowsWith({{1, {0.0, 0.0, BE, RE}}}),
                             settingsFor({column::Variance, column::WetSpell}));
    EXPECT_EQ(dry[1][column::Variance], 0.0);
}

TEST(MaxNTot, WindowsNeverCrossABlockEndAndNegativeOrShortRowsGiveZero) {
    auto settings = settingsFor({column::MaxNTot});
    settings.nDayTotal = 2;
    // 9 + 9 would cross the block end.
    const auto t = compute(rowsWith({{1, {1.0, 1.0, 9.0, BE, 9.0, 1.0, 1.0, BE, RE}}}), settings);
    EXPECT_EQ(t[1][column::MaxNTot], 10.0);

    settings.selected[column::Mean] = true;
    settings.nDayTotal = 3;
    const auto u = compute(rowsWith({{1, {5.0, Missing, 5.0, BE, RE}},
                                     {2, {7.0, BE, RE}},
                                     {3, {-1.0, -2.0, -3.0, -4.0, BE, RE}},
                                     {4, {4.0, 4.0, BE, 4.0, 4.0, BE, RE}}}),
                           settings);
    EXPECT_EQ(u[1][column::MaxNTot], 10.0); // missing adds nothing
    EXPECT_EQ(u[2][column::MaxNTot], 0.0);  // RowLength 3 = N, no window
    EXPECT_EQ(u[3][column::MaxNTot], 0.0);  // the best starts at 0
    EXPECT_EQ(u[4][column::MaxNTot], 0.0);  // every block shorter than N
    // The wet filter does not apply.
    settings.selected[column::WetSpell] = true;
    const auto wet = compute(rowsWith({{1, {0.5, -1.0, 3.0, BE, RE}}}), settings);
    EXPECT_EQ(wet[1][column::MaxNTot], 2.5);
}

TEST(MaxNTot, SlidingWindowAgreesWithDirectTotalsOnALongRow) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> amount(0.0, 30.0);
    std::vector<double> list;
    for (int block = 0; block < 40; ++block) {
        for (int day = 0; day < 28 + block % 4; ++day) {
            list.push_back(day % 11 == 3 ? Missing : std::round(amount(random) * 1000) / 1000);
        }
        list.push_back(BE);
    }
    list.push_back(RE);
    double best = 0.0;
    for (size_t i = 0; i + 7 < list.size(); ++i) {
        double total = 0.0;
        bool valid = true;
        for (size_t j = i; j < i + 7; ++j) {
            valid = valid && list[j] != BE && list[j] != RE;
            total += list[j] == Missing ? 0.0 : list[j];
        }
        best = valid ? std::max(best, total) : best;
    }
    auto settings = settingsFor({column::MaxNTot});
    settings.nDayTotal = 7;
    EXPECT_NEAR(compute(rowsWith({{1, list}}), settings)[1][column::MaxNTot], best, 1e-9);
}

TEST(Autocorrelation, PairsOfNeighbouringRealValuesWithinABlock) {
    const auto settings = settingsFor({column::Acf});
    const auto t = compute(rowsWith({{1, {1.0, 3.0, Missing, 2.0, 1.0, BE, 4.0, 0.0, BE, RE}},
                                     {2, {1.0, 2.0, 3.0, BE, RE}},
                                     {3, {5.0, 5.0, 5.0, 5.0, BE, RE}}}),
                           settings);
    EXPECT_NEAR(t[1][column::Acf], -0.9285714285714286, 1e-12);
    EXPECT_EQ(t[2][column::Acf], Missing); // two pairs only
    EXPECT_EQ(t[3][column::Acf], 1.0);     // no spread: the root is 0
}

TEST(Spells, ABlockEndOrAMissingDayClosesASpellAndMediansFollowTheCount) {
    const auto t = compute(
        rowsWith({{1, {1.0, 1.0, BE, 1.0, 0.0, 0.0, BE, RE}}}),
        settingsFor({column::WetSpell, column::DrySpell, column::MaxWetSpell, column::SdWetSpell,
                     column::WetPersis, column::DryPersis, column::PersisCorr}));
    EXPECT_DOUBLE_EQ(t[1][column::WetSpell], 1.5); // spells of 2 and 1, not one of 3
    EXPECT_EQ(t[1][column::MaxWetSpell], 2.0);
    EXPECT_DOUBLE_EQ(t[1][column::SdWetSpell], 0.5);
    EXPECT_EQ(t[1][column::DrySpell], 2.0);
    EXPECT_DOUBLE_EQ(t[1][column::WetPersis], 2.0 / 3.0);
    EXPECT_EQ(t[1][column::DryPersis], 1.0);
    EXPECT_DOUBLE_EQ(t[1][column::PersisCorr], 2.0 / 3.0);

    // A missing day splits a wet spell, and medians follow the count.
    const auto u = compute(
        rowsWith({{1, {1.0, 1.0, Missing, 1.0, 1.0, 1.0, 0.0, BE, RE}},
                  {2, {Missing, 1.0, BE, 3.0, 0.0, 2.0, 2.0, 0.0, 4.0, 4.0, 4.0, BE, RE}}}),
        settingsFor({column::WetSpell, column::MedWet, column::MedDry, column::PersisCorr}));
    EXPECT_DOUBLE_EQ(u[1][column::WetSpell], 2.5);
    EXPECT_DOUBLE_EQ(u[1][column::MedWet], 2.5); // even count: mean of the middle two
    EXPECT_EQ(u[1][column::MedDry], 1.0);        // one spell: its length
    // A leading missing value leaves the first class open; wet spells 1, 1, 2, 3.
    EXPECT_DOUBLE_EQ(u[2][column::WetSpell], 7.0 / 4.0);
    EXPECT_DOUBLE_EQ(u[2][column::MedWet], 1.5);
    // Dry spells all of length 1: no dry persistence, so no correlation.
    EXPECT_EQ(u[2][column::DryPersis], 0.0);
    EXPECT_EQ(u[2][column::PersisCorr], Missing);
    const auto odd = compute(rowsWith({{1, {1.0, 0.0, 1.0, 1.0, 1.0, 0.0, 1.0, 1.0, BE, RE}}}),
                             settingsFor({column::MedWet}));
    EXPECT_EQ(odd[1][column::MedWet], 2.0); // spells 1, 3, 2
    const auto none = compute(rowsWith({{1, {0.0, 0.0, BE, RE}}}), settingsFor({column::MedWet}));
    EXPECT_EQ(none[1][column::MedWet], Missing);
    EXPECT_EQ(none[1][column::WetSpell], 0.0); // an empty list gives 0
}

TEST(Percentiles, ByTheInterpolationRuleOverCountedValuesAndPopByTheYearsLevel) {
    std::vector<double> list = {10.0, 3.0, 7.0, 1.0, Missing, 5.0, 2.0,
                                BE,   9.0, 4.0, 8.0, 6.0,     BE,  RE};
    auto settings = settingsFor({column::Median, column::Percentile, column::Iqr});
    const auto t = compute(rowsWith({{1, list}, {2, {4.5, BE, RE}}}), settings);
    EXPECT_DOUBLE_EQ(t[1][column::Percentile], 9.55);
    EXPECT_DOUBLE_EQ(t[1][column::Median], 5.5);
    EXPECT_DOUBLE_EQ(t[1][column::Iqr], 4.5);
    EXPECT_EQ(t[2][column::Percentile], 4.5);
    EXPECT_EQ(t[2][column::Median], 4.5);
    EXPECT_EQ(t[2][column::Iqr], 0.0);
    settings.percentile = 100.0f;
    EXPECT_EQ(compute(rowsWith({{1, list}}), settings)[1][column::Percentile], 10.0);

    // POP counts values above the level of the year's values.
    settings = settingsFor({column::Pop, column::PopTot});
    settings.potPercentile = 50.0f;
    // The year's list is given unsorted; its level is 6.5 once sorted.
    const auto pop = compute(rowsWith({{1, {3.0, 1.0, 2.0, BE, RE}},
                                       {7, {30.0, 10.0, 20.0, BE, RE}},
                                       {17, {3.0, 1.0, 2.0, BE, 30.0, 0.0, 10.0, 20.0, BE, RE}}}),
                             settings);
    EXPECT_EQ(pop[1][column::Pop], 0.0);
    EXPECT_EQ(pop[1][column::PopTot], 0.0);
    EXPECT_EQ(pop[7][column::Pop], 3.0);
    EXPECT_EQ(pop[7][column::PopTot], 1.0);
    EXPECT_EQ(pop[17][column::Pop], 3.0);
    EXPECT_DOUBLE_EQ(pop[17][column::PopTot], 60.0 / 66.0);
}

TEST(Sums, MeanTotalPerBlockFromTheLargestBlockCount) {
    ResultTable table = filledTable(0.0);
    table[1][column::Sum] = 90.0;
    table[2][column::Sum] = Missing; // an inactive row stays missing
    table[3][column::Sum] = 5.0;
    std::array<int, CalendarRowCount + 1> counts{};
    counts[1] = 3;
    counts[2] = 2;
    counts[3] = 0;
    finishSums(table, counts, Missing);
    EXPECT_EQ(table[1][column::Sum], 30.0);
    EXPECT_EQ(table[2][column::Sum], Missing);
    EXPECT_EQ(table[3][column::Sum], Missing);
}

TEST(ShellSort, SortsEveryLengthAroundTheGapBoundaries) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-50.0, 50.0);
    for (size_t n : {0u, 1u, 2u, 9u, 10u, 36u, 37u, 38u, 117u, 118u, 500u}) {
        std::vector<double> values(n);
        for (double& v : values) {
            v = std::round(value(random));
        }
        std::vector<double> expected = values;
        std::sort(expected.begin(), expected.end());
        shellSort(values.data(), values.size());
        EXPECT_EQ(values, expected) << n;
    }
}

namespace {
statistics::EngineSettings everyPass() {
    return settingsFor({column::Mean, column::Variance, column::MaxNTot, column::Acf,
                        column::WetSpell, column::Median});
}
} // namespace

TEST(Passes, CaptionsInPassOrder) {
    const auto settings = everyPass();
    RecordingProgress progress;
    auto rows = rowsWith({{1, {1.0, 2.0, 3.0, 4.0, BE, RE}}});
    memberStatistics(rows, settings, progress);
    const std::vector<std::string> expected = {"Calculating Statistics - Please Wait",
                                               "Calculating Moments - Please Wait",
                                               "Calculating N Day Total - Please Wait",
                                               "Calculating Autocorrelation Function - Please Wait",
                                               "Calculating Precipitation Statistics - Please Wait",
                                               "Calculating Median and Percentiles - Please Wait"};
    EXPECT_EQ(progress.captions, expected);
}

TEST(Passes, AStopRequestCancelsTheRun) {
    const auto settings = everyPass();
    RecordingProgress stopping(20);
    auto again = rowsWith({{1, {1.0, 2.0, BE, RE}}});
    EXPECT_THROW(memberStatistics(again, settings, stopping), core::Cancelled);
}
