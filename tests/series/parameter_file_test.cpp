#include "series/parameter_file.hpp"

#include "core/failure.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::series;
using varo::testing::failsWith;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

ParameterFile annualTwoPredictors() {
    ParameterFile file;
    file.groups = 1;
    file.recordStart = "01/01/1961";
    file.recordDays = 10957;
    file.fitStart = "01/01/1961";
    file.fitDays = 10957;
    file.predictandName = "rain.dat";
    file.predictorNames = {"mslp.dat", "p500.dat"};
    for (auto& month : file.months) {
        month.coefficients = {2.5, -1.25, 0.03125};
        month.standardError = 1.0;
        month.rSquared = 0.45649;
    }
    file.predictandPath = "/data/station/rain.dat";
    return file;
}

// Monthly conditional Box-Cox with one predictor and the lag term; January carries the
// awkward values, one of them wider than its print zone.
ParameterFile conditionalBoxCox() {
    ParameterFile file;
    file.yearIndicator = 360;
    file.recordStart = "01/01/1961";
    file.recordDays = 10800;
    file.fitStart = "1/1/1961";
    file.fitDays = 3600;
    file.conditional = true;
    file.transformation = core::TransformBoxCox;
    file.autoregression = true;
    file.predictandName = "rain.dat";
    file.predictorNames = {"shum.dat"};
    for (auto& month : file.months) {
        month.coefficients = {0.5, 0.25, 0.75};
        month.standardError = 0.9; // not written for the occurrence model
        month.rSquared = 0.2;
        month.lamda = 0.1;
        month.shift = 0.0;
    }
    file.months[0].coefficients = {123456789.5, -1234567890.25, 1.0};
    file.months[0].rSquared = 0.0625;
    file.months[0].lamda = 0.0635;
    file.months[0].shift = -999.0;
    for (auto& amount : file.amounts) {
        amount.constant = 0.5;
        amount.meanRatio = 1.0;
        amount.coefficients = {-0.125};
        amount.standardError = 2.0;
        amount.rSquared = 0.3;
    }
    file.predictandPath = "/data/rain.dat";
    return file;
}

std::string repeated(const std::string& line, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += line;
    }
    return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// Header of a conditional Box-Cox model with one predictor, as a hand might write it.
std::string header(const std::string& autoRegression = "False\r\n") {
    return " 1 \r\n 12 \r\n 366 \r\n01/01/1961\r\n 10957 \r\n01/01/1961\r\n 3650 \r\n"
           "#TRUE#\r\n5\r\n 1 \r\n" +
           autoRegression + "rain.dat\r\nmslp.dat\r\n";
}

// occurrence: intercept, coefficient, standard error, R squared, then lamda and shift; the
// coefficient fills its whole column, so the standard error touches it.
const std::string OccurrenceRow =
    "0.500         -123456789.0000.000         0.300         0.250         1.500\r\n";
const std::string AmountRow =
    "0.100         1.000         2.000         0.700         0.400         \r\n";
const std::string Rows = repeated(OccurrenceRow, 12) + repeated(AmountRow, 12);

} // namespace

TEST(ParameterFileWriter, UnconditionalAnnualModelToTheByte) {
    const std::string row =
        "2.500         -1.250        0.031         1.000         0.456         \r\n";
    const std::string expected = " 2 \r\n 1 \r\n 366 \r\n01/01/1961\r\n 10957 \r\n01/01/1961\r\n"
                                 " 10957 \r\n#FALSE#\r\n1\r\n 1 \r\nFalse\r\nrain.dat\r\n"
                                 "mslp.dat\r\np500.dat\r\n" +
                                 repeated(row, 12) + "/data/station/rain.dat\r\n";
    EXPECT_EQ(parameterFileText(annualTwoPredictors()), expected);

    TempDir dir;
    const auto path = dir.path("MODEL.PAR");
    dir.write("MODEL.PAR", "an older model that is replaced");
    writeParameterFile(path, annualTwoPredictors());
    EXPECT_EQ(readFile(path), expected);
}

TEST(ParameterFileWriter, ConditionalBoxCoxRowsEndAtTheShiftWithoutPadding) {
    const std::string text = parameterFileText(conditionalBoxCox());
    const std::string january = "123456789.500 -1234567890.250             1.000         0.000  "
                                "       0.062         0.064         -999.000\r\n";
    const std::string otherMonths = "0.500         0.250         0.750         0.000         "
                                    "0.200         0.100         0.000\r\n";
    const std::string amounts = "0.500         1.000         -0.125        2.000         0.300  "
                                "       \r\n";
    const std::string expected =
        " 1 \r\n 12 \r\n 360 \r\n01/01/1961\r\n 10800 \r\n1/1/1961\r\n"
        " 3600 \r\n#TRUE#\r\n5\r\n 1 \r\nTrue\r\nrain.dat\r\nshum.dat\r\n" +
        january + repeated(otherMonths, 11) + repeated(amounts, 12) + "/data/rain.dat\r\n";
    EXPECT_EQ(text, expected);
}

