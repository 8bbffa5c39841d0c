#include "statistics/statistic_columns.hpp"

namespace varo::statistics {

ResultTable filledTable(double value) {
    ResultTable table;
    for (auto& row : table) {
        row.fill(value);
    }
    return table;
}

bool anySelected(const Selection& selection, std::initializer_list<int> columns) {
    for (const int c : columns) {
        if (selection[c]) {
            return true;
        }
    }
    return false;
}

bool anySelectedIn(const Selection& selection, int first, int last) {
    for (int c = first; c <= last; ++c) {
        if (selection[c]) {
            return true;
        }
    }
    return false;
}

bool wetFilterOn(const Selection& selection) {
    return anySelectedIn(selection, column::WetDaysPercent, column::PopTot) ||
           anySelectedIn(selection, column::WetPersis, column::MedDry);
}

bool needsRanges(const Selection& selection) {
    return anySelected(selection, {column::MaxRange, column::MinRange});
}

bool needsMoments(const Selection& selection) {
    return anySelected(selection, {column::Variance, column::Skewness});
}

bool needsSpells(const Selection& selection) {
    return wetFilterOn(selection) &&
           (anySelectedIn(selection, column::DrySpell, column::SdDrySpell) ||
            anySelectedIn(selection, column::WetPersis, column::MedDry));
}

bool needsPercentiles(const Selection& selection) {
    return anySelected(
        selection, {column::Median, column::Iqr, column::Percentile, column::Pop, column::PopTot});
}

} // namespace varo::statistics
