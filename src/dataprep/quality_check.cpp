#include "dataprep/quality_check.hpp"

#include "core/failure.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"

#include <cmath>

namespace varo::dataprep {

bool firstLineTooLong(const std::string& path) {
    // A file that cannot be opened gives no warning: the reading that follows reports it.
    const auto line = core::readFirstLine(path, LongestPlainFirstLine + 1);
    return line && line->size() > LongestPlainFirstLine;
}

QualityResults checkQuality(const std::string& path, double missingCode, float threshold,
                            core::Progress& progress) {
    core::SeriesReader reader(path);
    QualityResults results;
    double sum = 0.0;
    double previous = missingCode;
    results.maxDiffFirst = missingCode;
    results.maxDiffSecond = missingCode;
    do {
        if ((results.total & 0xFFFF) == 0) {
            progress.throwIfStopped();
        }
        const double value = reader.readNumber();
        ++results.total;
        if (value == missingCode) {
            ++results.missing;
        } else {
            ++results.ok;
            sum += value;
            results.maximum = std::max(results.maximum, value);
            results.minimum = std::min(results.minimum, value);
            if (static_cast<float>(value) > threshold) {
                ++results.aboveThreshold;
            }
        }
        if (previous != missingCode && value != missingCode) {
            const double jump = std::fabs(previous - value);
            if (jump > results.maxDiff) {
                results.maxDiff = jump;
                results.maxDiffFirst = previous;
                results.maxDiffSecond = value;
            }
        }
        previous = value;
    } while (!reader.atEnd());
    if (results.ok > 0) {
        results.mean = core::roundToDecimals(sum / static_cast<double>(results.ok), 5);
    }
    return results;
}

} // namespace varo::dataprep