TEST(ParameterFileReader, ReadsBackWhatWasWrittenInBothFormsWithEitherLineEnd) {
    TempDir dir;
    ParameterFile older = annualTwoPredictors();
    older.hasAutoregressionLine = false; // the older form
    for (const ParameterFile& original : {annualTwoPredictors(), conditionalBoxCox(), older}) {
        // Every item is written and three decimals survive, so what is read writes the same
        // bytes again; line ends of another system are read as well.
        const std::string text = parameterFileText(original);
        std::string unix = text;
        std::erase(unix, '\r');
        for (const std::string& form : {text, unix}) {
            EXPECT_EQ(parameterFileText(readParameterFile(dir.write("ROUND.PAR", form))), text);
        }
    }
    // The value wider than its zone is taken whole and the next is read from the zone
    // after it.
    const ParameterFile boxCox =
        readParameterFile(dir.write("BOX.PAR", parameterFileText(conditionalBoxCox())));
    EXPECT_EQ(boxCox.months[0].coefficients, (std::vector<double>{123456789.5, -1234567890.25, 1}));
    EXPECT_EQ(boxCox.months[0].standardError, 0.0);
    EXPECT_EQ(boxCox.months[0].lamda, 0.064);
    EXPECT_EQ(boxCox.months[0].shift, -999.0);
    EXPECT_EQ(boxCox.amounts[11].coefficients, std::vector<double>{-0.125});
    EXPECT_EQ(boxCox.amounts[11].rSquared, 0.3);
    EXPECT_EQ(boxCox.firstPredictorLine(), 13);
    EXPECT_EQ(older.firstPredictorLine(), 12);
}

TEST(ParameterFileReader, RowsAreTakenByFourteenCharacterColumnsNotByBlanks) {
    TempDir dir;
    const auto model = readParameterFile(dir.write("m.PAR", header() + Rows));
    const MonthParameters& march = model.month(3);
    EXPECT_EQ(march.coefficients, (std::vector<double>{0.5, -123456789.0}));
    EXPECT_EQ(march.standardError, 0.0);
    EXPECT_EQ(march.rSquared, 0.3);
    EXPECT_EQ(march.lamda, 0.25);
    EXPECT_EQ(march.shift, 1.5);
    const AmountParameters& amount = model.amount(3);
    EXPECT_EQ(amount.constant, 0.1);
    EXPECT_EQ(amount.meanRatio, 1.0);
    EXPECT_EQ(amount.coefficients, std::vector<double>{2.0});
    EXPECT_EQ(amount.standardError, 0.7);
    EXPECT_EQ(amount.rSquared, 0.4);
    EXPECT_EQ(model.recordStart, "01/01/1961");
    EXPECT_EQ(model.recordStartDate(), (core::Date{1, 1, 1961}));
    EXPECT_EQ(model.recordDays, 10957);
    EXPECT_EQ(model.fitDays, 3650);
    EXPECT_TRUE(model.conditional);
    EXPECT_FALSE(model.autoregression);
    EXPECT_TRUE(model.hasAutoregressionLine);
    EXPECT_EQ(model.predictorNames, std::vector<std::string>{"mslp.dat"});
    EXPECT_TRUE(model.predictandPath.empty()); // no last line, and Box-Cox needs none
}

TEST(ParameterFileReader, TheHeaderAloneLeavesTheRowsUnread) {
    TempDir dir;
    const auto shown = readParameterHeader(dir.write("h.PAR", header("True\r\n") + "rows?\r\n"));
    EXPECT_TRUE(shown.autoregression);
    EXPECT_EQ(shown.fitStart, "01/01/1961");
    EXPECT_EQ(shown.predictandName, "rain.dat");
    EXPECT_TRUE(shown.months[0].coefficients.empty());
    // Without the autoregression line the predictand stands where it would be.
    const std::string older = replaced(header(), "False\r\n", "");
    const auto olderShown = readParameterHeader(dir.write("o.PAR", older));
    EXPECT_FALSE(olderShown.hasAutoregressionLine);
    EXPECT_FALSE(olderShown.autoregression);
    EXPECT_EQ(olderShown.predictandName, "rain.dat");
}

TEST(ParameterFileReader, OnlyTheInverseNormalModelNeedsThePredictandPath) {
    TempDir dir;
    const std::string good = parameterFileText(annualTwoPredictors());
    const std::string cut = good.substr(0, good.rfind("/data"));
    EXPECT_TRUE(readParameterFile(dir.write("CUT.PAR", cut)).predictandPath.empty());
    const std::string inverseNormal = replaced(cut, "\r\n1\r\n", "\r\n4\r\n");
    EXPECT_TRUE(failsWith([&] { readParameterFile(dir.write("IN.PAR", inverseNormal)); }, 62,
                          "IN.PAR' ends after line 26, before its predictand path."));
    EXPECT_EQ(readParameterFile(dir.write("PATH.PAR", inverseNormal + "  /d/rain.dat \r\n"))
                  .predictandPath,
              "/d/rain.dat");
}

