#include "calibration/parameter_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"
#include "core/series_file.hpp"

#include <charconv>

namespace varo::calibration {

namespace {

constexpr std::string_view LineEnd = "\r\n";

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

} // namespace

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
    appendLine(text, core::generalTextSingle(file.transformation));
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

class Reader {
public:
    explicit Reader(const std::string& path) : path_(path), file_(path) {}

    std::string line() {
        ++line_;
        try {
            return file_.readLine();
        } catch (const core::Failure& failure) {
            if (failure.number() != core::failure::InputPastEnd) {
                throw;
            }
            throw core::Failure(core::failure::InputPastEnd,
                                "The parameter file '" + path_ + "' ends at line " +
                                    std::to_string(line_ - 1) + ", before its " + what_ + ".");
        }
    }

    // The next line as an item: blanks around it are dropped.
    std::string item(std::string what) {
        what_ = std::move(what);
        return std::string(core::trimBlanks(line()));
    }

    long integer(std::string what, long low, long high) {
        const std::string text = item(std::move(what));
        long value = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() ||
            value < low || value > high) {
            fail(text);
        }
        return value;
    }

    bool flag(std::string what, std::string_view yes, std::string_view no) {
        const std::string text = item(std::move(what));
        if (text != yes && text != no) {
            fail(text);
        }
        return text == yes;
    }

    std::vector<double> row(std::string what, size_t count) {
        const std::string text = item(std::move(what));
        std::vector<double> values;
        std::string_view rest = text;
        while (!(rest = core::trimBlanks(rest)).empty()) {
            const size_t end = rest.find_first_of(" \t");
            const std::string_view token = rest.substr(0, end);
            double value = 0.0;
            if (core::parseDecimal(token, value) != core::DecimalParse::Number) {
                fail(std::string(token));
            }
            values.push_back(value);
            rest = end == std::string_view::npos ? std::string_view() : rest.substr(end);
        }
        if (values.size() != count) {
            throw core::Failure(core::failure::TypeMismatch,
                                "Line " + std::to_string(line_) + " of the parameter file '" +
                                    path_ + "' holds " + std::to_string(values.size()) +
                                    " numbers where the " + what_ + " has " +
                                    std::to_string(count) + ".");
        }
        return values;
    }

    [[noreturn]] void fail(const std::string& text) const {
        throw core::Failure(core::failure::TypeMismatch,
                            core::quotedInput(text) + " on line " + std::to_string(line_) +
                                " of the parameter file '" + path_ + "' is not the " + what_ + ".");
    }

private:
    std::string path_;
    core::SeriesReader file_;
    long line_ = 0;
    std::string what_;
};

} // namespace

ParameterFile readParameterFile(const std::string& path) {
    Reader in(path);
    ParameterFile file;
    const long k = in.integer("predictor count", 0, 99);
    file.groups = static_cast<int>(in.integer("number of groups", 1, 12));
    file.yearIndicator = static_cast<int>(in.integer("year length", 360, 366));
    file.recordStart = in.item("record start date");
    file.recordDays = in.integer("record length", 1, 10000000);
    file.fitStart = in.item("fit start date");
    file.fitDays = in.integer("fit length", 1, 10000000);
    file.conditional = in.flag("process (#TRUE# or #FALSE#)", "#TRUE#", "#FALSE#");
    const std::string code = in.item("transformation code");
    if (!core::isNumeric(code)) {
        in.fail(code);
    }
    file.transformation = static_cast<float>(core::leadingNumber(code));
    in.integer("constant 1", 1, 1);
    const std::string next = in.item("autoregression flag or predictand name");
    file.hasAutoregressionLine = next == "True" || next == "False";
    if (file.hasAutoregressionLine) {
        file.autoregression = next == "True";
        file.predictandName = in.item("predictand name");
    } else {
        file.predictandName = next;
    }
    for (long i = 0; i < k; ++i) {
        file.predictorNames.push_back(in.item("name of predictor " + std::to_string(i + 1)));
    }
    const size_t lag = file.autoregression ? 1 : 0;
    const size_t extra = file.boxCox() ? 2 : 0;
    for (int m = 0; m < 12; ++m) {
        std::vector<double> row = in.row("parameter row of month " + std::to_string(m + 1),
                                         static_cast<size_t>(k) + 1 + lag + 2 + extra);
        MonthParameters& month = file.months[static_cast<size_t>(m)];
        const size_t count = static_cast<size_t>(k) + 1 + lag;
        month.coefficients.assign(row.begin(), row.begin() + static_cast<long>(count));
        month.standardError = row[count];
        month.rSquared = row[count + 1];
        if (extra > 0) {
            month.lamda = row[count + 2];
            month.shift = row[count + 3];
        }
    }
    if (file.conditional) {
        for (int m = 0; m < 12; ++m) {
            std::vector<double> row =
                in.row("amount row of month " + std::to_string(m + 1), static_cast<size_t>(k) + 4);
            AmountParameters& amount = file.amounts[static_cast<size_t>(m)];
            amount.constant = row[0];
            amount.meanRatio = row[1];
            amount.coefficients.assign(row.begin() + 2, row.end() - 2);
            amount.standardError = row[row.size() - 2];
            amount.rSquared = row[row.size() - 1];
        }
    }
    file.predictandPath = in.item("predictand path");
    return file;
}

} // namespace varo::calibration
