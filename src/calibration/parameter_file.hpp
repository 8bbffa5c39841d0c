// The parameter file (.PAR): a fitted model as text, written once at the end of a
// successful calibration and read by the weather generator and the screens that show it.
//
// Layout, one item a line, CR LF line ends:
//   1..11  predictor count k, groups (12, 4, 1), year length (366, 365, 360), record start
//          dd/mm/yyyy, record days, fit start as entered, fit days, "#TRUE#"/"#FALSE#" for
//          a conditional model, the transformation code (shortest single-precision text),
//          the constant 1, "True"/"False" for autoregression. Integers are printed with a
//          blank before and after them.
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
// The reader takes the format back, rows as numbers separated by blanks, and also the
// older form of the file that has no autoregression line. Problems are `core::Failure`s
// naming the file and line: 62 when the file ends early, 13 for an item that is not what
// its line must hold.
#pragma once

#include "core/program_state.hpp"

#include <array>
#include <string>
#include <vector>

namespace varo::calibration {

// One month of the main model (the occurrence model of a conditional model).
struct MonthParameters {
    std::vector<double> coefficients; // constant, one a predictor, then the lag when present
    double standardError = 0.0;
    double rSquared = 0.0;
    double lamda = 0.0; // Box-Cox only, and 0 unless the model is conditional
    double shift = 0.0;
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
    int groups = 12;
    int yearIndicator = 366;
    std::string recordStart; // dd/mm/yyyy
    long recordDays = 0;
    std::string fitStart; // as entered
    long fitDays = 0;
    bool conditional = false;
    float transformation = 1.0f;
    bool autoregression = false;
    bool hasAutoregressionLine = true; // false for a file of the older form
    std::string predictandName;
    std::vector<std::string> predictorNames;
    std::array<MonthParameters, 12> months; // January first
    std::array<AmountParameters, 12> amounts;
    std::string predictandPath;

    int predictorCount() const { return static_cast<int>(predictorNames.size()); }
    bool boxCox() const { return transformation == static_cast<float>(core::TransformBoxCox); }
};

// The whole text of the file, line ends included.
std::string parameterFileText(const ParameterFile& file);

// Writes the file, replacing one of the same name. Failures are those of writing files.
void writeParameterFile(const std::string& path, const ParameterFile& file);

ParameterFile readParameterFile(const std::string& path);

} // namespace varo::calibration
