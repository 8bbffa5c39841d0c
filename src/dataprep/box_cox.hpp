// The Box-Cox transformation of a single-column data file and its inverse.
//
// The forward run looks for the power lamda that makes the series most symmetric: for each
// lamda of a grid it transforms the values that are not missing and scores
// (mean - median) / (upper quartile - lower quartile), the quartiles and median taken as
// the entries at zero-based rows n / 4, n - n / 4 and n / 2 of the sorted list. Three grids
// narrow in on the best lamda. A negative minimum is shifted to 0 first, and the written
// value is (x ^ lamda - 1) / lamda less the shift again, which is what the inverse undoes.
#pragma once

#include "core/progress.hpp"
#include "dataprep/transform.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace varo::dataprep {

// Values a forward run can hold, and the fewest that it transforms.
inline constexpr long BoxCoxCapacity = 92000;
inline constexpr long BoxCoxMinimumValues = 50;

// The values of a series that take part in the lamda search, in file order, with their
// distinct values set apart so that each lamda raises every distinct value only once.
class LamdaSearchColumn {
public:
    explicit LamdaSearchColumn(const std::vector<double>& values);

    // The best lamda of the grid start, start + step, ... up to end (the grid is summed
    // step by step, so the end is included only when the sums reach it), or `missingCode`
    // when no lamda of the grid could be judged. Lamdas whose list holds fewer than 50
    // entries are passed over; a spread of 0 or less cannot win; on a tie the lower lamda
    // stays. Throws `core::Failure` 6 when a power overflows.
    double searchLamda(double start, double end, double step, double missingCode) const;

    // The score of one lamda, or nothing when its list is too short or without spread
    // (exposed for tests).
    struct Score {
        long entries = 0;
        double mean = 0.0;
        double median = 0.0;
        double low = 0.0;
        double high = 0.0;
        bool judged = false;
        double value = 0.0;
    };
    Score score(double lamda) const;

private:
    std::vector<double> distinct_;     // ascending
    std::vector<long> occurrences_;    // of each distinct value
    std::vector<std::uint32_t> order_; // each value's distinct index, in file order
    bool hasZero_ = false;
};

struct BoxCoxResult {
    TransformCounts counts;
    double lamda = 0.0;
    double shift = 0.0;
};

// The three-stage search on a column that is already shifted: -2 to 2 by 0.25, then the
// best +- 0.25 by 0.1, then the best +- 0.1 by 0.01. Stops the run with "Sorry an error
// has occurred calculating the optimum lamda transform." when a stage finds nothing.
double optimumLamda(const LamdaSearchColumn& column, double missingCode, core::Progress& progress);

// The forward run on `inPath` into `outPath` (replaced). Stops the run with its message
// when `columns` is more than 1 or fewer than 50 values are not missing; fails with 9
// past 92000 values. Throws `core::Failure` for file failures and overflow,
// `core::Cancelled` on a stop request. The output is created only once the lamda has been
// found, so that none of these leaves an earlier output changed.
BoxCoxResult boxCoxFile(const std::string& inPath, const std::string& outPath, int columns,
                        double missingCode, core::Progress& progress);

// The inverse run with the user's lamda and shift: y = value + shift; lamda 0 gives
// exp(y) - shift, otherwise exp(ln(y * lamda + 1) / lamda) - shift, and y * lamda + 1 <= 0
// cannot be converted. Stops the run when `columns` is 2 or more.
TransformCounts unBoxCoxFile(const std::string& inPath, const std::string& outPath, int columns,
                             double lamda, double shift, double missingCode,
                             core::Progress& progress);

// The lines of the "Transformation complete" boxes.
std::string boxCoxReportText(const BoxCoxResult& result, double missingCode);
std::string unBoxCoxReportText(const TransformCounts& counts, double missingCode);

} // namespace varo::dataprep
