#include "dataprep/transform.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <vector>

namespace varo::dataprep {

namespace {

const core::NumberFormat& sixDecimals() {
    static const core::NumberFormat format("####0.000000");
    return format;
}

using Row = std::vector<double>;

// One run of a transform: the two files, the settings and the counts.
struct TransformJob {
    core::SeriesReader& reader;
    core::TextFileWriter& writer;
    const TransformSettings& settings;
    core::Progress& progress;
    TransformCounts counts;

    bool isMissing(double value) const { return value == settings.missingCode; }

    void countMissing(const Row& row) {
        for (const double value : row) {
            if (isMissing(value)) {
                ++counts.missing;
            }
        }
    }

    // Reads the next row; a file that ends inside a row fails with 62.
    void readRow(Row& row) {
        progress.throwIfStopped();
        const long rowNumber = counts.rows + 1;
        for (size_t column = 0; column < row.size(); ++column) {
            if (column > 0 && reader.atEnd()) {
                throw core::Failure(core::failure::InputPastEnd,
                                    "'" + reader.path() + "' ends part way through row " +
                                        std::to_string(rowNumber) + ": its values do not fill " +
                                        "rows of " + std::to_string(row.size()) + " columns.");
            }
            row[column] = reader.readNumber();
        }
        ++counts.rows;
    }

    // Calls `onRow` for every row up to the end of the file.
    template <typename OnRow>
    void forEachRow(OnRow onRow) {
        Row row(static_cast<size_t>(settings.columns));
        while (!reader.atEnd()) {
            readRow(row);
            onRow(row);
        }
    }

    void writeGeneralRow(const Row& row) {
        for (const double value : row) {
            writer.writeZoned(core::printNumber(value));
        }
        writer.endLine();
    }

    void extract() {
        const size_t column = static_cast<size_t>(settings.extractColumn - 1);
        forEachRow([&](const Row& row) {
            if (isMissing(row[column])) {
                ++counts.missing;
            }
            writer.writeLine(core::printNumber(row[column]));
        });
    }

    void transformRows() {
        const std::string missingText = core::printNumber(settings.missingCode);
        Row previous(static_cast<size_t>(settings.columns), settings.missingCode);
        bool firstRow = true;
        forEachRow([&](const Row& row) {
            for (size_t column = 0; column < row.size(); ++column) {
                const double x = row[column];
                if (isMissing(x)) {
                    ++counts.missing;
                    writer.writeZoned(missingText);
                } else if (settings.code == transform::BackwardChange) {
                    const double change = firstRow || isMissing(previous[column])
                                              ? settings.missingCode
                                              : x - previous[column];
                    writer.writeZoned(core::printNumber(change));
                } else if (settings.code == transform::Lag) {
                    writer.writeZoned(core::printNumber(x));
                } else {
                    bool refused = false;
                    writer.writeZoned(writtenTransformValue(settings.code, x, settings.threshold,
                                                            settings.missingCode, refused));
                    if (refused) {
                        ++counts.notConverted;
                    }
                }
                previous[column] = x;
            }
            writer.endLine();
            firstRow = false;
        });
    }

    // Rows move up: the first n rows go to the end, as they were or as missing values.
    void lagUp(int rowsUp) {
        std::vector<Row> store(static_cast<size_t>(rowsUp),
                               Row(static_cast<size_t>(settings.columns)));
        for (Row& stored : store) {
            if (reader.atEnd()) {
                throw core::Failure(
                    core::failure::InputPastEnd,
                    "'" + reader.path() + "' holds only " + std::to_string(counts.rows) +
                        " rows, fewer than the lag of " + std::to_string(rowsUp) + " rows.");
            }
            readRow(stored);
            countMissing(stored);
            if (!settings.wrap) {
                std::fill(stored.begin(), stored.end(), settings.missingCode);
            }
        }
        forEachRow([&](const Row& row) {
            countMissing(row);
            writeGeneralRow(row);
        });
        for (const Row& stored : store) {
            writeGeneralRow(stored);
        }
    }

