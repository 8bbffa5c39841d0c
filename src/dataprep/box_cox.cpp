#include "dataprep/box_cox.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace varo::dataprep {

namespace {

constexpr double StartScore = 99999.0;
constexpr double StartMinimum = 99999.0;

const core::NumberFormat& sixDecimals() {
    static const core::NumberFormat format("####0.000000");
    return format;
}

[[noreturn]] void failOverflow(double x, double lamda) {
    throw core::Failure(core::failure::OverflowOccurred,
                        core::generalText(x) + " to the power " + core::generalText(lamda) +
                            " is too large for the Box Cox transformation.");
}

// x ^ lamda, failing when the power leaves the range of double precision.
double power(double x, double lamda) {
    const double result = std::pow(x, lamda);
    if (std::isinf(result)) {
        failOverflow(x, lamda);
    }
    return result;
}

double checkedExp(double y) {
    const double result = std::exp(y);
    if (std::isinf(result)) {
        throw core::Failure(core::failure::OverflowOccurred,
                            "e to the power " + core::generalText(y) +
                                " is too large for the inverse Box Cox transformation.");
    }
    return result;
}

// The value a list entry takes under a lamda of the search; nothing when it is left out.
std::optional<double> searchEntry(double x, double lamda) {
    if (lamda == 0) {
        return x <= 0 ? std::nullopt : std::optional(std::log(x));
    }
    if (x == 0 && lamda < 0) {
        return -1 / lamda;
    }
    return (power(x, lamda) - 1) / lamda;
}

void stopUnlessSingleColumn(bool single, const char* message) {
    if (!single) {
        throw core::RunStopped(message);
    }
}

std::string missingLine(long missing, const char* suffix) {
    return missing == 0 ? std::string("No missing values in file.")
                        : std::to_string(missing) + suffix;
}

} // namespace

LamdaSearchColumn::LamdaSearchColumn(const std::vector<double>& values) : distinct_(values) {
    std::sort(distinct_.begin(), distinct_.end());
    distinct_.erase(std::unique(distinct_.begin(), distinct_.end()), distinct_.end());
    occurrences_.assign(distinct_.size(), 0);
    order_.reserve(values.size());
    for (const double value : values) {
        const auto at = std::lower_bound(distinct_.begin(), distinct_.end(), value);
        const auto index = static_cast<std::uint32_t>(at - distinct_.begin());
        order_.push_back(index);
        ++occurrences_[index];
    }
    hasZero_ = std::binary_search(distinct_.begin(), distinct_.end(), 0.0);
}

// Each distinct value is transformed once; the running sum still adds the entries one by
// one in file order, and the order statistics come from the same multiset as a sort of
// the whole list would give, so the score is the one of the plain method.
LamdaSearchColumn::Score LamdaSearchColumn::score(double lamda) const {
    std::vector<std::pair<double, long>> entries; // value, occurrences
    std::vector<double> transformed(distinct_.size());
    std::vector<char> included(distinct_.size(), 0);
    Score result;
    for (size_t i = 0; i < distinct_.size(); ++i) {
        if (const auto entry = searchEntry(distinct_[i], lamda)) {
            transformed[i] = *entry;
            included[i] = 1;
            result.entries += occurrences_[i];
        }
    }
    if (result.entries < BoxCoxMinimumValues) {
        return result;
    }
    double sum = 0.0;
    for (const std::uint32_t index : order_) {
        if (included[index] != 0) {
            sum += transformed[index];
        }
    }
    // Ascending values stay ascending under the power; 0 under a negative lamda is the
    // exception (it maps to the top), so it goes last. A sort repairs anything else.
    entries.reserve(distinct_.size());
    const bool zeroLast = hasZero_ && lamda < 0;
    for (size_t i = 0; i < distinct_.size(); ++i) {
        if (included[i] != 0 && !(zeroLast && distinct_[i] == 0)) {
            entries.emplace_back(transformed[i], occurrences_[i]);
        }
    }
    if (zeroLast) {
        const size_t zero = static_cast<size_t>(
            std::lower_bound(distinct_.begin(), distinct_.end(), 0.0) - distinct_.begin());
        entries.emplace_back(transformed[zero], occurrences_[zero]);
    }
    if (!std::is_sorted(entries.begin(), entries.end())) {
        std::sort(entries.begin(), entries.end());
    }
    const long n = result.entries;
    const long lowRow = n / 4;
    const long medianRow = n / 2;
    const long highRow = n - n / 4;
    long rowsBefore = 0;
    for (const auto& [value, count] : entries) {
        const long rowsAfter = rowsBefore + count;
        if (lowRow >= rowsBefore && lowRow < rowsAfter) {
            result.low = value;
        }
        if (medianRow >= rowsBefore && medianRow < rowsAfter) {
            result.median = value;
        }
        if (highRow >= rowsBefore && highRow < rowsAfter) {
            result.high = value;
        }
        rowsBefore = rowsAfter;
    }
    result.mean = sum / static_cast<double>(n);
    const double spread = result.high - result.low;
    if (spread > 0) {
        result.judged = true;
        result.value = (result.mean - result.median) / spread;
    }
    return result;
}

double LamdaSearchColumn::searchLamda(double start, double end, double step,
                                      double missingCode) const {
    double bestScore = StartScore;
    double bestLamda = start;
    bool found = false;
    for (double lamda = start; lamda <= end; lamda += step) {
        const Score s = score(lamda);
        if (s.judged && s.value != missingCode && std::fabs(s.value) < bestScore) {
            bestScore = std::fabs(s.value);
            bestLamda = lamda;
            found = true;
        }
    }
    return found ? bestLamda : missingCode;
}

