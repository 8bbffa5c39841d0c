// A fitted model as the weather generator reads it from a parameter file.
//
// The header items are read one a line (numbers may carry the printed blanks); a file of
// the older form has no autoregression line, and its predictand name stands where that
// line would be. The parameter rows are read by the generator's own field rule: column k
// of a row is the number in the 14 characters starting at character 14k - 13, so a row
// is taken by its print zones and not by splitting on blanks. The reader is stateful,
// because a run opens its predictor and output files between reading the header and the
// rows.
//
// Every problem with the file is a `core::Failure` naming the file, the line and the text
// found: 62 when the file ends early, 13 when an item is not what its line must hold. A
// row holds exactly the values the header promises; a name line that holds numbers, or a
// row with a value missing or to spare, is refused as a predictor count that disagrees
// with the names and rows that follow.
#pragma once

#include "core/program_state.hpp"

#include "core/dates.hpp"
#include "core/series_file.hpp"

#include <array>
#include <string>
#include <vector>

namespace varo::weathergen {

// The most predictors a model may name, and the largest ensemble a run makes.
inline constexpr int MaxPredictors = 30;
inline constexpr int MaxEnsembleSize = 100;

// Model transformation codes of the amount model.
using core::TransformBoxCox;
using core::TransformFourthRoot;
using core::TransformInverseNormal;
using core::TransformLog;
using core::TransformNone;

struct ParameterHeader {
    int predictorCount = 0;
    int seasonCode = 12; // groups: 12 monthly, 4 seasonal, 1 annual
    std::string recordStartText;
    core::Date recordStart;
    long recordLength = 0;
    std::string fitStartText; // the calibration's fit start as it stands in the file
    core::Date fitStart;
    long fitLength = 0; // the calibration's fit length
    bool conditional = false;
    int transformCode = TransformNone;
    bool hasAutoRegressionLine = true; // false in the older form
    bool autoRegressive = false;
    std::string predictandName;
    std::vector<std::string> predictorNames;
    long firstPredictorLine = 0; // the line of the file that names the first predictor

    // Columns of an occurrence row before the Box-Cox pair: intercept, the predictor
    // coefficients, the lag coefficient when autoregressive, standard error, R squared.
    int occurrenceColumns() const { return predictorCount + 3 + (autoRegressive ? 1 : 0); }
    // Columns of an amount row: intercept, scale, coefficients, standard error, R squared.
    int amountColumns() const { return predictorCount + 4; }
};

// The rows of one calendar month.
struct MonthRows {
    std::vector<double> occurrence; // occurrenceColumns() values, column 1 first
    std::vector<double> amount;     // amountColumns() values; empty when unconditional
    double lamda = 0.0;             // Box-Cox only
    double shift = 0.0;
};

struct SynthesisModel {
    ParameterHeader header;
    std::array<MonthRows, 12> months; // January first
    std::string predictandPath;       // read for the inverse normal transformation only

    const MonthRows& month(int month) const { return months[static_cast<size_t>(month - 1)]; }
};

class ParameterFileReader {
public:
    // Opens the file; a missing file fails with 53.
    explicit ParameterFileReader(const std::string& path);

    // Lines 1 to 11 (10 in the older form), the predictand's name and the predictor
    // names, one whole line each.
    ParameterHeader readHeader();
    // The 12 occurrence rows, with lamda and shift for Box-Cox, then the 12 amount rows of
    // a conditional model.
    void readRows(SynthesisModel& model);
    // The line after the rows: the path of the predictand file used at calibration.
    std::string readPredictandPath();

    const std::string& path() const { return path_; }

private:
    std::string nextLine();
    long integerItem(const char* what, long low, long high);
    core::Date dateItem(std::string& text, const char* what);
    [[noreturn]] void fail(const std::string& text, const std::string& problem) const;
    std::vector<double> zoneFields(const std::string& line, int count, int predictorCount) const;

    std::string path_;
    core::SeriesReader file_;
    long line_ = 0;
};

// The whole file at once, as a run reads it (the predictand path only for the inverse
// normal transformation).
SynthesisModel readSynthesisModel(const std::string& path);

} // namespace varo::weathergen
