#include "weathergen/synthesis_model.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"

namespace varo::weathergen {

namespace {

// A parameter row where a predictor's file name should stand: the header's count is
// larger than the list of names. Every row holds at least a constant, a standard error and
// R squared, in print zones.
bool looksLikeRow(std::string_view text) {
    const auto zones = static_cast<int>((text.size() + core::PrintZoneWidth - 1) /
                                        static_cast<size_t>(core::PrintZoneWidth));
    int numbers = 0;
    for (int k = 1; k <= zones; ++k) {
        double value = 0.0;
        if (!core::zoneProblem(text, k, value).empty()) {
            return false;
        }
        ++numbers;
    }
    return numbers >= 3;
}

} // namespace

ParameterFileReader::ParameterFileReader(const std::string& path) : path_(path), file_(path) {}

std::string ParameterFileReader::nextLine() {
    try {
        std::string text = file_.readLine();
        ++line_;
        return text;
    } catch (const core::Failure& failure) {
        if (failure.number() != core::failure::InputPastEnd) {
            throw;
        }
        throw core::Failure(core::failure::InputPastEnd, "The parameter file '" + path_ +
                                                             "' ends after line " +
                                                             std::to_string(line_) + ".");
    }
}

void ParameterFileReader::fail(const std::string& text, const std::string& problem) const {
    throw core::Failure(core::failure::TypeMismatch, core::quotedInput(text) + " on line " +
                                                         std::to_string(line_) + " of '" + path_ +
                                                         "' is not " + problem + ".");
}

long ParameterFileReader::integerItem(const char* what, long low, long high) {
    const std::string text(core::trimBlanks(nextLine()));
    if (!core::isNumeric(text)) {
        fail(text, what);
    }
    const double value = core::leadingNumber(text);
    if (!(value >= static_cast<double>(low) - 0.5 && value <= static_cast<double>(high) + 0.5)) {
        fail(text, what);
    }
    const long long rounded = core::roundHalfEven(value);
    if (rounded < low || rounded > high) {
        fail(text, what);
    }
    return static_cast<long>(rounded);
}

core::Date ParameterFileReader::dateItem(std::string& text, const char* what) {
    text = std::string(core::trimBlanks(nextLine()));
    const auto date = core::parseDate(text);
    if (!date) {
        fail(text, what);
    }
    return *date;
}

ParameterHeader ParameterFileReader::readHeader() {
    ParameterHeader header;
    header.predictorCount =
        static_cast<int>(integerItem("a predictor count from 0 to 30", 0, MaxPredictors));
    const long seasonCode = integerItem("a number of groups (12, 4 or 1)", 1, 12);
    if (seasonCode != 12 && seasonCode != 4 && seasonCode != 1) {
        fail(std::to_string(seasonCode), "a number of groups (12, 4 or 1)");
    }
    header.seasonCode = static_cast<int>(seasonCode);
    // The year length of the calibration: a run uses the settings' one, but a file that
    // holds no year length here is no parameter file.
    const long yearLength = integerItem("a year length (366, 365 or 360)", 360, 366);
    if (yearLength != 360 && yearLength != 365 && yearLength != 366) {
        fail(std::to_string(yearLength), "a year length (366, 365 or 360)");
    }
    header.recordStart = dateItem(header.recordStartText, "a record start date dd/mm/yyyy");
    header.recordLength = integerItem("a record length in days", 0, 2147483647L);
    header.fitStart = dateItem(header.fitStartText, "a fit start date dd/mm/yyyy");
    header.fitLength = integerItem("a fit length in days", 0, 2147483647L);

    const std::string flag(core::trimBlanks(nextLine()));
    if (flag != "#TRUE#" && flag != "#FALSE#") {
        fail(flag, "the process flag #TRUE# or #FALSE#");
    }
    header.conditional = flag == "#TRUE#";
    header.transformCode =
        static_cast<int>(integerItem("a model transformation code from 1 to 5", 1, 5));
    nextLine(); // a constant the generator does not use

    std::string word(core::trimBlanks(nextLine()));
    if (word == "True" || word == "False") {
        header.autoRegressive = word == "True";
        word = std::string(core::trimBlanks(nextLine()));
    } else {
        header.hasAutoRegressionLine = false;
    }
    header.predictandName = word;
    header.firstPredictorLine = line_ + 1;
    for (int i = 0; i < header.predictorCount; ++i) {
        header.predictorNames.emplace_back(core::trimBlanks(nextLine()));
        if (looksLikeRow(header.predictorNames.back())) {
            throw core::Failure(
                core::failure::TypeMismatch,
                "Line " + std::to_string(line_) + " of '" + path_ + "' should name predictor " +
                    std::to_string(i + 1) + " of the " + std::to_string(header.predictorCount) +
                    " that line 1 counts, but holds numbers: the predictor count and the names "
                    "listed after the predictand disagree.");
        }
    }
    return header;
}

std::vector<double> ParameterFileReader::zoneFields(const std::string& line, int count,
                                                    int predictorCount) const {
    const auto refuse = [&](const std::string& where, const std::string& problem) {
        throw core::Failure(core::failure::TypeMismatch,
                            where + " of line " + std::to_string(line_) + " of '" + path_ + "' " +
                                problem + "; line 1 counts " + std::to_string(predictorCount) +
                                (predictorCount == 1 ? " predictor" : " predictors") +
                                ", so the row holds " + std::to_string(count) +
                                " values in 14-character columns.");
    };
    std::vector<double> values(static_cast<size_t>(count));
    for (int k = 1; k <= count; ++k) {
        const std::string problem = core::zoneProblem(line, k, values[static_cast<size_t>(k - 1)]);
        if (!problem.empty()) {
            const size_t start = static_cast<size_t>(core::PrintZoneWidth * (k - 1));
            refuse("Column " + std::to_string(k) + " (characters " + std::to_string(start + 1) +
                       " to " + std::to_string(start + core::PrintZoneWidth) + ")",
                   problem);
        }
    }
    const size_t end = static_cast<size_t>(core::PrintZoneWidth * count);
    if (end < line.size() && !core::trimBlanks(std::string_view(line).substr(end)).empty()) {
        refuse("The text after column " + std::to_string(count),
               "holds " + core::quotedInput(core::trimBlanks(std::string_view(line).substr(end))) +
                   ", more than the row holds");
    }
    return values;
}

void ParameterFileReader::readRows(SynthesisModel& model) {
    const ParameterHeader& header = model.header;
    const int c = header.occurrenceColumns();
    const bool boxCox = header.transformCode == TransformBoxCox;
    for (MonthRows& month : model.months) {
        std::vector<double> row =
            zoneFields(nextLine(), c + (boxCox ? 2 : 0), header.predictorCount);
        if (boxCox) {
            month.lamda = row[static_cast<size_t>(c)];
            month.shift = row[static_cast<size_t>(c + 1)];
            row.resize(static_cast<size_t>(c));
        }
        month.occurrence = std::move(row);
    }
    if (header.conditional) {
        for (MonthRows& month : model.months) {
            month.amount = zoneFields(nextLine(), header.amountColumns(), header.predictorCount);
        }
    }
}

std::string ParameterFileReader::readPredictandPath() {
    return std::string(core::trimBlanks(nextLine()));
}

SynthesisModel readSynthesisModel(const std::string& path) {
    ParameterFileReader reader(path);
    SynthesisModel model;
    model.header = reader.readHeader();
    reader.readRows(model);
    if (model.header.transformCode == TransformInverseNormal) {
        model.predictandPath = reader.readPredictandPath();
    }
    return model;
}

} // namespace varo::weathergen