    // Rows move down: the whole file is stored, then the last n rows (or n rows of missing
    // values) are written before the rest.
    void lagDown(int rowsDown) {
        std::vector<Row> store;
        forEachRow([&](const Row& row) {
            if (static_cast<long>(store.size()) == LagStoreRows) {
                throw core::Failure(core::failure::FileTooLarge,
                                    "'" + reader.path() + "' has more than " +
                                        std::to_string(LagStoreRows) +
                                        " rows, more than a lagged file can hold.");
            }
            countMissing(row);
            store.push_back(row);
        });
        const long count = static_cast<long>(store.size());
        if (rowsDown >= count) {
            throw core::RunStopped("Negative lag value is too 'large' for this file - file "
                                   "contains only " +
                                   std::to_string(count) + " rows.");
        }
        const Row missingRow(static_cast<size_t>(settings.columns), settings.missingCode);
        for (long i = count - rowsDown; i < count; ++i) {
            writeGeneralRow(settings.wrap ? store[static_cast<size_t>(i)] : missingRow);
        }
        for (long i = 0; i < count - rowsDown; ++i) {
            writeGeneralRow(store[static_cast<size_t>(i)]);
        }
    }
};

std::string lastThreeReplaced(std::string_view text, std::string_view with) {
    const size_t keep = text.size() >= 3 ? text.size() - 3 : 0;
    return std::string(text.substr(0, keep)) + std::string(with);
}

} // namespace

const std::array<TransformOption, transform::Count>& transformOptions() {
    static const std::array<TransformOption, transform::Count> options{{
        {transform::NaturalLog, "Ln", "Natural log (e) ", "ln"},
        {transform::Log10, "Log", "Log (10) ", "log10"},
        {transform::Square, "X^2", "X squared ", "square"},
        {transform::SquareRoot, "X^0.5", "Square root", "sqrt"},
        {transform::FourthRoot, "X^0.25", "Fourth root ", "root4"},
        {transform::Inverse, "1/X", "1 over x ", "inverse"},
        {transform::Power4, "X^4", "X to the power 4  ", "pow4"},
        {transform::Exp, "e", "e to the power x ", "exp"},
        {transform::Power10, "10", "10 to the power x ", "pow10"},
        {transform::Cube, "X^3", "X cubed ", "cube"},
        {transform::CubeRoot, "X^0.33", "Cube root ", "cbrt"},
        {transform::Copy, "X", "No transformation - just copy file ", "copy"},
        {transform::Lag, "Lag n", "Lag file n places ", "lag"},
        {transform::Binomial, "Binomial", "1 for values above threshold, 0 otherwise ", "binomial"},
        {transform::BackwardChange, "Backward change", "Rate of change of variable ", "change"},
        {transform::BoxCox, "Box Cox", "Apply Box Cox transformation", "boxcox"},
        {transform::UnBoxCox, "Un-Box Cox", "Inverse Box Cox transformation based on Lamda value",
         "unboxcox"},
    }};
    return options;
}

const TransformOption* findTransformOption(std::string_view name) {
    for (const auto& option : transformOptions()) {
        if (option.name == name) {
            return &option;
        }
    }
    return nullptr;
}

// The limits keep every result inside the range of double precision.
std::optional<double> transformValue(int code, double x, float threshold) {
    switch (code) {
    case transform::NaturalLog:
        return x <= 0 ? std::nullopt : std::optional(std::log(x));
    case transform::Log10:
        return x <= 0 ? std::nullopt : std::optional(std::log(x) / std::log(10.0));
    case transform::Square:
        return x >= 1e100 || x <= -1e100 ? std::nullopt : std::optional(x * x);
    case transform::SquareRoot:
        return x < 0 ? std::nullopt : std::optional(std::sqrt(x));
    case transform::FourthRoot:
        return x < 0 ? std::nullopt : std::optional(std::sqrt(std::sqrt(x)));
    case transform::Inverse:
        return x == 0 ? std::nullopt : std::optional(1 / x);
    case transform::Power4:
        return x >= 1e25 || x <= -1e25 ? std::nullopt : std::optional(x * x * x * x);
    case transform::Exp:
        return x >= 700 ? std::nullopt : std::optional(std::exp(x));
    case transform::Power10:
        return x >= 300 ? std::nullopt : std::optional(std::exp(std::log(10.0) * x));
    case transform::Cube:
        return x >= 1e35 || x <= -1e35 ? std::nullopt : std::optional(x * x * x);
    case transform::CubeRoot:
        if (x > 0) {
            return std::exp(std::log(x) / 3);
        }
        return x < 0 ? -std::exp(std::log(-x) / 3) : 0.0;
    case transform::Binomial:
        return static_cast<float>(x) > threshold ? 1.0 : 0.0;
    default:
        return x;
    }
}

std::string writtenTransformValue(int code, double x, float threshold, double missingCode,
                                  bool& refused) {
    const auto result = transformValue(code, x, threshold);
    refused = !result;
    if (!result) {
        return core::printNumber(missingCode);
    }
    const bool fixed = code <= transform::Cube || (code == transform::CubeRoot && x != 0);
    return fixed ? sixDecimals().format(*result) : core::printNumber(*result);
}

TransformCounts transformFile(const std::string& inPath, const std::string& outPath,
                              const TransformSettings& settings, core::Progress& progress) {
    core::SeriesReader reader(inPath);
    core::TextFileWriter writer(outPath);
    TransformJob job{reader, writer, settings, progress, {}};
    try {
        if (settings.extract) {
            job.extract();
        } else if (settings.code == transform::Lag && settings.lag > 0) {
            job.lagUp(settings.lag);
        } else if (settings.code == transform::Lag && settings.lag < 0) {
            job.lagDown(-settings.lag);
        } else {
            job.transformRows();
        }
        writer.close();
    } catch (const core::Failure& failure) {
        throw incompleteOutputFailure(failure, outPath);
    }
    return job.counts;
}

void checkTransformInput(const std::string& inPath, int columns, core::Progress& progress) {
    core::SeriesReader reader(inPath);
    long values = 0;
    while (!reader.atEnd()) {
        if ((values & 0xFFFF) == 0) {
            progress.throwIfStopped();
        }
        reader.readNumber();
        ++values;
    }
    const long filled = values % columns;
    if (filled != 0) {
        throw core::Failure(core::failure::InputPastEnd,
                            "'" + inPath + "' ends part way through row " +
                                std::to_string(values / columns + 1) + ": its " +
                                std::to_string(values) + " values do not fill rows of " +
                                std::to_string(columns) + " columns.");
    }
}

core::Failure incompleteOutputFailure(const core::Failure& failure, const std::string& outPath) {
    return core::Failure(failure.number(), failure.description() + "\r\nThe output file '" +
                                               outPath +
                                               "' is incomplete: it holds only what was "
                                               "written before the failure.");
}

std::string notConvertedLines(long notConverted, double missingCode) {
    if (notConverted == 0) {
        return {};
    }
    return "\r\n" + std::to_string(notConverted) +
           " value(s) could not be converted (overflow would occur),\r\n - therefore written "
           "to file as " +
           core::generalText(missingCode) + " (current missing code).";
}

std::string transformReportText(const TransformCounts& counts, bool extraction,
                                double missingCode) {
    std::string text = std::to_string(counts.rows) + " rows processed.\r\n";
    if (extraction) {
        text += counts.missing == 0
                    ? "No missing values in extracted ensemble."
                    : std::to_string(counts.missing) + " missing value(s) in extracted ensemble.";
        return text;
    }
    text += counts.missing == 0
                ? "No missing values in file."
                : std::to_string(counts.missing) + " missing value(s) in file (not transformed).";
    return text + notConvertedLines(counts.notConverted, missingCode);
}

std::string descriptionCopySource(const std::string& inPath) {
    return lastThreeReplaced(inPath, "SIM");
}

std::string descriptionCopyTarget(const std::string& inPath, const std::string& outPath) {
    const std::string name = lastThreeReplaced(core::bareFileName(outPath), "SIM");
    const std::string folder = core::folderOf(inPath);
    return folder.empty() ? name : folder + "/" + name;
}

std::string copyDescriptionFile(const std::string& inPath, const std::string& outPath) {
    namespace fs = std::filesystem;
    const std::string source = descriptionCopySource(inPath);
    const std::string target = descriptionCopyTarget(inPath, outPath);
    std::error_code error;
    if (!fs::is_regular_file(source, error)) {
        throw core::Failure(core::failure::FileNotFound,
                            "The description file '" + source + "' does not exist.");
    }
    if (fs::exists(target, error) && fs::equivalent(source, target, error)) {
        return target;
    }
    fs::copy_file(source, target, fs::copy_options::overwrite_existing, error);
    if (error) {
        throw core::Failure(core::failure::PathAccessError, "Cannot copy '" + source + "' to '" +
                                                                target + "': " + error.message() +
                                                                ".");
    }
    return target;
}

} // namespace varo::dataprep
