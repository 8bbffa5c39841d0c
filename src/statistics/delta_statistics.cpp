#include "statistics/delta_statistics.hpp"

#include <cmath>

namespace varo::statistics {

ResultTable deltaTable(const ResultTable& base, const ResultTable& period,
                       const Selection& selected, int deltaKind, double missingCode) {
    ResultTable delta = filledTable(missingCode);
    for (int row = 1; row <= CalendarRowCount; ++row) {
        for (int c = 1; c <= StatisticCount; ++c) {
            if (!selected[c]) {
                continue;
            }
            const double b = base[row][c];
            const double v = period[row][c];
            if (b == missingCode || v == missingCode) {
                continue;
            }
            if (deltaKind == AbsoluteDelta) {
                delta[row][c] = v - b;
            } else if (b >= 0.005 || b <= -0.005) {
                delta[row][c] = (v - b) / b * 100.0;
            }
        }
    }
    return delta;
}

std::array<TTest, CalendarRowCount + 1> tTests(const ResultTable& base, const ResultTable& period,
                                               double missingCode) {
    std::array<TTest, CalendarRowCount + 1> tests{};
    for (int row = 1; row <= CalendarRowCount; ++row) {
        TTest& test = tests[row];
        test = {missingCode, missingCode};
        const double mP = period[row][column::Mean];
        const double vP = period[row][column::Variance];
        const double nP = period[row][column::Count];
        const double mB = base[row][column::Mean];
        const double vB = base[row][column::Variance];
        const double nB = base[row][column::Count];
        bool usable = nP > 0.0 && nB > 0.0;
        for (const double figure : {mP, vP, nP, mB, vB, nB}) {
            usable = usable && figure != missingCode;
        }
        if (!usable) {
            continue;
        }
        const double shareP = vP / nP;
        const double shareB = vB / nB;
        const double se = std::sqrt(shareP + shareB);
        if (!(se >= 0.005)) {
            continue;
        }
        test.t = std::fabs(mP - mB) / se;
        test.degreesOfFreedom = (shareP + shareB) * (shareP + shareB) /
                                (shareP * shareP / (nP + 1.0) + shareB * shareB / (nB + 1.0));
    }
    return tests;
}

} // namespace varo::statistics
