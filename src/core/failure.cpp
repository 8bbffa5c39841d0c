#include "core/failure.hpp"

namespace varo::core {

std::string_view failureTableLines(int number) {
    switch (number) {
    case failure::Overflow:
        return "Overflow in calculation.";
    case failure::OverflowOccurred:
        return "Overflow has occurred.";
    case failure::FileTooLarge:
        return "File too large for program to handle.";
    case failure::DivisionByZero:
        return "Division by zero.";
    case failure::FileNotFound:
        return "File not found.";
    case failure::FileAlreadyOpen:
        return "File already open.";
    case failure::FileAlreadyExists:
        return "File already exists.";
    case failure::DiskFull:
        return "Disk full.";
    case failure::InputPastEnd:
        return "Input past end of file.\r\nPlease check global program settings.";
    case failure::DriveUnavailable:
        return "Drive is unavailable.";
    case failure::PermissionDenied:
        return "Permission denied - file could be open.";
    case failure::DiskNotReady:
        return "Disk not ready.";
    case failure::PathAccessError:
        return "Unable to write to drive.\r\nPlease check default directory settings.";
    case failure::PathNotFound:
        return "A file could not be found.";
    case failure::SingularMatrix:
        return "Matrix is singular and cannot be inverted.";
    default:
        return {};
    }
}

std::string reportFailureText(int number, std::string_view description) {
    std::string text = "Sorry - an error has occurred - please check all selections and try again.";
    const std::string_view table = failureTableLines(number);
    if (!table.empty()) {
        text += "\r\n";
        text += table;
    }
    text += "\r\n";
    text += description;
    return text;
}

} // namespace varo::core

namespace varo::core {

PastEndFailure::PastEndFailure(std::string path, long lastLine)
    : Failure(failure::InputPastEnd, "Reading past the end of '" + path + "' (after line " +
                                         std::to_string(lastLine) + ")."),
      path_(std::move(path)), lastLine_(lastLine) {}

Failure withDatesHint(const PastEndFailure& failure, const DatesInUse& dates) {
    std::string hint = "'" + failure.path() + "' ";
    hint += failure.lastLine() > 0 ? "ends after line " + std::to_string(failure.lastLine())
                                   : std::string("holds no value");
    hint += ", before the dates in use: record from " + dates.recordStart;
    if (!dates.recordEnd.empty()) {
        hint += " to " + dates.recordEnd;
    }
    if (!dates.periodStart.empty()) {
        hint += ", " + dates.periodName + " " + dates.periodStart;
        if (!dates.periodEnd.empty()) {
            hint += " to " + dates.periodEnd;
        }
    }
    hint += ", year length " + std::to_string(dates.yearLength) +
            ". Change the dates to match the file, or choose a file that covers them.";
    return Failure(failure.number(), hint);
}

} // namespace varo::core
