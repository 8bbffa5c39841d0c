#include "scenario/scenario_data.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"
#include "series/simulation_files.hpp"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace varo::scenario {

namespace {

constexpr size_t ZoneWidth = core::PrintZoneWidth;

// Days or lines still to come, judged from the file's size and its first line, for the
// progress bar alone.
long expectedDays(const std::string& path, size_t firstLineLength) {
    std::error_code error;
    const auto bytes = std::filesystem::file_size(path, error);
    if (error) {
        return 1;
    }
    return std::max<long>(1, static_cast<long>(bytes / (firstLineLength + 2)));
}

// The value of member k of a row: 0 when the line does not reach its zone or the zone is
// blank, otherwise the zone's one number.
double rowValue(std::string_view line, int k, long lineNumber, const std::string& path) {
    const size_t start = ZoneWidth * static_cast<size_t>(k - 1);
    if (start >= line.size() || core::trimBlanks(line.substr(start, ZoneWidth)).empty()) {
        return 0.0;
    }
    return core::zoneNumber(line, k, lineNumber, path);
}

class DayCounter {
public:
    DayCounter(const std::string& path, long expected, core::Progress& progress)
        : path_(path), expected_(expected), progress_(progress) {}

    // Counts one more day, failing past the limit, with a progress report and a stop test.
    void next(long lineNumber) {
        if (++days_ > MaxDays) {
            throw core::Failure(core::failure::FileTooLarge,
                                "'" + path_ + "' holds more than " + std::to_string(MaxDays) +
                                    " days (line " + std::to_string(lineNumber) +
                                    "); the scenario generator holds at most " +
                                    std::to_string(MaxDays) + ".");
        }
        progress_.report(days_, std::max(days_, expected_), ReadingCaption);
        progress_.throwIfStopped();
    }
    long days() const { return days_; }

private:
    const std::string& path_;
    long expected_;
    core::Progress& progress_;
    long days_ = 0;
};

// Removes the temporary file unless it was renamed over the output.
class TemporaryOutput {
public:
    explicit TemporaryOutput(const std::string& path) : path_(path) {
        const std::filesystem::path target(path);
        temporary_ = (target.parent_path() / ("." + target.filename().string() + "." +
                                              std::to_string(::getpid()) + ".part"))
                         .string();
    }
    ~TemporaryOutput() {
        if (!committed_) {
            std::error_code error;
            std::filesystem::remove(temporary_, error);
        }
    }
    TemporaryOutput(const TemporaryOutput&) = delete;
    TemporaryOutput& operator=(const TemporaryOutput&) = delete;

    const std::string& path() const { return temporary_; }

    void commit() {
        std::error_code error;
        std::filesystem::rename(temporary_, path_, error);
        if (error) {
            throw core::Failure(core::failure::PathAccessError,
                                "Cannot write '" + path_ + "': " + error.message() + ".");
        }
        committed_ = true;
    }

private:
    std::string path_;
    std::string temporary_;
    bool committed_ = false;
};

} // namespace

bool readsByRows(std::string_view firstLine) {
    return firstLine.size() > ZoneWidth;
}

std::optional<std::string> sizeRefusal(std::string_view firstLine, int ensembleSize) {
    if (ensembleSize > 1 && firstLine.size() < ZoneWidth * static_cast<size_t>(ensembleSize)) {
        return std::string(WrongSizeMessage);
    }
    return std::nullopt;
}

std::optional<std::string> firstLineOf(const std::string& path) {
    std::optional<std::string> line = core::readFirstLine(path);
    if (line && line->starts_with(core::Utf8ByteOrderMark)) {
        line->erase(0, core::Utf8ByteOrderMark.size());
    }
    return line;
}

ScenarioData readScenarioData(const std::string& path, int ensembleSize, core::Progress& progress) {
    core::SeriesReader reader(path);
    const std::string firstLine = firstLineOf(path).value_or(std::string());
    if (const auto refusal = sizeRefusal(firstLine, ensembleSize)) {
        throw core::RunStopped(*refusal);
    }
    ScenarioData data;
    data.members.resize(static_cast<size_t>(ensembleSize));
    DayCounter counter(path, expectedDays(path, firstLine.size()), progress);
    if (ensembleSize == 1 && !readsByRows(firstLine)) {
        while (!reader.atEnd()) {
            counter.next(reader.lineNumber());
            data.members[0].push_back(reader.readNumber());
        }
    } else {
        for (;;) {
            const long lineNumber = reader.lineNumber();
            std::string line;
            // Every line counts, a blank one too, until nothing at all is left: the reader
            // says so by its failure of reading past the end.
            try {
                line = reader.readLine();
            } catch (const core::PastEndFailure&) {
                break;
            }
            counter.next(lineNumber);
            for (int k = 1; k <= ensembleSize; ++k) {
                data.members[static_cast<size_t>(k - 1)].push_back(
                    rowValue(line, k, lineNumber, path));
            }
        }
    }
    data.dayCount = counter.days();
    return data;
}

void checkOutputWritable(const std::string& path) {
    core::refuseFolder(path);
    std::error_code error;
    if (std::filesystem::exists(path, error) && ::access(path.c_str(), W_OK) != 0) {
        throw core::Failure(core::failure::PermissionDenied,
                            "Cannot write '" + path + "': permission denied.");
    }
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const std::string folderText = folder.empty() ? std::string(".") : folder.string();
    if (::access(folderText.c_str(), W_OK) != 0) {
        throw core::Failure(core::failure::PathAccessError,
                            "Cannot write '" + path + "': the folder '" + folderText +
                                "' does not exist or does not take new files.");
    }
}

void writeScenarioData(const std::string& path, const ScenarioData& data,
                       core::Progress& progress) {
    checkOutputWritable(path);
    TemporaryOutput output(path);
    {
        core::TextFileWriter file(output.path());
        std::vector<double> day(data.members.size());
        std::string line;
        for (long d = 0; d < data.dayCount; ++d) {
            for (size_t m = 0; m < data.members.size(); ++m) {
                day[m] = data.members[m][static_cast<size_t>(d)];
            }
            line.clear();
            series::appendDayLine(line, day.data(), static_cast<int>(day.size()));
            file.write(line);
            file.endLine();
            progress.report(d + 1, data.dayCount, WritingCaption);
            progress.throwIfStopped();
        }
        file.close();
    }
    output.commit();
}

} // namespace varo::scenario
