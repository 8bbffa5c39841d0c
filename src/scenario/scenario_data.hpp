// The series a scenario run perturbs: every value of the input file held in memory, member
// by member, and the reading and writing of that file.
//
// The first line decides how the file is read. A first line of at most 14 characters with
// one member is read by value, one number after another wherever they stand; otherwise the
// file is read a line a day, member m being the number in characters 14m - 13 to 14m (an
// OUT file's zones). A line that does not reach a member's zone, or a zone of blanks, gives
// 0. The output is written as an OUT file, each value by "#####0.000" padded to its
// 14-character zone, and appears whole or not at all.
#pragma once

#include "core/progress.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::scenario {

inline constexpr long MaxDays = 75000;
inline constexpr int MaxMembers = 100;
inline constexpr std::string_view ReadingCaption = "Reading Data";
inline constexpr std::string_view WritingCaption = "Writing Data";
inline constexpr std::string_view WrongSizeMessage =
    "Data file seems to be wrong size for ensemble size entered - please check.";

struct ScenarioData {
    long dayCount = 0;
    // members[m][d]: member m + 1 on day d + 1.
    std::vector<std::vector<double>> members;

    int memberCount() const { return static_cast<int>(members.size()); }
};

// True when the file is read a line a day: its first line is longer than 14 characters.
bool readsByRows(std::string_view firstLine);

// The refusal of a file whose first line is too short for the ensemble size, or nothing.
std::optional<std::string> sizeRefusal(std::string_view firstLine, int ensembleSize);

// The first line of the file without a byte-order mark; nothing when it cannot be opened
// (the reading then says why).
std::optional<std::string> firstLineOf(const std::string& path);

// Reads the whole file for `ensembleSize` members (1 to 100). Reports "Reading Data" once
// a day and throws `core::Cancelled` on a stop. Fails with 53 or 70 when the file cannot be
// read, 13 naming the file, line and column of a value that is not a number, and 9 past
// 75,000 days. Throws `core::RunStopped` with `WrongSizeMessage` when `sizeRefusal` holds.
ScenarioData readScenarioData(const std::string& path, int ensembleSize, core::Progress& progress);

// Fails as creating the file would, before anything is read or written: 75 for a folder or
// a folder that cannot take a new file, 70 for an existing file that may not be written.
void checkOutputWritable(const std::string& path);

// Writes the OUT file: a line a day, the members' values by "#####0.000" in 14-character
// zones, CR LF line ends. The file is written beside its path under a temporary name and
// renamed over it when complete, so that a failure or a stop (under "Writing Data") leaves
// an earlier file of that name as it was and no half-written one.
void writeScenarioData(const std::string& path, const ScenarioData& data, core::Progress& progress);

} // namespace varo::scenario
