// The quality check of a data file: how many values it holds, how many are missing, its
// extremes, mean and the largest jump between neighbouring values. Nothing is written.
#pragma once

#include "core/progress.hpp"

#include <optional>
#include <string>

namespace varo::dataprep {

inline constexpr size_t LongestPlainFirstLine = 15;

// True when the file's first line is longer than 15 characters: the file may hold several
// columns, or line ends that none of CR LF, LF and CR begins (so that the whole file reads
// as one line).
bool firstLineTooLong(const std::string& path);

struct QualityResults {
    long total = 0;
    long missing = 0;
    long ok = 0;
    // The fixed starting values 9999 and -9999 stay when no value passes them.
    double minimum = 9999.0;
    double maximum = -9999.0;
    // Mean of the values not missing, rounded to 5 decimals; empty when every value is
    // missing, so that nothing can be divided.
    std::optional<double> mean;
    double maxDiff = 0.0;
    double maxDiffFirst = 0.0;
    double maxDiffSecond = 0.0;
    long aboveThreshold = 0;
};

// Reads every value of the file as one stream, whatever its lines. A missing value breaks
// the chain of differences; the first of equal largest jumps is kept. Values above the
// threshold are counted after rounding to single precision. Throws `core::Failure` for
// file failures (62 for an empty file) and `core::Cancelled` on a stop request.
QualityResults checkQuality(const std::string& path, double missingCode, float threshold,
                            core::Progress& progress);

} // namespace varo::dataprep
