#include "statistics/statistics_engine.hpp"

#include <algorithm>
#include <cmath>

namespace varo::statistics {

namespace {

// A wet day: the value, rounded to single precision, is above the threshold.
bool isEvent(double value, float thresh) {
    return static_cast<float>(value) > thresh;
}

// Which entries the counting statistics take.
struct Counting {
    bool wetFilter;
    float thresh;
    double missingCode;

    explicit Counting(const EngineSettings& settings)
        : wetFilter(wetFilterOn(settings.selected)), thresh(settings.thresh),
          missingCode(settings.missingCode) {}

    bool real(double value) const { return isRealValue(value, missingCode); }
    bool counted(double value) const {
        return real(value) && (!wetFilter || isEvent(value, thresh));
    }
};

bool rowActive(const std::vector<double>& list, double missingCode) {
    return std::any_of(list.begin(), list.end(),
                       [missingCode](double value) { return isRealValue(value, missingCode); });
}

void setColumns(ResultTable& table, int row, std::initializer_list<int> columns, double value) {
    for (const int c : columns) {
        table[row][c] = value;
    }
}

// Largest and smallest range of counted values within a block, empty blocks skipped.
void blockRanges(const std::vector<double>& list, const Counting& counting, double& maxRange,
                 double& minRange) {
    constexpr double BlockMaxStart = -99999.0;
    constexpr double BlockMinStart = 99999.0;
    constexpr double EmptyBlockRange = BlockMaxStart - BlockMinStart;
    constexpr double MaxRangeStart = -1.0;
    constexpr double MinRangeStart = 99999.0;
    double blockMax = BlockMaxStart;
    double blockMin = BlockMinStart;
    maxRange = MaxRangeStart;
    minRange = MinRangeStart;
    for (const double value : list) {
        if (counting.counted(value)) {
            blockMax = std::max(blockMax, value);
            blockMin = std::min(blockMin, value);
        } else if (value == BlockEnd) {
            const double range = blockMax - blockMin;
            maxRange = std::max(maxRange, range);
            if (range < minRange && range != EmptyBlockRange) {
                minRange = range;
            }
            blockMax = BlockMaxStart;
            blockMin = BlockMinStart;
        }
    }
    if (maxRange == MaxRangeStart) {
        maxRange = counting.missingCode;
    }
    if (minRange == MinRangeStart) {
        minRange = counting.missingCode;
    }
}

void firstPass(const std::vector<double>& list, int row, const EngineSettings& settings,
               ResultTable& table) {
    const Counting counting(settings);
    auto& cells = table[row];
    if (!rowActive(list, settings.missingCode)) {
        cells.fill(settings.missingCode);
        return;
    }
    constexpr double MaximumStart = -999999.0;
    constexpr double MinimumStart = 999999.0;
    double sum = 0.0;
    double count = 0.0;
    double maximum = MaximumStart;
    double minimum = MinimumStart;
    double peaksOver = 0.0;
    double peaksBelow = 0.0;
    double dry = 0.0;
    for (const double value : list) {
        if (!counting.real(value)) {
            continue;
        }
        if (counting.wetFilter && !isEvent(value, settings.thresh)) {
            dry += 1.0;
            continue;
        }
        sum += value;
        count += 1.0;
        maximum = std::max(maximum, value);
        minimum = std::min(minimum, value);
        const auto single = static_cast<float>(value);
        peaksOver += single >= settings.peaksOverThreshold ? 1.0 : 0.0;
        peaksBelow += single <= settings.peaksBelowThreshold ? 1.0 : 0.0;
    }
    const double missing = settings.missingCode;
    cells[column::Mean] = count > 0.0 ? sum / count : missing;
    cells[column::Maximum] = maximum == MaximumStart ? missing : maximum;
    cells[column::Minimum] = minimum == MinimumStart ? missing : minimum;
    cells[column::Pot] = peaksOver;
    cells[column::Pbt] = peaksBelow;
    cells[column::Sum] = sum;
    cells[column::Count] = count;
    cells[column::WetDaysPercent] = count + dry > 0.0 ? count / (count + dry) : 0.0;
    if (needsRanges(settings.selected)) {
        blockRanges(list, counting, cells[column::MaxRange], cells[column::MinRange]);
    }
}

void momentsPass(const std::vector<double>& list, int row, const EngineSettings& settings,
                 ResultTable& table) {
    auto& cells = table[row];
    if (!rowActive(list, settings.missingCode)) {
        setColumns(table, row, {column::Variance, column::Skewness}, settings.missingCode);
        return;
    }
    const Counting counting(settings);
    const double mean = cells[column::Mean];
    double squares = 0.0;
    double cubes = 0.0;
    double n = 0.0;
    for (const double value : list) {
        if (counting.counted(value)) {
            const double deviation = value - mean;
            squares += deviation * deviation;
            cubes += deviation * deviation * deviation;
            n += 1.0;
        }
    }
    if (n == 0.0) {
        setColumns(table, row, {column::Variance, column::Skewness}, 0.0);
        return;
    }
    const double variance = squares / n;
    cells[column::Variance] = variance;
    if (variance > 0.0) {
        const double sd = std::sqrt(variance);
        cells[column::Skewness] = (cubes / n) / (sd * sd * sd);
    } else {
        cells[column::Skewness] = 0.0;
    }
}

// The largest total of N consecutive entries, over windows that hold no sentinel (so
// never crossing a block); missing values add nothing. Starts at 0. Each run of entries
// between sentinels is slid through once, its first window summed afresh.
double maximumNDayTotal(const std::vector<double>& list, size_t span, double missingCode) {
    double best = 0.0;
    if (span == 0 || list.size() < span) {
        return best;
    }
    auto amount = [missingCode](double value) { return value == missingCode ? 0.0 : value; };
    size_t segmentStart = 0;
    for (size_t i = 0; i <= list.size(); ++i) {
        if (i < list.size() && !isSentinel(list[i])) {
            continue;
        }
        // Entries segmentStart .. i-1 hold no sentinel.
        if (i - segmentStart >= span) {
            double total = 0.0;
            for (size_t j = segmentStart; j < segmentStart + span; ++j) {
                total += amount(list[j]);
            }
            best = std::max(best, total);
            for (size_t j = segmentStart + span; j < i; ++j) {
                total += amount(list[j]) - amount(list[j - span]);
                best = std::max(best, total);
            }
        }
        segmentStart = i + 1;
    }
    return best;
}

void nDayTotalPass(const std::vector<double>& list, int row, const EngineSettings& settings,
                   ResultTable& table) {
    if (!rowActive(list, settings.missingCode)) {
        table[row][column::MaxNTot] = settings.missingCode;
        return;
    }
    table[row][column::MaxNTot] = maximumNDayTotal(
        list, static_cast<size_t>(std::max(settings.nDayTotal, 0)), settings.missingCode);
}

// Lag-1 correlation over the pairs of neighbouring real values.
void autocorrelationPass(const std::vector<double>& list, int row, const EngineSettings& settings,
                         ResultTable& table) {
    const double missing = settings.missingCode;
    double& result = table[row][column::Acf];
    result = missing;
    if (!rowActive(list, missing) || list.size() < 2) {
        return;
    }
    auto isPair = [&](size_t i) {
        return isRealValue(list[i], missing) && isRealValue(list[i + 1], missing);
    };
    double pairs = 0.0;
    double sumFirst = 0.0;
    double sumSecond = 0.0;
    for (size_t i = 0; i + 1 < list.size(); ++i) {
        if (isPair(i)) {
            pairs += 1.0;
            sumFirst += list[i];
            sumSecond += list[i + 1];
        }
    }
    if (pairs < 3.0) {
        return;
    }
    const double meanFirst = sumFirst / pairs;
    const double meanSecond = sumSecond / pairs;
    double cross = 0.0;
    double squaresFirst = 0.0;
    double squaresSecond = 0.0;
    for (size_t i = 0; i + 1 < list.size(); ++i) {
        if (isPair(i)) {
            const double a = list[i] - meanFirst;
            const double b = list[i + 1] - meanSecond;
            cross += a * b;
            squaresFirst += a * a;
            squaresSecond += b * b;
        }
    }
    const double root = std::sqrt(squaresFirst * squaresSecond);
    result = root == 0.0 ? 1.0 : cross / root;
}

struct SpellSummary {
    double mean = 0.0;
    double longest = 0.0;
    double deviation = 0.0;
    double persistence = 0.0;
};

SpellSummary summariseSpells(const std::vector<int>& lengths) {
    SpellSummary summary;
    if (lengths.empty()) {
        return summary;
    }
    const auto k = static_cast<double>(lengths.size());
    double days = 0.0;
    double persistentDays = 0.0;
    for (const int length : lengths) {
        days += length;
        persistentDays += length > 1 ? length : 0;
        summary.longest = std::max(summary.longest, static_cast<double>(length));
    }
    summary.mean = days / k;
    double squares = 0.0;
    for (const int length : lengths) {
        squares += (length - summary.mean) * (length - summary.mean);
    }
    summary.deviation = std::sqrt(squares / k);
    summary.persistence = persistentDays / days;
    return summary;
}

double medianSpell(std::vector<int> lengths, double missingCode) {
    if (lengths.empty()) {
        return missingCode;
    }
    if (lengths.size() == 1) {
        return lengths.front();
    }
    std::sort(lengths.begin(), lengths.end());
    const size_t k = lengths.size();
    if (k % 2 == 0) {
        return (lengths[k / 2 - 1] + lengths[k / 2]) / 2.0;
    }
    return lengths[k / 2];
}

constexpr std::initializer_list<int> SpellColumns = {
    column::DrySpell,   column::WetSpell,   column::MaxDrySpell, column::MaxWetSpell,
    column::SdWetSpell, column::SdDrySpell, column::WetPersis,   column::DryPersis,
    column::PersisCorr, column::MedWet,     column::MedDry};

void spellsPass(const std::vector<double>& list, int row, const EngineSettings& settings,
                ResultTable& table) {
    const double missing = settings.missingCode;
    if (!rowActive(list, missing) || list.size() <= 2) {
        setColumns(table, row, SpellColumns, missing);
        return;
    }
    enum class SpellClass { Wet, Dry, Unknown };
    std::vector<int> wet;
    std::vector<int> dry;
    auto classOf = [&](double value) {
        if (!isRealValue(value, missing)) {
            return SpellClass::Unknown;
        }
        return isEvent(value, settings.thresh) ? SpellClass::Wet : SpellClass::Dry;
    };
    auto close = [&](SpellClass current, int run) {
        if (current == SpellClass::Wet) {
            wet.push_back(run);
        } else if (current == SpellClass::Dry) {
            dry.push_back(run);
        }
    };
    SpellClass current = classOf(list[0]);
    int run = 1;
    for (size_t i = 1; i < list.size(); ++i) {
        const SpellClass next = classOf(list[i]);
        if (next == SpellClass::Unknown) {
            close(current, run);
        } else if (next == current) {
            ++run;
            continue;
        } else {
            close(current, run);
            run = 1;
        }
        current = next;
    }
    auto& cells = table[row];
    const SpellSummary wetSummary = summariseSpells(wet);
    const SpellSummary drySummary = summariseSpells(dry);
    cells[column::WetSpell] = wetSummary.mean;
    cells[column::DrySpell] = drySummary.mean;
    cells[column::MaxWetSpell] = wetSummary.longest;
    cells[column::MaxDrySpell] = drySummary.longest;
    cells[column::SdWetSpell] = wetSummary.deviation;
    cells[column::SdDrySpell] = drySummary.deviation;
    cells[column::WetPersis] = wetSummary.persistence;
    cells[column::DryPersis] = drySummary.persistence;
    cells[column::PersisCorr] = wetSummary.persistence != 0.0 && drySummary.persistence != 0.0
                                    ? wetSummary.persistence - (1.0 - drySummary.persistence)
                                    : missing;
    if (settings.selected[column::MedWet]) {
        cells[column::MedWet] = medianSpell(wet, missing);
    }
    if (settings.selected[column::MedDry]) {
        cells[column::MedDry] = medianSpell(dry, missing);
    }
}

// Moves the counted values to the front of the list and cuts it there.
void keepCountedValues(std::vector<double>& list, const Counting& counting) {
    const auto end = std::remove_if(list.begin(), list.end(),
                                    [&](double value) { return !counting.counted(value); });
    list.erase(end, list.end());
}

void medianPass(MemberRows& rows, int row, const EngineSettings& settings, ResultTable& table) {
    const double missing = settings.missingCode;
    auto& cells = table[row];
    std::vector<double>& list = rows[row];
    if (!rowActive(list, missing)) {
        setColumns(table, row,
                   {column::Percentile, column::Median, column::Iqr, column::Pop, column::PopTot},
                   missing);
        list.clear();
        return;
    }
    const Counting counting(settings);
    keepCountedValues(list, counting);
    const size_t n = list.size();
    if (n > 1) {
        shellSort(list.data(), n);
    }
    if (n == 0) {
        setColumns(table, row, {column::Percentile, column::Median, column::Iqr}, missing);
    } else if (n == 1) {
        cells[column::Percentile] = list[0];
        cells[column::Median] = list[0];
        cells[column::Iqr] = 0.0;
    } else {
        cells[column::Percentile] = percentileOfSorted(list.data(), n, settings.percentile);
        cells[column::Median] = percentileOfSorted(list.data(), n, 50.0);
        cells[column::Iqr] =
            percentileOfSorted(list.data(), n, 75.0) - percentileOfSorted(list.data(), n, 25.0);
    }
    if (n <= 1 || !counting.wetFilter) {
        setColumns(table, row, {column::Pop, column::PopTot}, missing);
        return;
    }
    const std::vector<double>& year = rows[AnnualRow];
    const double level = percentileOfSorted(year.data(), year.size(), settings.potPercentile);
    double above = 0.0;
    double aboveTotal = 0.0;
    double total = 0.0;
    for (const double value : list) {
        total += value;
        if (value > level) {
            above += 1.0;
            aboveTotal += value;
        }
    }
    cells[column::Pop] = above;
    cells[column::PopTot] = total > 0.0 ? aboveTotal / total : missing;
}

} // namespace

EngineSettings engineSettingsFrom(const core::ProgramState& state) {
    EngineSettings settings;
    for (int c = 1; c <= StatisticCount; ++c) {
        settings.selected[c] = core::statisticSelected(state, c);
    }
    settings.thresh = state.thresh;
    settings.missingCode = state.globalMissingCode;
    const core::StatisticParameters& parameters = state.statisticParameters;
    settings.percentile = parameters.percentile;
    settings.peaksOverThreshold = parameters.peaksOverThreshold;
    settings.peaksBelowThreshold = parameters.peaksBelowThreshold;
    settings.nDayTotal = parameters.nDayTotal;
    settings.potPercentile = parameters.potPercentile;
    return settings;
}

std::vector<Pass> passesFor(const EngineSettings& settings) {
    const Selection& s = settings.selected;
    std::vector<Pass> passes{Pass::First};
    if (needsMoments(s) || settings.momentsForTests) {
        passes.push_back(Pass::Moments);
    }
    if (s[column::MaxNTot]) {
        passes.push_back(Pass::NDayTotal);
    }
    if (s[column::Acf]) {
        passes.push_back(Pass::Autocorrelation);
    }
    if (needsSpells(s)) {
        passes.push_back(Pass::Spells);
    }
    if (needsPercentiles(s)) {
        passes.push_back(Pass::MedianPercentiles);
    }
    return passes;
}

std::string_view passCaption(Pass pass) {
    switch (pass) {
    case Pass::First:
        return caption::Statistics;
    case Pass::Moments:
        return caption::Moments;
    case Pass::NDayTotal:
        return caption::NDayTotal;
    case Pass::Autocorrelation:
        return caption::Autocorrelation;
    case Pass::Spells:
        return caption::Precipitation;
    case Pass::MedianPercentiles:
        return caption::MedianPercentiles;
    }
    return caption::Statistics;
}

std::array<int, CalendarRowCount> passRowOrder(Pass pass) {
    std::array<int, CalendarRowCount> order{};
    for (int i = 0; i < CalendarRowCount; ++i) {
        order[i] = pass == Pass::MedianPercentiles ? CalendarRowCount - i : i + 1;
    }
    return order;
}

void runPass(Pass pass, MemberRows& rows, int row, const EngineSettings& settings,
             ResultTable& table) {
    switch (pass) {
    case Pass::First:
        firstPass(rows[row], row, settings, table);
        break;
    case Pass::Moments:
        momentsPass(rows[row], row, settings, table);
        break;
    case Pass::NDayTotal:
        nDayTotalPass(rows[row], row, settings, table);
        break;
    case Pass::Autocorrelation:
        autocorrelationPass(rows[row], row, settings, table);
        break;
    case Pass::Spells:
        spellsPass(rows[row], row, settings, table);
        break;
    case Pass::MedianPercentiles:
        medianPass(rows, row, settings, table);
        break;
    }
}

ResultTable memberStatistics(MemberRows& rows, const EngineSettings& settings,
                             core::Progress& progress) {
    ResultTable table = filledTable(0.0);
    for (const Pass pass : passesFor(settings)) {
        for (const int row : passRowOrder(pass)) {
            progress.report(row, CalendarRowCount, passCaption(pass));
            progress.throwIfStopped();
            runPass(pass, rows, row, settings, table);
        }
    }
    return table;
}

void finishSums(ResultTable& table, const std::array<int, CalendarRowCount + 1>& blockCounts,
                double missingCode) {
    for (int row = 1; row <= CalendarRowCount; ++row) {
        double& sum = table[row][column::Sum];
        if (sum == missingCode) {
            continue; // an inactive row
        }
        sum = blockCounts[row] > 0 ? sum / blockCounts[row] : missingCode;
    }
}

void shellSort(double* values, size_t count) {
    size_t gap = 1;
    while (9 * (3 * gap + 1) < count) {
        gap = 3 * gap + 1;
    }
    for (; gap > 0; gap /= 3) {
        for (size_t i = gap; i < count; ++i) {
            const double value = values[i];
            size_t j = i;
            while (j >= gap && values[j - gap] > value) {
                values[j] = values[j - gap];
                j -= gap;
            }
            values[j] = value;
        }
    }
}

double percentileOfSorted(const double* sorted, size_t count, double p) {
    const double position = p * static_cast<double>(count - 1) / 100.0 + 1.0;
    const auto k = static_cast<size_t>(position);
    const double fraction = position - static_cast<double>(k);
    if (k >= count || fraction == 0.0) {
        return sorted[std::min(k, count) - 1];
    }
    return sorted[k - 1] + (sorted[k] - sorted[k - 1]) * fraction;
}

} // namespace varo::statistics
