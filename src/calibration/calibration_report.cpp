#include "calibration/calibration_report.hpp"

#include "core/number_format.hpp"

#include <algorithm>
#include <functional>

namespace varo::calibration {

double chowCriticalValue(int days, int predictors) {
    static constexpr double Table[4][8] = {
        {4.20, 3.34, 2.95, 2.71, 2.56, 2.36, 2.19, 1.91},
        {4.08, 3.23, 2.84, 2.61, 2.45, 2.25, 2.08, 1.79},
        {4.00, 3.15, 2.76, 2.53, 2.37, 2.17, 1.99, 1.70},
        {3.84, 3.00, 2.60, 2.37, 2.21, 2.01, 1.83, 1.52},
    };
    const int d = days - 2 * predictors;
    const int row = d < 40 ? 0 : d < 60 ? 1 : d < 100 ? 2 : 3;
    int column = 7;
    if (predictors <= 5) {
        column = std::max(predictors, 1) - 1;
    } else if (predictors <= 9) {
        column = 5;
    } else if (predictors == 10) {
        column = 6;
    }
    return Table[row][column];
}

namespace {

constexpr int ColumnWidth = 14;

// Where a metric of the cross-validation table stands (0-based row).
enum CrossValidationRow {
    CvFirst = 0,
    CvSecond = 1,
    CvThird = 2,
    CvFourth = 3,
    CvFifth = 4,
    CvSixth = 5
};

struct Column {
    std::string heading;
    std::array<double, 13> values{}; // months, then the mean
    bool chow = false;
};

double meanOfMonths(const std::array<double, 13>& values, double missing) {
    double sum = 0.0;
    int count = 0;
    for (int m = 0; m < 12; ++m) {
        if (values[static_cast<size_t>(m)] != missing) {
            sum += values[static_cast<size_t>(m)];
            ++count;
        }
    }
    return count == 0 ? missing : sum / count;
}

Column statisticColumn(const std::string& heading, const CalibrationResults& results,
                       size_t firstRow, double MonthStatistics::*field, double missing) {
    Column column{heading, {}, false};
    for (size_t m = 0; m < 12; ++m) {
        column.values[m] = results.statistics[firstRow + m].*field;
    }
    column.values[12] = meanOfMonths(column.values, missing);
    return column;
}

Column crossValidationColumn(const std::string& heading, const CrossValidationTable& table, int row,
                             double missing) {
    Column column{heading, table[static_cast<size_t>(row)], false};
    column.values[12] = meanOfMonths(column.values, missing);
    return column;
}

core::ResultsTable makeTable(const core::ProgramState& state, const CalibrationResults& results,
                             const std::string& title, size_t firstRow,
                             const std::vector<Column>& columns, size_t crossValidationStart,
                             const std::string& missingText) {
    const double missing = state.globalMissingCode;
    core::ResultsTable table;
    table.title = title;
    table.rowHeading = "Month";
    table.numberPattern = " #0.0000";
    table.missingText = missingText;
    for (const Column& column : columns) {
        table.columns.push_back(column.heading);
    }
    if (crossValidationStart < columns.size()) {
        table.columnGroups.push_back({"Cross Validation Results", crossValidationStart});
    }
    for (size_t m = 0; m <= 12; ++m) {
        core::ResultsTable::Row& row = table.rows.emplace_back();
        row.label = m < 12 ? state.periodNames[m + 1] : "Mean";
        for (const Column& column : columns) {
            const double value = column.values[m];
            core::ResultsTable::Cell cell{
                value == missing ? std::nullopt : std::optional<double>(value), false};
            if (column.chow && m < 12 && cell.value) {
                const MonthStatistics& fit = results.statistics[firstRow + m];
                cell.highlighted = value > chowCriticalValue(fit.rows, fit.predictors);
            }
            row.cells.push_back(cell);
        }
    }
    return table;
}

} // namespace

CalibrationReport buildReport(const core::ProgramState& state, const CalibrationResults& results,
                              const ReportOptions& options) {
    const double missing = state.globalMissingCode;
    CalibrationReport report;
    const series::ParameterFile& file = results.parameters;
    report.headingLines.push_back("Predictand: " + file.predictandName);
    for (size_t i = 0; i < file.predictorNames.size(); ++i) {
        report.headingLines.push_back((i == 0 ? "Predictors: " : "            ") +
                                      file.predictorNames[i]);
    }
    if (options.autoregression) {
        report.headingLines.push_back("Autoregression");
    }

    std::vector<Column> main{
        statisticColumn("RSquared", results, 0, &MonthStatistics::rSquared, missing),
        statisticColumn("SE", results, 0, &MonthStatistics::standardError, missing),
        statisticColumn(options.conditional ? "Prop Correct" : "D-Watson", results, 0,
                        &MonthStatistics::third, missing)};
    std::vector<Column> amounts{
        statisticColumn("RSquared", results, 12, &MonthStatistics::rSquared, missing),
        statisticColumn("SE", results, 12, &MonthStatistics::standardError, missing)};
    if (options.includeChow) {
        main.push_back(statisticColumn("Chow", results, 0, &MonthStatistics::chow, missing));
        main.back().chow = true;
        amounts.push_back(statisticColumn("Chow", results, 12, &MonthStatistics::chow, missing));
        amounts.back().chow = true;
    }
    const size_t mainStart = main.size();
    const size_t amountStart = amounts.size();
    if (options.crossValidation) {
        const CrossValidationTable& cv = *options.crossValidation;
        const auto add = [&](std::vector<Column>& to, const char* heading, int row) {
            to.push_back(crossValidationColumn(heading, cv, row, missing));
        };
        if (options.conditional) {
            add(main, "Prop Correct", CvFirst);
            add(main, "SE", CvFifth);
            add(main, "RSquared", CvSixth);
            add(amounts, "RSquared", CvFourth);
            add(amounts, "SE", CvThird);
            add(amounts, "Spearman", CvSecond);
        } else {
            add(main, "RSquared", CvFourth);
            add(main, "SE", CvFirst);
            add(main, "D-Watson", CvFifth);
            add(main, "Spearman", CvSecond);
            add(main, "Bias", CvThird);
        }
    }
    report.tables.push_back(
        makeTable(state, results, "Unconditional Statistics", 0, main, mainStart, "N/A    "));
    if (options.conditional) {
        report.tables.push_back(makeTable(state, results, "Conditional Statistics", 12, amounts,
                                          amountStart, "N/A     "));
    }
    for (const core::ResultsTable& table : report.tables) {
        for (const auto& row : table.rows) {
            for (const auto& cell : row.cells) {
                report.anyAboveCritical = report.anyAboveCritical || cell.highlighted;
            }
        }
    }
    return report;
}

namespace {

ModelType modelTypeOf(const series::ParameterFile& file) {
    if (file.groups == 12) {
        return ModelType::Monthly;
    }
    return file.groups == 4 ? ModelType::Seasonal : ModelType::Annual;
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

// A table with one row a group, filled from the group's first month.
core::ResultsTable groupTable(const core::ProgramState& state, const series::ParameterFile& file,
                              std::string title, std::vector<std::string> columns,
                              const std::function<std::vector<double>(size_t)>& monthValues) {
    const ModelType type = modelTypeOf(file);
    core::ResultsTable table;
    table.title = std::move(title);
    table.rowHeading = type == ModelType::Monthly    ? "Month"
                       : type == ModelType::Seasonal ? "Season"
                                                     : "Period";
    table.columns = std::move(columns);
    for (int group = 1; group <= groupCount(type); ++group) {
        const auto month = static_cast<size_t>(monthsOfGroup(type, group).front() - 1);
        table.addRow(groupName(state, type, group), monthValues(month), state.globalMissingCode);
    }
    return table;
}

} // namespace

std::vector<core::ResultsTable> coefficientTables(const core::ProgramState& state,
                                                  const CalibrationResults& results) {
    const series::ParameterFile& file = results.parameters;
    std::vector<std::string> columns{"Constant"};
    columns.insert(columns.end(), file.predictorNames.begin(), file.predictorNames.end());
    std::vector<std::string> mainColumns = columns;
    if (file.autoregression) {
        mainColumns.emplace_back(AutoregressionName);
    }
    std::vector<core::ResultsTable> tables;
    tables.push_back(groupTable(
        state, file, file.conditional ? "Occurrence Model Coefficients" : "Model Coefficients",
        mainColumns, [&](size_t m) { return file.months[m].coefficients; }));
    if (!file.conditional) {
        return tables;
    }
    const bool inverseNormal = file.transformation == core::TransformInverseNormal;
    if (inverseNormal) {
        columns.emplace_back("Mean Ratio");
    } else if (file.boxCox()) {
        columns.insert(columns.end(), {"Lamda", "Shift"});
    }
    tables.push_back(groupTable(state, file, "Amount Model Coefficients", columns, [&](size_t m) {
        const series::AmountParameters& amount = file.amounts[m];
        std::vector<double> values{amount.constant};
        values.insert(values.end(), amount.coefficients.begin(), amount.coefficients.end());
        if (inverseNormal) {
            values.push_back(amount.meanRatio);
        } else if (file.boxCox()) {
            values.insert(values.end(), {file.months[m].lamda, file.months[m].shift});
        }
        return values;
    }));
    return tables;
}

std::vector<std::string> stepwiseLines(const StepwiseChoice& choice) {
    static const core::NumberFormat format("0.000");
    return {"Stepwise selection (" + std::string(choice.aic ? "AIC" : "BIC") + ") tried " +
                std::to_string(choice.subsetsTried) + " subsets of " + joined(choice.candidates),
            "Chosen: " + joined(choice.chosen) + " (criterion " + format.format(choice.criterion) +
                ")"};
}

ResidualHistogram residualHistogram(const std::vector<ResidualPair>& pairs, int bars) {
    ResidualHistogram histogram;
    // The starting bounds matter only when there are no residuals.
    histogram.minimum = 1000.0;
    histogram.maximum = -1000.0;
    for (const ResidualPair& pair : pairs) {
        histogram.minimum = std::min(histogram.minimum, pair.residual);
        histogram.maximum = std::max(histogram.maximum, pair.residual);
    }
    const double step = (histogram.maximum - histogram.minimum) / bars;
    static const core::NumberFormat format("####0.000");
    histogram.counts.assign(static_cast<size_t>(bars), 0);
    for (int i = 1; i <= bars; ++i) {
        const double lower = histogram.minimum + step * (i - 1);
        histogram.labels.push_back(format.format(i == bars ? histogram.maximum : lower));
        const double upper = lower + step;
        for (const ResidualPair& pair : pairs) {
            if (pair.residual >= lower && pair.residual < upper) {
                ++histogram.counts[static_cast<size_t>(i - 1)];
            }
        }
    }
    return histogram;
}

namespace {

void appendCell(std::string& line, const std::string& text) {
    line += text;
    if (text.size() < ColumnWidth) {
        line.append(ColumnWidth - text.size(), ' ');
    } else {
        line += ' ';
    }
}

std::string withoutTrailingBlanks(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

std::string reportText(const CalibrationReport& report) {
    std::string text;
    for (const std::string& line : report.headingLines) {
        text += line + "\n";
    }
    for (const core::ResultsTable& table : report.tables) {
        std::string title = "\n" + table.title;
        for (const core::ResultsTable::ColumnGroup& group : table.columnGroups) {
            // The group's title stands over its first column (the label column is one more).
            title.resize(std::max(title.size() + 1, 1 + ColumnWidth * (group.firstColumn + 1)),
                         ' ');
            title += group.title;
        }
        text += title + "\n";
        std::string headings;
        appendCell(headings, table.rowHeading);
        for (const std::string& heading : table.columns) {
            appendCell(headings, heading);
        }
        text += withoutTrailingBlanks(headings) + "\n";
        for (const auto& row : table.rows) {
            std::string line;
            appendCell(line, row.label);
            for (const auto& cell : row.cells) {
                const std::string shown = table.cellText(cell);
                appendCell(line, cell.highlighted ? shown + "*" : shown);
            }
            text += withoutTrailingBlanks(line) + "\n";
        }
    }
    if (report.anyAboveCritical) {
        text += std::string("\n") + AboveCriticalNote + "\n";
    }
    return text;
}

} // namespace varo::calibration
