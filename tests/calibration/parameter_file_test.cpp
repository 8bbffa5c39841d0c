#include "calibration/parameter_file.hpp"

#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo::calibration;
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
// awkward values.
ParameterFile conditionalBoxCox() {
    ParameterFile file;
    file.yearIndicator = 360;
    file.recordStart = "01/01/1961";
    file.recordDays = 10800;
    file.fitStart = "1/1/1961";
    file.fitDays = 3600;
    file.conditional = true;
    file.transformation = 5.0f;
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

::testing::AssertionResult readFails(const std::string& path, int number,
                                     std::string_view part = {}) {
    return varo::testing::failsWith([&] { readParameterFile(path); }, number, part);
}

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
    const ParameterFile boxCox =
        readParameterFile(dir.write("BOX.PAR", parameterFileText(conditionalBoxCox())));
    EXPECT_EQ(boxCox.months[0].coefficients, (std::vector<double>{123456789.5, -1234567890.25, 1}));
    EXPECT_EQ(boxCox.months[0].standardError, 0.0);
    EXPECT_EQ(boxCox.months[0].lamda, 0.064);
    EXPECT_EQ(boxCox.months[0].shift, -999.0);
    EXPECT_EQ(boxCox.amounts[11].coefficients, std::vector<double>{-0.125});
    EXPECT_EQ(boxCox.amounts[11].rSquared, 0.3);
}

TEST(ParameterFileReader, BadFilesNameTheFileAndLine) {
    TempDir dir;
    const std::string good = parameterFileText(annualTwoPredictors());
    EXPECT_TRUE(readFails(dir.write("CUT.PAR", good.substr(0, good.rfind("/data"))), 62,
                          "CUT.PAR' ends at line 26, before its predictand path"));
    std::string word = good;
    word.replace(word.find("-1.250"), 6, "-1.2x0");
    EXPECT_TRUE(readFails(dir.write("WORD.PAR", word), 13, "'-1.2x0' on line 15"));
    std::string shortRow = good;
    shortRow.replace(shortRow.find("0.456"), 5, "     ");
    EXPECT_TRUE(readFails(dir.write("SHORT.PAR", shortRow), 13,
                          "holds 4 numbers where the parameter row of month 1 has 5"));
    std::string flag = good;
    flag.replace(flag.find("#FALSE#"), 7, "FALSE");
    EXPECT_TRUE(readFails(dir.write("FLAG.PAR", flag), 13, "'FALSE' on line 8"));
    EXPECT_TRUE(readFails(dir.path("NONE.PAR"), 53));
}
