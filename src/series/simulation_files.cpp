#include "series/simulation_files.hpp"

#include "core/dates.hpp"
#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"

namespace varo::series {

namespace {

const core::NumberFormat OutFormat("#####0.000");

// Reads the items one a line; every problem names the file, the line, the item expected
// and what stands there instead.
class DescriptionReader {
public:
    explicit DescriptionReader(const std::string& path) : reader_(path), path_(path) {}

    std::string text(const std::string& what) {
        ++line_;
        try {
            return std::string(core::trimBlanks(reader_.readLine()));
        } catch (const core::Failure& failure) {
            if (failure.number() != core::failure::InputPastEnd) {
                throw;
            }
            throw core::Failure(failure.number(), "The SIM file '" + path_ + "' ends after line " +
                                                      std::to_string(line_ - 1) + ", where line " +
                                                      std::to_string(line_) + " should hold the " +
                                                      what + ".");
        }
    }

    long integer(const std::string& what, long low, long high) {
        const std::string value = text(what);
        if (!core::isNumeric(value)) {
            fail(value, what, "is not a number");
        }
        const long long number = core::roundHalfEven(core::leadingNumber(value));
        if (number < low || number > high) {
            fail(value, what,
                 "lies outside " + std::to_string(low) + " to " + std::to_string(high));
        }
        return static_cast<long>(number);
    }

    long yearLength() {
        const std::string what = "year length";
        const long days = integer(what, 360, 366);
        if (days != 360 && days != 365 && days != 366) {
            fail(std::to_string(days), what, "is not 360, 365 or 366");
        }
        return days;
    }

    double number(const std::string& what) {
        const std::string value = text(what);
        if (!core::isNumeric(value)) {
            fail(value, what, "is not a number");
        }
        return core::leadingNumber(value);
    }

    bool flag(const std::string& what) {
        const std::string value = text(what);
        if (value == "#TRUE#") {
            return true;
        }
        if (value != "#FALSE#") {
            fail(value, what, "is not #TRUE# or #FALSE#");
        }
        return false;
    }

    std::string date(const std::string& what) {
        const std::string value = text(what);
        if (!core::parseDate(value)) {
            fail(value, what, "is not a date dd/mm/yyyy");
        }
        return value;
    }

private:
    [[noreturn]] void fail(const std::string& value, const std::string& what,
                           const std::string& problem) const {
        throw core::Failure(core::failure::TypeMismatch,
                            "Line " + std::to_string(line_) + " of the SIM file '" + path_ +
                                "' should hold the " + what + ", but " + core::quotedInput(value) +
                                " " + problem + ".");
    }

    core::SeriesReader reader_;
    std::string path_;
    long line_ = 0;
};

} // namespace

std::string simPathFor(const std::string& outPath) {
    if (outPath.size() < 3) {
        return outPath + "SIM";
    }
    return outPath.substr(0, outPath.size() - 3) + "SIM";
}

void writeSimulationDescription(core::TextFileWriter& file, const SimulationDescription& d) {
    file.writeLine(core::printInteger(d.predictorCount));
    file.writeLine(core::printInteger(d.seasonCode));
    file.writeLine(core::printInteger(d.yearIndicator));
    file.writeLine(d.fitStart);
    file.writeLine(core::printInteger(d.fitLength));
    file.writeLine(d.conditional ? "#TRUE#" : "#FALSE#");
    file.writeLine(core::printInteger(d.ensembleSize));
    file.writeLine(core::printInteger(d.precN));
    file.writeLine(core::printInteger(d.transformCode));
    file.writeLine(core::printNumberSingle(d.biasCorrection));
    file.writeLine(d.predictandName);
    for (const std::string& name : d.predictorNames) {
        file.writeLine(name);
    }
}

void writeSimulationDescription(const std::string& path, const SimulationDescription& description) {
    core::TextFileWriter file(path);
    writeSimulationDescription(file, description);
    file.close();
}

SimulationDescription readSimulationDescription(const std::string& path) {
    DescriptionReader reader(path);
    SimulationDescription d;
    d.predictorCount = static_cast<std::int16_t>(reader.integer("number of predictors", 0, 100));
    d.seasonCode = static_cast<std::int16_t>(reader.integer("season code", 0, 12));
    d.yearIndicator = static_cast<std::int16_t>(reader.yearLength());
    d.fitStart = reader.date("start date");
    d.fitLength = static_cast<std::int32_t>(reader.integer("length in days", 0, 100000000));
    d.conditional = reader.flag("process flag");
    d.ensembleSize = static_cast<std::int16_t>(reader.integer("ensemble size", 1, 100));
    d.precN = static_cast<std::int16_t>(reader.integer("variance inflation", -32768, 32767));
    d.transformCode = static_cast<std::int16_t>(reader.integer("transformation code", 1, 5));
    d.biasCorrection = static_cast<float>(reader.number("bias correction"));
    d.predictandName = reader.text("predictand name");
    for (int i = 0; i < d.predictorCount; ++i) {
        d.predictorNames.push_back(reader.text("name of predictor " + std::to_string(i + 1)));
    }
    return d;
}

void appendDayLine(std::string& line, const double* values, int count) {
    const size_t lineStart = line.size();
    for (int k = 0; k < count; ++k) {
        OutFormat.appendTo(line, values[k]);
        core::padToNextZone(line, lineStart);
    }
}

void writeDayLine(core::TextFileWriter& file, const double* values, int count) {
    std::string line;
    appendDayLine(line, values, count);
    file.write(line);
    file.endLine();
}

} // namespace varo::series
