#include "calibration/parameter_file.hpp"
#include "core/failure.hpp"
#include "support/temp_dir.hpp"
#include "weathergen/synthesis_model.hpp"

#include <gtest/gtest.h>

using namespace varo;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

// Header of a conditional Box-Cox model with one predictor; rows follow.
std::string header(const std::string& autoRegression = "False\r\n") {
    return " 1 \r\n 12 \r\n 366 \r\n01/01/1961\r\n 10957 \r\n01/01/1961\r\n 3650 \r\n"
           "#TRUE#\r\n5\r\n 1 \r\n" +
           autoRegression + "rain.dat\r\nmslp.dat\r\n";
}

std::string repeat(const std::string& line, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += line;
    }
    return text;
}

// occurrence: intercept, coefficient, standard error, R squared, then lamda and shift
const std::string OccurrenceRow =
    "0.500         -123456789.0000.000         0.300         0.250         1.500\r\n";
const std::string AmountRow =
    "0.100         1.000         2.000         0.700         0.400         \r\n";

void expectFailure(const std::string& path, int number, const std::string& part) {
    try {
        weathergen::readSynthesisModel(path);
        ADD_FAILURE() << "no failure";
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), number) << failure.description();
        EXPECT_NE(failure.description().find(part), std::string::npos) << failure.description();
    }
}

} // namespace

TEST(ParameterReading, RowsAreTakenByFourteenCharacterColumnsNotByBlanks) {
    TempDir dir;
    const auto path =
        dir.write("m.PAR", header() + repeat(OccurrenceRow, 12) + repeat(AmountRow, 12));
    const auto model = weathergen::readSynthesisModel(path);
    const auto& march = model.month(3);
    // The coefficient fills its whole column, so the standard error touches it.
    EXPECT_EQ(march.occurrence, (std::vector<double>{0.5, -123456789.0, 0.0, 0.3}));
    EXPECT_EQ(march.lamda, 0.25);
    EXPECT_EQ(march.shift, 1.5);
    EXPECT_EQ(march.amount, (std::vector<double>{0.1, 1.0, 2.0, 0.7, 0.4}));
    EXPECT_EQ(model.header.recordStartText, "01/01/1961");
    EXPECT_EQ(model.header.recordLength, 10957);
    EXPECT_EQ(model.header.fitLength, 3650);
    EXPECT_TRUE(model.header.conditional);
    EXPECT_FALSE(model.header.autoRegressive);
    EXPECT_TRUE(model.header.hasAutoRegressionLine);
    EXPECT_EQ(model.header.predictorNames, std::vector<std::string>{"mslp.dat"});
    EXPECT_TRUE(model.predictandPath.empty()); // read for the inverse normal only
}

TEST(ParameterReading, BadFilesNameTheFileLineAndValue) {
    TempDir dir;
    const std::string rows = repeat(OccurrenceRow, 12) + repeat(AmountRow, 12);
    expectFailure(dir.path("none.PAR"), core::failure::FileNotFound, "none.PAR");
    expectFailure(dir.write("a.PAR", " 1 \r\n 12 \r\n"), core::failure::InputPastEnd,
                  "ends after line 2");
    expectFailure(dir.write("b.PAR", header() + repeat(OccurrenceRow, 12) + repeat(AmountRow, 3)),
                  core::failure::InputPastEnd, "ends after line 28");
    std::string text = header() + rows;
    expectFailure(dir.write("c.PAR", "two\r\n" + text.substr(5)), core::failure::TypeMismatch,
                  "'two' on line 1");
    expectFailure(dir.write("d.PAR", " 31 \r\n" + text.substr(5)), core::failure::TypeMismatch,
                  "'31' on line 1");
    std::string badFlag = text;
    badFlag.replace(badFlag.find("#TRUE#"), 6, "TRUE");
    expectFailure(dir.write("e.PAR", badFlag), core::failure::TypeMismatch,
                  "'TRUE' on line 8 of '" + dir.path("e.PAR") + "'");
    std::string badCode = text;
    badCode.replace(badCode.find("\r\n5\r\n"), 5, "\r\n6\r\n");
    expectFailure(dir.write("f.PAR", badCode), core::failure::TypeMismatch, "'6' on line 9");
    std::string badDate = text;
    badDate.replace(badDate.find("01/01/1961"), 10, "1961-01-01");
    expectFailure(dir.write("g.PAR", badDate), core::failure::TypeMismatch,
                  "'1961-01-01' on line 4");
    std::string badField = text;
    badField.replace(badField.find("0.300"), 5, "0.3x0");
    expectFailure(dir.write("h.PAR", badField), core::failure::TypeMismatch,
                  "Column 4 (characters 43 to 56) of line 14");
    const std::string shortRow = "0.500         1.000         \r\n";
    expectFailure(dir.write("i.PAR", header() + shortRow + rows), core::failure::TypeMismatch,
                  "Column 3 (characters 29 to 42) of line 14 of '" + dir.path("i.PAR") +
                      "' is empty where a number must stand; line 1 counts 1 predictor, so the "
                      "row holds 6 values in 14-character columns.");
    const std::string wideRow = "0.500         1.000         0.000         0.300         "
                                "0.250         1.500         7.000\r\n";
    expectFailure(dir.write("j.PAR", header() + wideRow + rows), core::failure::TypeMismatch,
                  "The text after column 6 of line 14 of '" + dir.path("j.PAR") +
                      "' holds '7.000', more than the row holds");
    std::string nameless = text;
    nameless.replace(nameless.find("mslp.dat\r\n"), 10, "");
    expectFailure(dir.write("k.PAR", nameless), core::failure::TypeMismatch,
                  "Line 13 of '" + dir.path("k.PAR") +
                      "' should name predictor 1 of the 1 that line 1 counts, but holds numbers");
    std::string year = text;
    year.replace(year.find(" 366 "), 5, " 367 ");
    expectFailure(dir.write("m.PAR", year), core::failure::TypeMismatch,
                  "'367' on line 3 of '" + dir.path("m.PAR") +
                      "' is not a year length (366, 365 or 360).");
    expectFailure(dir.write("n.PAR", "\x01\x7f" + text.substr(3)), core::failure::TypeMismatch,
                  "'\\x01\\x7F' on line 1 of '" + dir.path("n.PAR") + "'");
    expectFailure(dir.write("o.PAR", "\xEF\xBB\xBF" + year), core::failure::TypeMismatch,
                  "'367' on line 3");
    std::string huge = text;
    huge.replace(huge.find("0.300"), 5, "1e999");
    expectFailure(dir.write("l.PAR", huge), core::failure::TypeMismatch,
                  "holds '1e999', which is a number beyond the range this program holds");
}