double optimumLamda(const LamdaSearchColumn& column, double missingCode, core::Progress& progress) {
    struct Stage {
        double halfWidth;
        double step;
    };
    static constexpr Stage Narrowing[] = {{0.25, 0.1}, {0.1, 0.01}};
    const auto checked = [&](double lamda) {
        if (lamda == missingCode) {
            throw core::RunStopped(
                "Sorry an error has occurred calculating the optimum lamda transform.");
        }
        progress.throwIfStopped();
        return lamda;
    };
    double best = checked(column.searchLamda(-2.0, 2.0, 0.25, missingCode));
    for (const Stage& stage : Narrowing) {
        best = checked(column.searchLamda(best - stage.halfWidth, best + stage.halfWidth,
                                          stage.step, missingCode));
    }
    return best;
}

BoxCoxResult boxCoxFile(const std::string& inPath, const std::string& outPath, int columns,
                        double missingCode, core::Progress& progress) {
    stopUnlessSingleColumn(
        columns <= 1,
        "Sorry - Box Cox transformation can only be applied to single column data files.");
    core::SeriesReader reader(inPath);
    std::optional<core::TextFileWriter> writer;
    BoxCoxResult result;
    try {
        std::vector<double> values;
        double minimum = StartMinimum;
        while (!reader.atEnd()) {
            progress.throwIfStopped();
            if (static_cast<long>(values.size()) == BoxCoxCapacity) {
                throw core::Failure(core::failure::FileTooLarge,
                                    "'" + inPath + "' holds more than " +
                                        std::to_string(BoxCoxCapacity) +
                                        " values, more than a Box Cox transformation can hold.");
            }
            const double value = reader.readNumber();
            values.push_back(value);
            if (value == missingCode) {
                ++result.counts.missing;
            } else {
                minimum = std::min(minimum, value);
            }
        }
        result.counts.rows = static_cast<long>(values.size());
        if (result.counts.rows - result.counts.missing < BoxCoxMinimumValues) {
            throw core::RunStopped("Sorry - insufficient data to perform Box Cox transformation.");
        }
        result.shift = minimum < 0 ? std::fabs(minimum) : 0.0;
        std::vector<double> column;
        column.reserve(values.size());
        for (const double value : values) {
            if (value != missingCode) {
                column.push_back(value + result.shift);
            }
        }
        result.lamda = optimumLamda(LamdaSearchColumn(column), missingCode, progress);
        // Created only now: the search can fail or be cancelled, and an earlier output of
        // the same name stays as it is until there is something to write.
        writer.emplace(outPath);

        const std::string missingText = core::printNumber(missingCode);
        const double lamda = result.lamda;
        const double shift = result.shift;
        for (const double value : values) {
            if (value == missingCode) {
                writer->writeLine(missingText);
                continue;
            }
            const double x = value + shift;
            if (lamda == 0 && x == 0) {
                writer->writeLine(missingText);
                ++result.counts.notConverted;
                continue;
            }
            double written = 0.0;
            if (lamda == 0) {
                written = std::log(x) - shift;
            } else if (x != 0) {
                written = (power(x, lamda) - 1) / lamda - shift;
            } else {
                written = -1 / lamda - shift;
            }
            writer->writeLine(sixDecimals().format(written));
        }
        writer->close();
    } catch (const core::Failure& failure) {
        if (!writer) {
            throw;
        }
        throw incompleteOutputFailure(failure, outPath);
    }
    return result;
}

TransformCounts unBoxCoxFile(const std::string& inPath, const std::string& outPath, int columns,
                             double lamda, double shift, double missingCode,
                             core::Progress& progress) {
    stopUnlessSingleColumn(columns < 2, "Sorry - Inverse Box Cox transformation can only be "
                                        "applied to single column data files.");
    core::SeriesReader reader(inPath);
    core::TextFileWriter writer(outPath);
    TransformCounts counts;
    try {
        const std::string missingText = core::printNumber(missingCode);
        while (!reader.atEnd()) {
            progress.throwIfStopped();
            const double value = reader.readNumber();
            ++counts.rows;
            if (value == missingCode) {
                writer.writeLine(missingText);
                ++counts.missing;
                continue;
            }
            const double y = value + shift;
            if (lamda == 0) {
                writer.writeLine(sixDecimals().format(checkedExp(y) - shift));
                continue;
            }
            const double t = y * lamda + 1;
            if (t <= 0) {
                writer.writeLine(missingText);
                ++counts.notConverted;
                continue;
            }
            writer.writeLine(sixDecimals().format(checkedExp(std::log(t) / lamda) - shift));
        }
        writer.close();
    } catch (const core::Failure& failure) {
        throw incompleteOutputFailure(failure, outPath);
    }
    return counts;
}

std::string boxCoxReportText(const BoxCoxResult& result, double missingCode) {
    return std::to_string(result.counts.rows) +
           " rows processed.\r\nOptimum Lamda Value: " + core::generalText(result.lamda) +
           "\r\nData right shifted: " + core::generalText(result.shift) + "\r\n" +
           missingLine(result.counts.missing, " missing value(s) in file (not transformed).") +
           notConvertedLines(result.counts.notConverted, missingCode);
}

std::string unBoxCoxReportText(const TransformCounts& counts, double missingCode) {
    return std::to_string(counts.rows) + " rows processed.\r\n" +
           missingLine(counts.missing, " missing value(s) in file (not untransformed).") +
           notConvertedLines(counts.notConverted, missingCode);
}

} // namespace varo::dataprep
