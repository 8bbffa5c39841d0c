#include "statistics/ensemble.hpp"

#include <cmath>

namespace varo::statistics {

PeriodResults ensembleMean(const std::vector<ResultTable>& tables, double missingCode) {
    PeriodResults results;
    results.values = filledTable(0.0);
    ResultTable deviations = filledTable(0.0);
    for (int row = 1; row <= CalendarRowCount; ++row) {
        for (int c = 1; c <= StatisticCount; ++c) {
            double sum = 0.0;
            double n = 0.0;
            for (const ResultTable& table : tables) {
                if (table[row][c] != missingCode) {
                    sum += table[row][c];
                    n += 1.0;
                }
            }
            if (n == 0.0) {
                results.values[row][c] = missingCode;
                deviations[row][c] = missingCode;
                continue;
            }
            const double mean = sum / n;
            double squares = 0.0;
            for (const ResultTable& table : tables) {
                if (table[row][c] != missingCode) {
                    squares += (table[row][c] - mean) * (table[row][c] - mean);
                }
            }
            results.values[row][c] = mean;
            deviations[row][c] = std::sqrt(squares / n);
        }
    }
    results.deviations = deviations;
    return results;
}

} // namespace varo::statistics
