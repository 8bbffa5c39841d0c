// Transformations of data files: a new data file made from an old one value by value
// (logarithms, powers, roots, a binary split, backward change), rows moved by a lag, or one
// ensemble member extracted. The Box-Cox pair lives in box_cox.hpp.
//
// Written forms: results of the numeric operations go through "####0.000000"; copies, lags,
// binary splits and changes are printed in the general form; a missing input and a refused
// value are printed as the missing code. Every value of a row is padded to the next
// 14-character print zone and the row ends with a line break; an extracted value stands
// alone on its line without padding.
#pragma once

#include "core/failure.hpp"
#include "core/progress.hpp"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace varo::dataprep {

// The option codes of the transform screen.
namespace transform {
inline constexpr int NaturalLog = 1;
inline constexpr int Log10 = 2;
inline constexpr int Square = 3;
inline constexpr int SquareRoot = 4;
inline constexpr int FourthRoot = 5;
inline constexpr int Inverse = 6;
inline constexpr int Power4 = 7;
inline constexpr int Exp = 8;
inline constexpr int Power10 = 9;
inline constexpr int Cube = 10;
inline constexpr int CubeRoot = 11;
inline constexpr int Copy = 12;
inline constexpr int Lag = 13;
inline constexpr int Binomial = 14;
inline constexpr int BackwardChange = 15;
inline constexpr int BoxCox = 16;
inline constexpr int UnBoxCox = 17;
inline constexpr int Count = 17;
} // namespace transform

struct TransformOption {
    int code;
    std::string_view caption;
    std::string_view toolTip;
    std::string_view name; // the command line's name
};

// The 17 options in code order.
const std::array<TransformOption, transform::Count>& transformOptions();
// The option of a command-line name ("ln", "boxcox"...), or nothing.
const TransformOption* findTransformOption(std::string_view name);

// The result of codes 1 to 12 and 14 for one value that is not missing; nothing when the
// value lies outside the operation's limits (x <= 0 under the logarithms, x >= 700 under e
// to the power x, ...). Code 14 gives 1 when x, rounded to single precision, is strictly
// greater than the threshold, else 0.
std::optional<double> transformValue(int code, double x, float threshold);

// The text a value of codes 1 to 12 and 14 is written as, before the zone padding: the
// result by "####0.000000" for codes 1 to 10 and for code 11 away from 0, else in the
// general printed form. A refused value is the missing code in the general printed form;
// `refused` tells which.
std::string writtenTransformValue(int code, double x, float threshold, double missingCode,
                                  bool& refused);

struct TransformSettings {
    int code = transform::NaturalLog;
    int columns = 1;        // values a row, 1 to 100
    int lag = 0;            // code 13: rows up (> 0) or down (< 0), -1000 to 1000
    bool wrap = false;      // code 13: wrap rows round instead of filling with missing values
    float threshold = 0.0f; // code 14
    bool extract = false;   // write one column only, whatever the code
    int extractColumn = 1;  // 1 to columns
    double missingCode = -999.0;
};

struct TransformCounts {
    long rows = 0;
    long missing = 0;      // of every column, or of the extracted column only
    long notConverted = 0; // refused values
};

// Rows a stored lag can hold, and the columns of a row.
inline constexpr long LagStoreRows = 52000;
inline constexpr int MaxColumns = 100;

// Transforms the file `inPath` into `outPath` under codes 1 to 15 (an existing output is
// replaced). Rows are read `columns` numbers at a time until the end of the file.
// Throws `core::Failure`: file failures, 62 when the values do not fill whole rows or a
// positive lag passes the end, 9 when a negative lag must store more than 52000 rows; the
// description then says that the output holds only what was written before the failure.
// Throws `core::RunStopped` with "Negative lag value is too 'large' for this file - file
// contains only N rows." (the output stays empty), and `core::Cancelled` on a stop
// request. Both files are closed in every case.
TransformCounts transformFile(const std::string& inPath, const std::string& outPath,
                              const TransformSettings& settings, core::Progress& progress);

// Reads the whole input once before a run writes anything, so that a value that is not a
// number, or a last row that `columns` values do not fill, refuses the run with the failure
// the run would meet (13 or 62) while every output is still as it was. Throws
// `core::Cancelled` on a stop request.
void checkTransformInput(const std::string& inPath, int columns, core::Progress& progress);

// The lines of the "Transformation complete" box, joined by carriage return and line feed.
std::string transformReportText(const TransformCounts& counts, bool extraction, double missingCode);

// The description file copied with a transform: the input's path with its last three
// characters replaced by "SIM", copied into the input's folder under the output's bare name
// with its last three characters replaced by "SIM". So the copy lands beside the input,
// wherever the output goes. Answers the target's path.
std::string descriptionCopyTarget(const std::string& inPath, const std::string& outPath);
std::string descriptionCopySource(const std::string& inPath);
// Copies the description file, replacing an existing target. Throws `core::Failure` 53
// when the source is absent and 75 when the target cannot be written.
std::string copyDescriptionFile(const std::string& inPath, const std::string& outPath);

// The closing lines shared by every transform report: nothing when every value was
// converted, else the count and the missing code the refused values were written as.
std::string notConvertedLines(long notConverted, double missingCode);

// The failure of a run that had opened `outPath` for writing, with a line added saying
// that the output holds only what was written before the failure.
core::Failure incompleteOutputFailure(const core::Failure& failure, const std::string& outPath);

} // namespace varo::dataprep