TEST(ParameterFileReader, BadFilesNameTheFileLineAndValue) {
    const std::string text = header() + Rows;
    const std::string calibrated = parameterFileText(annualTwoPredictors());
    const std::string wideRow = "0.500         1.000         0.000         0.300         "
                                "0.250         1.500         7.000\r\n";
    const std::string year = replaced(text, " 366 ", " 367 ");
    struct Case {
        std::string name;
        std::string content;
        int number;
        std::string part; // '@' stands for the file's path
    };
    const std::vector<Case> cases{
        {"cut in the header", " 1 \r\n 12 \r\n", 62,
         "The parameter file '@' ends after line 2, before its year length."},
        {"cut in the amounts", header() + repeated(OccurrenceRow, 12) + repeated(AmountRow, 3), 62,
         "ends after line 28, before its amount row of month 4."},
        {"a word as the count", "two\r\n" + text.substr(5), 13, "'two' on line 1"},
        {"a count above 30", " 31 \r\n" + text.substr(5), 13,
         "'31' on line 1 of '@' is not a predictor count from 0 to 30."},
        {"groups 6", replaced(text, " 12 ", " 6 "), 13,
         "'6' on line 2 of '@' is not a number of groups (12, 4 or 1)."},
        {"year length 367", year, 13,
         "'367' on line 3 of '@' is not a year length (366, 365 or 360)."},
        {"a byte-order mark before it", "\xEF\xBB\xBF" + year, 13, "'367' on line 3"},
        {"a record start not a date", replaced(text, "01/01/1961", "1961-01-01"), 13,
         "'1961-01-01' on line 4"},
        {"a flag without its marks", replaced(text, "#TRUE#", "TRUE"), 13,
         "'TRUE' on line 8 of '@' is not the process flag #TRUE# or #FALSE#."},
        {"the calibration's flag", replaced(calibrated, "#FALSE#", "FALSE"), 13,
         "'FALSE' on line 8"},
        {"transformation 6", replaced(text, "\r\n5\r\n", "\r\n6\r\n"), 13, "'6' on line 9"},
        {"control bytes", "\x01\x7f" + text.substr(3), 13, "'\\x01\\x7F' on line 1 of '@'"},
        {"a word in a row", replaced(text, "0.300", "0.3x0"), 13,
         "Column 4 (characters 43 to 56) of line 14"},
        {"a word in a calibrated row", replaced(calibrated, "-1.250", "-1.2x0"), 13,
         "Column 2 (characters 15 to 28) of line 15 of '@' holds '-1.2x0', which is not a "
         "number"},
        {"a short row", header() + "0.500         1.000         \r\n" + Rows, 13,
         "Column 3 (characters 29 to 42) of line 14 of '@' is empty where a number must stand; "
         "line 1 counts 1 predictor, so the row holds 6 values in 14-character columns."},
        {"a calibrated row without R squared", replaced(calibrated, "0.456", "     "), 13,
         "Column 5 (characters 57 to 70) of line 15 of '@' is empty where a number must stand; "
         "line 1 counts 2 predictors, so the row holds 5 values"},
        {"a row with a value to spare", header() + wideRow + Rows, 13,
         "The text after column 6 of line 14 of '@' holds '7.000', more than the row holds"},
        {"a wide value that is no number",
         replaced(text, "-123456789.0000.000", "-123456789.000x.000"), 13,
         "of line 14 of '@' holds 'x.000'"},
        {"a number beyond doubles", replaced(text, "0.300", "1e999"), 13,
         "holds '1e999', which is a number beyond the range this program holds"},
        {"a name missing", replaced(text, "mslp.dat\r\n", ""), 13,
         "Line 13 of '@' should name predictor 1 of the 1 that line 1 counts, but holds numbers"},
    };
    TempDir dir;
    for (size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        const std::string path = dir.write("case" + std::to_string(i) + ".PAR", c.content);
        std::string part = c.part;
        if (const size_t at = part.find('@'); at != std::string::npos) {
            part.replace(at, 1, path);
        }
        EXPECT_TRUE(failsWith([&] { readParameterFile(path); }, c.number, part)) << c.name;
    }
    EXPECT_TRUE(failsWith([&] { readParameterFile(dir.path("none.PAR")); },
                          core::failure::FileNotFound, "none.PAR"));
    EXPECT_TRUE(failsWith([&] { readParameterHeader(dir.path("none.PAR")); },
                          core::failure::FileNotFound, "none.PAR"));
}

TEST(ParameterFile, DatesOfAModelMadeInCodeAreChecked) {
    ParameterFile file = annualTwoPredictors();
    file.fitStart = "1/2/1971";
    EXPECT_EQ(file.fitStartDate(), (core::Date{1, 2, 1971}));
    file.recordStart = "soon";
    EXPECT_TRUE(failsWith([&] { (void)file.recordStartDate(); }, core::failure::TypeMismatch,
                          "The model's record start 'soon' is not a date."));
}
