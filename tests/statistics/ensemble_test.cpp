#include "statistics/ensemble.hpp"

#include "engine_support.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo::statistics;
using varo::testing::Missing;

TEST(EnsembleMean, MeanAndPopulationDeviationOverMembersWithAValue) {
    std::vector<ResultTable> tables(3, filledTable(Missing));
    tables[0][1][column::Mean] = 1.0;
    tables[1][1][column::Mean] = 3.0;
    tables[2][1][column::Mean] = Missing; // left out, not counted as -999
    tables[0][2][column::Sum] = 2.0;
    tables[1][2][column::Sum] = 4.0;
    tables[2][2][column::Sum] = 9.0;
    const PeriodResults results = ensembleMean(tables, Missing);
    ASSERT_TRUE(results.deviations);
    EXPECT_EQ(results.values[1][column::Mean], 2.0);
    EXPECT_EQ((*results.deviations)[1][column::Mean], 1.0);
    EXPECT_EQ(results.values[2][column::Sum], 5.0);
    EXPECT_NEAR((*results.deviations)[2][column::Sum], std::sqrt(26.0 / 3.0), 1e-12);
    EXPECT_EQ(results.values[3][column::Mean], Missing);
    EXPECT_EQ((*results.deviations)[3][column::Mean], Missing);
}
