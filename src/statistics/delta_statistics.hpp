// Changes of the statistics of a later period against the base period, and the t test of
// the change of the mean.
#pragma once

#include "statistics/statistic_columns.hpp"

#include <array>

namespace varo::statistics {

inline constexpr int PercentageDelta = 1;
inline constexpr int AbsoluteDelta = 2;

// For each flagged statistic and row, with b the base value and v the period's:
// percentage: (v - b) / b * 100 when b is at least 0.005 away from 0 (a small base gives
// no delta, not only zero); absolute: v - b. The missing code when either value is
// missing or the base too small. Columns not flagged hold the missing code.
ResultTable deltaTable(const ResultTable& base, const ResultTable& period,
                       const Selection& selected, int deltaKind, double missingCode);

struct TTest {
    double t = 0.0;                // |mP - mB| / se, never negative
    double degreesOfFreedom = 0.0; // Welch's, with n + 1 in the denominators
};

// The test of each row (1 to 17) from the Mean, Variance and Count columns. With se below
// 0.005, or any of the six figures missing, or a count that is not positive, both figures
// of the row are the missing code.
std::array<TTest, CalendarRowCount + 1> tTests(const ResultTable& base, const ResultTable& period,
                                               double missingCode);

} // namespace varo::statistics