TEST(ParameterReading, ReadsWhatCalibrationWrites) {
    // The calibration's writer and the generator's zone reader are separate codes of the
    // same format; a conditional, autoregressive Box-Cox model must come back whole.
    calibration::ParameterFile written;
    written.recordStart = "01/01/1961";
    written.recordDays = 10957;
    written.fitStart = "1/1/1971";
    written.fitDays = 3652;
    written.conditional = true;
    written.transformation = 5.0f;
    written.autoregression = true;
    written.predictandName = "rain.dat";
    written.predictorNames = {"obs_mslp.dat", "obs_p500.dat", "obs_shum.dat"};
    written.predictandPath = "/data/rain.dat";
    for (int m = 0; m < 12; ++m) {
        auto& month = written.months[static_cast<size_t>(m)];
        month.coefficients = {0.4 + m * 0.01, -1234.5678, 0.25, -0.0004, 0.3};
        month.standardError = 0.0;
        month.rSquared = 0.31;
        month.lamda = m % 2 == 0 ? 0.0 : 0.125 * m;
        month.shift = -0.5 * m;
        auto& amount = written.amounts[static_cast<size_t>(m)];
        amount.constant = 1.5;
        amount.meanRatio = 0.987;
        amount.coefficients = {0.125 * m, -99999.999, 2.0};
        amount.standardError = 0.75;
        amount.rSquared = 0.2;
    }
    TempDir dir;
    calibration::writeParameterFile(dir.path("cal.PAR"), written);
    const auto read = weathergen::readSynthesisModel(dir.path("cal.PAR"));
    EXPECT_EQ(read.header.predictorCount, 3);
    EXPECT_EQ(read.header.fitStartText, "1/1/1971");
    EXPECT_TRUE(read.header.conditional && read.header.autoRegressive);
    EXPECT_EQ(read.header.transformCode, weathergen::TransformBoxCox);
    EXPECT_EQ(read.header.predictorNames, written.predictorNames);
    for (int m = 0; m < 12; ++m) {
        const auto& month = read.months[static_cast<size_t>(m)];
        const auto& source = written.months[static_cast<size_t>(m)];
        ASSERT_EQ(month.occurrence.size(), 7u) << m;
        for (size_t i = 0; i < 5; ++i) {
            EXPECT_NEAR(month.occurrence[i], source.coefficients[i], 0.0005) << m << " " << i;
        }
        EXPECT_EQ(month.occurrence[5], 0.0);
        EXPECT_EQ(month.occurrence[6], 0.31);
        EXPECT_NEAR(month.lamda, source.lamda, 0.0005) << m;
        EXPECT_EQ(month.shift, source.shift) << m;
        const auto& amount = written.amounts[static_cast<size_t>(m)];
        EXPECT_EQ(month.amount, (std::vector<double>{1.5, 0.987, amount.coefficients[0], -99999.999,
                                                     2.0, 0.75, 0.2}))
            << m;
    }
}
