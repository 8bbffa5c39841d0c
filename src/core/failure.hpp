// Run-time failures and cancels.
//
// Every run-time failure of a run is a `Failure`: a number from the failure table and a
// description of what went wrong (naming the file, line and value where there is one).
// A screen's run catches it in one place, shows the text of `reportFailureText` in a box
// titled "Error Message" and runs its cleanup. A confirmed cancel is a `Cancelled`.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace varo::core {

// Numbers of the failure table. Any other number adds no line to the box.
namespace failure {
inline constexpr int Overflow = 5;
inline constexpr int OverflowOccurred = 6;
// Not in the table, so its box carries no table line; the description says what ran out.
inline constexpr int OutOfMemory = 7;
inline constexpr int FileTooLarge = 9;
inline constexpr int DivisionByZero = 11;
inline constexpr int TypeMismatch = 13;
inline constexpr int FileNotFound = 53;
inline constexpr int FileAlreadyOpen = 55;
inline constexpr int FileAlreadyExists = 58;
inline constexpr int DiskFull = 61;
inline constexpr int InputPastEnd = 62;
inline constexpr int DriveUnavailable = 68;
inline constexpr int PermissionDenied = 70;
inline constexpr int DiskNotReady = 71;
inline constexpr int PathAccessError = 75;
inline constexpr int PathNotFound = 76;
inline constexpr int SingularMatrix = 1306;
} // namespace failure

class Failure : public std::runtime_error {
public:
    Failure(int number, std::string description)
        : std::runtime_error(description), number_(number), description_(std::move(description)) {}

    int number() const noexcept { return number_; }
    const std::string& description() const noexcept { return description_; }

private:
    int number_;
    std::string description_;
};

// Failure 62 of a data file: reading went past its end. Keeps where the file ended, so
// that a run reading by dates can say which dates asked for more (`withDatesHint`).
class PastEndFailure : public Failure {
public:
    // `lastLine`: the last line that held a value, 0 for a file without one.
    PastEndFailure(std::string path, long lastLine);

    const std::string& path() const noexcept { return path_; }
    long lastLine() const noexcept { return lastLine_; }

private:
    std::string path_;
    long lastLine_;
};

// The dates a run reads its files by, as text: the record (GlobalSDate, GlobalEDate or a
// model's record), the period read when there is one, and the year length.
struct DatesInUse {
    std::string recordStart;
    std::string recordEnd; // empty when the run does not use one
    std::string periodStart;
    std::string periodEnd; // empty when the run has none
    std::string periodName = "fit";
    int yearLength = 366;
};

// The failure with its description replaced by a line naming the file, the line it ended
// at and the dates in use, so that the person sees which date to change. The number, and
// so the required lines of the box, stay.
Failure withDatesHint(const PastEndFailure& failure, const DatesInUse& dates);

// Runs `read` and turns a data file's end reached too early into `withDatesHint`.
template <typename Read>
decltype(auto) readingByDates(const DatesInUse& dates, Read&& read) {
    try {
        return read();
    } catch (const PastEndFailure& failure) {
        throw withDatesHint(failure, dates);
    }
}

// Thrown by a long loop that saw a confirmed stop request.
class Cancelled : public std::exception {
public:
    const char* what() const noexcept override { return "Processing cancelled."; }
};

// The text of the "Error Message" box: the apology line, the table's line(s) for the
// number, then the description; lines separated by carriage return and line feed.
std::string reportFailureText(int number, std::string_view description);

// The table's line(s) for a failure number, empty for numbers outside the table.
std::string_view failureTableLines(int number);

} // namespace varo::core
