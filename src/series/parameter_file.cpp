#include "series/parameter_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"
#include "core/series_file.hpp"

#include <algorithm>

namespace varo::series {

namespace {

constexpr std::string_view LineEnd = "\r\n";
constexpr size_t Zone = core::PrintZoneWidth;

void appendLine(std::string& text, std::string_view line) {
    text += line;
    text += LineEnd;
}

// Values in print zones; the last one is padded unless `padLast` is false.
void appendRow(std::string& text, const std::vector<double>& values, bool padLast) {
    static const core::NumberFormat format("####0.000");
    const size_t lineStart = text.size();
    for (size_t i = 0; i < values.size(); ++i) {
        format.appendTo(text, values[i]);
        if (padLast || i + 1 < values.size()) {
            core::padToNextZone(text, lineStart);
        }
    }
    text += LineEnd;
}

std::vector<double> monthRow(const ParameterFile& file, const MonthParameters& month) {
    std::vector<double> row = month.coefficients;
    // The occurrence model's noise plays no part in a simulation.
    row.push_back(file.conditional ? 0.0 : month.standardError);
    row.push_back(month.rSquared);
    if (file.boxCox()) {
        row.push_back(month.lamda);
        row.push_back(month.shift);
    }
    return row;
}

std::vector<double> amountRow(const AmountParameters& amount) {
    std::vector<double> row{amount.constant, amount.meanRatio};
    row.insert(row.end(), amount.coefficients.begin(), amount.coefficients.end());
    row.push_back(amount.standardError);
    row.push_back(amount.rSquared);
    return row;
}

core::Date dateOf(const std::string& text, const char* what) {
    const auto date = core::parseDate(text);
    if (!date) {
        throw core::Failure(core::failure::TypeMismatch,
                            "The model's " + std::string(what) + " '" + text + "' is not a date.");
    }
    return *date;
}

} // namespace

core::Date ParameterFile::recordStartDate() const {
    return dateOf(recordStart, "record start");
}

core::Date ParameterFile::fitStartDate() const {
    return dateOf(fitStart, "fit start");
}

std::string parameterFileText(const ParameterFile& file) {
    std::string text;
    appendLine(text, core::printInteger(file.predictorCount()));
    appendLine(text, core::printInteger(file.groups));
    appendLine(text, core::printInteger(file.yearIndicator));
    appendLine(text, file.recordStart);
    appendLine(text, core::printInteger(file.recordDays));
    appendLine(text, file.fitStart);
    appendLine(text, core::printInteger(file.fitDays));
    appendLine(text, file.conditional ? "#TRUE#" : "#FALSE#");
    appendLine(text, core::generalTextSingle(static_cast<float>(file.transformation)));
    appendLine(text, core::printInteger(1));
    if (file.hasAutoregressionLine) {
        appendLine(text, file.autoregression ? "True" : "False");
    }
    appendLine(text, file.predictandName);
    for (const std::string& name : file.predictorNames) {
        appendLine(text, name);
    }
    for (const MonthParameters& month : file.months) {
        appendRow(text, monthRow(file, month), !file.boxCox());
    }
    if (file.conditional) {
        for (const AmountParameters& amount : file.amounts) {
            appendRow(text, amountRow(amount), true);
        }
    }
    appendLine(text, file.predictandPath);
    return text;
}

void writeParameterFile(const std::string& path, const ParameterFile& file) {
    core::TextFileWriter writer(path);
    writer.write(parameterFileText(file));
    writer.close();
}

namespace {

// A parameter row where a predictor's file name should stand: the header's count is
// larger than the list of names. Every row holds at least a constant, a standard error and
// R squared, in print zones.
bool looksLikeRow(std::string_view text) {
    const auto zones = static_cast<int>((text.size() + Zone - 1) / Zone);
    for (int k = 1; k <= zones; ++k) {
        double value = 0.0;
        if (!core::zoneProblem(text, k, value).empty()) {
            return false;
        }
    }
    return zones >= 3;
}

constexpr std::string_view Blanks = " \t";

// The zone from `start` holds a whole 14 characters and the text runs on without a blank.
bool runsPastZone(std::string_view line, size_t start) {
    return start + Zone < line.size() &&
           Blanks.find(line[start + Zone]) == std::string_view::npos &&
           line.substr(start, Zone).find_first_of(Blanks) == std::string_view::npos;
}

// Reads the file item by item; every problem names the file, the line and what stands
// there.
class Reader {
public:
    explicit Reader(const std::string& path) : path_(path), file_(path) {}

