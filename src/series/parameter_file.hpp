// The parameter file (.PAR): a fitted model as text, written once at the end of a
// successful calibration, run by the weather generator and shown by its screen.
//
// Layout, one item a line, CR LF line ends:
//   1..11  predictor count k, groups (12, 4, 1), year length (366, 365, 360), record start
//          dd/mm/yyyy, record days, fit start as entered, fit days, "#TRUE#"/"#FALSE#" for
//          a conditional model, the transformation code (1 to 5), the constant 1,
//          "True"/"False" for autoregression. Integers are printed with a blank before and
//          after them.
//   12     the predictand's file name; then k predictor file names in model order.
//   rows   12 rows, January first, of: constant, k coefficients, the lag coefficient when
//          autoregressive, standard error ("0.000" for the occurrence model of a
//          conditional model), R squared, and for the Box-Cox transformation (code 5) lamda
//          and shift. A conditional model adds 12 amount rows of: constant, mean ratio, k
//          coefficients, standard error, R squared.
//   last   the full path of the predictand file.
// Every row value is formatted "####0.000" and left in 14-character print zones; a row is
// padded after its last value, except a row ending in the Box-Cox shift.
//
// One reader serves the generator and the screens. Header items are read one a line
// (numbers may carry the printed blanks); a file of the older form has no autoregression
// line, and its predictand name stands where that line would be. The constant 1 is not
// checked. A row is read by its print zones, not by splitting on blanks: column k of a row
// is the number in the 14 characters of its zone, so that a value filling its zone may be
// followed directly by the next. A value longer than its zone, which the writer lets pass
// into the next zone, is taken whole, and the next value is read from the zone after it.
// A row holds exactly the values the header promises. The predictand's path is needed by
// the inverse normal transformation alone; other models may lack the last line.
//
// Every problem with the file is a `core::Failure` naming the file, the line and the text
// found: 53 when it is missing, 62 when it ends early (naming the item it ends before), 13
// when an item is not what its line must hold. A name line that holds numbers, or a row
// with a value missing or to spare, is refused as a predictor count that disagrees with
// the names and rows that follow.
#pragma once

#include "core/dates.hpp"
#include "core/program_state.hpp"

#include <array>
#include <string>
#include <vector>

namespace varo::series {

// The most predictors a model read from a file may name.
inline constexpr int MaxModelPredictors = 30;

// One month of the main model (the occurrence model of a conditional model).
struct MonthParameters {
    std::vector<double> coefficients; // constant, one a predictor, then the lag when present
    double standardError = 0.0;
    double rSquared = 0.0;
    double lamda = 0.0; // Box-Cox only, and 0 unless the model is conditional
    double shift = 0.0;

    double constant() const { return coefficients.front(); }
    // Predictor i counts from 0, in the order of the names.
    double predictorCoefficient(size_t i) const { return coefficients[i + 1]; }
    // The coefficient of the lag term, of a model that has one.
    double lagCoefficient() const { return coefficients.back(); }
};

// One month of the amount model of a conditional model.
struct AmountParameters {
    double constant = 0.0;
    double meanRatio = 1.0;
    std::vector<double> coefficients; // one a predictor; the amount model has no lag term
    double standardError = 0.0;
    double rSquared = 0.0;
};

struct ParameterFile {
    int groups = 12; // 12 monthly, 4 seasonal, 1 annual
    int yearIndicator = 366;
    std::string recordStart; // dd/mm/yyyy
    long recordDays = 0;
    std::string fitStart; // as entered
    long fitDays = 0;
    bool conditional = false;
    core::TransformationCode transformation = core::TransformNone;
    bool autoregression = false;
    bool hasAutoregressionLine = true; // false for a file of the older form
    std::string predictandName;
    std::vector<std::string> predictorNames;
    std::array<MonthParameters, 12> months; // January first
    std::array<AmountParameters, 12> amounts;
    std::string predictandPath;

    int predictorCount() const { return static_cast<int>(predictorNames.size()); }
    bool boxCox() const { return transformation == core::TransformBoxCox; }
    // Month 1 to 12.
    const MonthParameters& month(int month) const { return months[static_cast<size_t>(month - 1)]; }
    const AmountParameters& amount(int month) const {
        return amounts[static_cast<size_t>(month - 1)];
    }
    // The record start and the fit start as dates; a model read from a file always has
    // them, and one made otherwise fails with 13 when it has not.
    core::Date recordStartDate() const;
    core::Date fitStartDate() const;
    // The line of the file that names the first predictor.
    long firstPredictorLine() const { return hasAutoregressionLine ? 13 : 12; }
};

// The whole text of the file, line ends included.
std::string parameterFileText(const ParameterFile& file);

// Writes the file, replacing one of the same name. Failures are those of writing files.
void writeParameterFile(const std::string& path, const ParameterFile& file);

// The whole file.
ParameterFile readParameterFile(const std::string& path);
// The header and the names alone, as a screen shows them before a run; the rows are not
// read and stay empty.
ParameterFile readParameterHeader(const std::string& path);

} // namespace varo::series