    void readHeader(ParameterFile& file);
    void readRows(ParameterFile& file);
    void readPredictandPath(ParameterFile& file);

private:
    // The next line; `what` names the item it should hold, for a file that ends before it.
    std::string nextLine(const std::string& what);
    std::string item(const std::string& what) {
        return std::string(core::trimBlanks(nextLine(what)));
    }
    long integerItem(const std::string& what, const char* problem, long low, long high);
    long oneOf(const std::string& what, const char* problem, long a, long b, long c);
    std::string dateItem(const std::string& what, const char* problem);
    [[noreturn]] void fail(const std::string& text, const std::string& problem) const;
    std::vector<double> rowValues(const std::string& what, int count, int predictorCount);

    std::string path_;
    core::SeriesReader file_;
    long line_ = 0;
};

std::string Reader::nextLine(const std::string& what) {
    try {
        std::string text = file_.readLine();
        ++line_;
        return text;
    } catch (const core::Failure& failure) {
        if (failure.number() != core::failure::InputPastEnd) {
            throw;
        }
        throw core::Failure(core::failure::InputPastEnd,
                            "The parameter file '" + path_ + "' ends after line " +
                                std::to_string(line_) + ", before its " + what + ".");
    }
}

void Reader::fail(const std::string& text, const std::string& problem) const {
    throw core::Failure(core::failure::TypeMismatch, core::quotedInput(text) + " on line " +
                                                         std::to_string(line_) + " of '" + path_ +
                                                         "' is not " + problem + ".");
}

long Reader::integerItem(const std::string& what, const char* problem, long low, long high) {
    const std::string text = item(what);
    if (!core::isNumeric(text)) {
        fail(text, problem);
    }
    const double value = core::leadingNumber(text);
    if (!(value >= static_cast<double>(low) - 0.5 && value <= static_cast<double>(high) + 0.5)) {
        fail(text, problem);
    }
    const long long rounded = core::roundHalfEven(value);
    if (rounded < low || rounded > high) {
        fail(text, problem);
    }
    return static_cast<long>(rounded);
}

long Reader::oneOf(const std::string& what, const char* problem, long a, long b, long c) {
    const long value = integerItem(what, problem, std::min({a, b, c}), std::max({a, b, c}));
    if (value != a && value != b && value != c) {
        fail(std::to_string(value), problem);
    }
    return value;
}

std::string Reader::dateItem(const std::string& what, const char* problem) {
    std::string text = item(what);
    if (!core::parseDate(text)) {
        fail(text, problem);
    }
    return text;
}

void Reader::readHeader(ParameterFile& file) {
    const int count = static_cast<int>(
        integerItem("predictor count", "a predictor count from 0 to 30", 0, MaxModelPredictors));
    file.groups =
        static_cast<int>(oneOf("number of groups", "a number of groups (12, 4 or 1)", 12, 4, 1));
    // A run uses the settings' year length, but a file without one here is no parameter file.
    file.yearIndicator =
        static_cast<int>(oneOf("year length", "a year length (366, 365 or 360)", 366, 365, 360));
    file.recordStart = dateItem("record start date", "a record start date dd/mm/yyyy");
    file.recordDays = integerItem("record length", "a record length in days", 0, 2147483647L);
    file.fitStart = dateItem("fit start date", "a fit start date dd/mm/yyyy");
    file.fitDays = integerItem("fit length", "a fit length in days", 0, 2147483647L);
    const std::string flag = item("process flag");
    if (flag != "#TRUE#" && flag != "#FALSE#") {
        fail(flag, "the process flag #TRUE# or #FALSE#");
    }
    file.conditional = flag == "#TRUE#";
    file.transformation = static_cast<core::TransformationCode>(
        integerItem("transformation code", "a model transformation code from 1 to 5", 1, 5));
    nextLine("constant 1");

    std::string word = item("autoregression flag or predictand name");
    file.hasAutoregressionLine = word == "True" || word == "False";
    file.autoregression = word == "True";
    if (file.hasAutoregressionLine) {
        word = item("predictand name");
    }
    file.predictandName = word;
    file.predictorNames.clear();
    for (int i = 1; i <= count; ++i) {
        file.predictorNames.push_back(item("name of predictor " + std::to_string(i)));
        if (looksLikeRow(file.predictorNames.back())) {
            throw core::Failure(
                core::failure::TypeMismatch,
                "Line " + std::to_string(line_) + " of '" + path_ + "' should name predictor " +
                    std::to_string(i) + " of the " + std::to_string(count) +
                    " that line 1 counts, but holds numbers: the predictor count and the names "
                    "listed after the predictand disagree.");
        }
    }
}

std::vector<double> Reader::rowValues(const std::string& what, int count, int predictorCount) {
    const std::string line = nextLine(what);
    const auto refuse = [&](const std::string& where, const std::string& problem) {
        throw core::Failure(core::failure::TypeMismatch,
                            where + " of line " + std::to_string(line_) + " of '" + path_ + "' " +
                                problem + "; line 1 counts " + std::to_string(predictorCount) +
                                (predictorCount == 1 ? " predictor" : " predictors") +
                                ", so the row holds " + std::to_string(count) +
                                " values in 14-character columns.");
    };
    std::vector<double> values(static_cast<size_t>(count));
    size_t start = 0; // of the zone of the column in hand
    for (int k = 1; k <= count; ++k) {
        double& value = values[static_cast<size_t>(k - 1)];
        if (runsPastZone(line, start)) {
            const size_t end = line.find_first_of(Blanks, start);
            const std::string_view run = std::string_view(line).substr(start, end - start);
            if (core::parseDecimal(run, value) == core::DecimalParse::Number) {
                start += (run.size() + Zone - 1) / Zone * Zone;
                continue;
            }
        }
        const std::string problem =
            core::zoneProblem(line, static_cast<int>(start / Zone) + 1, value);
        if (!problem.empty()) {
            refuse("Column " + std::to_string(k) + " (characters " + std::to_string(start + 1) +
                       " to " + std::to_string(start + Zone) + ")",
                   problem);
        }
        start += Zone;
    }
    if (start < line.size() && !core::trimBlanks(std::string_view(line).substr(start)).empty()) {
        refuse("The text after column " + std::to_string(count),
               "holds " +
                   core::quotedInput(core::trimBlanks(std::string_view(line).substr(start))) +
                   ", more than the row holds");
    }
    return values;
}

void Reader::readRows(ParameterFile& file) {
    const int k = file.predictorCount();
    const size_t coefficients = static_cast<size_t>(k + 1 + (file.autoregression ? 1 : 0));
    const int extra = file.boxCox() ? 2 : 0;
    for (int m = 1; m <= 12; ++m) {
        const std::vector<double> row = rowValues("parameter row of month " + std::to_string(m),
                                                  static_cast<int>(coefficients) + 2 + extra, k);
        MonthParameters& month = file.months[static_cast<size_t>(m - 1)];
        month.coefficients.assign(row.begin(), row.begin() + static_cast<long>(coefficients));
        month.standardError = row[coefficients];
        month.rSquared = row[coefficients + 1];
        if (extra > 0) {
            month.lamda = row[coefficients + 2];
            month.shift = row[coefficients + 3];
        }
    }
    if (!file.conditional) {
        return;
    }
    for (int m = 1; m <= 12; ++m) {
        const std::vector<double> row =
            rowValues("amount row of month " + std::to_string(m), k + 4, k);
        AmountParameters& amount = file.amounts[static_cast<size_t>(m - 1)];
        amount.constant = row[0];
        amount.meanRatio = row[1];
        amount.coefficients.assign(row.begin() + 2, row.end() - 2);
        amount.standardError = row[row.size() - 2];
        amount.rSquared = row.back();
    }
}

void Reader::readPredictandPath(ParameterFile& file) {
    if (file.transformation == core::TransformInverseNormal || !file_.atEnd()) {
        file.predictandPath = item("predictand path");
    }
}

} // namespace

ParameterFile readParameterFile(const std::string& path) {
    Reader reader(path);
    ParameterFile file;
    reader.readHeader(file);
    reader.readRows(file);
    reader.readPredictandPath(file);
    return file;
}

ParameterFile readParameterHeader(const std::string& path) {
    Reader reader(path);
    ParameterFile file;
    reader.readHeader(file);
    return file;
}

} // namespace varo::series
