#include "statistics/statistics_engine.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <span>

namespace varo::statistics {

namespace {

using Values = std::vector<double>;
using Kinds = std::vector<Kind>;

// Which entries the counting statistics take: every real value, or with the wet filter
// only the wet ones.
struct Counting {
    bool wetFilter;

    explicit Counting(const EngineSettings& settings) : wetFilter(wetFilterOn(settings.selected)) {}

    bool counted(Kind kind) const { return wetFilter ? kind == Kind::Wet : isReal(kind); }
};

// `value` when `keep`, else `other`, chosen without a branch (the bits are masked, so the
// value passes unchanged).
double choose(bool keep, double value, double other) {
    const std::uint64_t mask = std::uint64_t{0} - static_cast<std::uint64_t>(keep);
    return std::bit_cast<double>((std::bit_cast<std::uint64_t>(value) & mask) |
                                 (std::bit_cast<std::uint64_t>(other) & ~mask));
}

bool rowActive(const Kinds& kinds) {
    return std::any_of(kinds.begin(), kinds.end(), [](Kind kind) { return isReal(kind); });
}

void setColumns(ResultTable& table, int row, std::initializer_list<int> columns, double value) {
    for (const int c : columns) {
        table[row][c] = value;
    }
}

// Largest and smallest range of counted values within a block, empty blocks skipped.
void blockRanges(const Values& values, const Kinds& kinds, const Counting& counting,
                 double missingCode, double& maxRange, double& minRange) {
    constexpr double BlockMaxStart = -99999.0;
    constexpr double BlockMinStart = 99999.0;
    constexpr double EmptyBlockRange = BlockMaxStart - BlockMinStart;
    constexpr double MaxRangeStart = -1.0;
    constexpr double MinRangeStart = 99999.0;
    double blockMax = BlockMaxStart;
    double blockMin = BlockMinStart;
    maxRange = MaxRangeStart;
    minRange = MinRangeStart;
    for (size_t i = 0; i < values.size(); ++i) {
        if (counting.counted(kinds[i])) {
            blockMax = std::max(blockMax, values[i]);
            blockMin = std::min(blockMin, values[i]);
        } else if (kinds[i] == Kind::BlockEnd) {
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
        maxRange = missingCode;
    }
    if (minRange == MinRangeStart) {
        minRange = missingCode;
    }
}

void firstPass(const Values& values, const Kinds& kinds, int row, const EngineSettings& settings,
               ResultTable& table) {
    const Counting counting(settings);
    const double missing = settings.missingCode;
    auto& cells = table[row];
    if (!rowActive(kinds)) {
        cells.fill(missing);
        return;
    }
    constexpr double MaximumStart = -999999.0;
    constexpr double MinimumStart = 999999.0;
    double sum = 0.0;
    double maximum = MaximumStart;
    double minimum = MinimumStart;
    size_t count = 0;
    size_t dry = 0;
    size_t peaksOver = 0;
    size_t peaksBelow = 0;
    // The peak counts are the only part of the pass worth skipping when not wanted.
    const bool peaks = anySelected(settings.selected, {column::Pot, column::Pbt});
    // Wet and dry days alternate at random, so the loop selects values instead of branching
    // on them: an entry that is not counted adds 0 and offers the starting extremes.
    for (size_t i = 0; i < values.size(); ++i) {
        const Kind kind = kinds[i];
        const bool counted = counting.counted(kind);
        const double value = values[i];
        dry += static_cast<size_t>(isReal(kind) && !counted);
        count += static_cast<size_t>(counted);
        sum += choose(counted, value, 0.0);
        maximum = std::max(maximum, choose(counted, value, MaximumStart));
        minimum = std::min(minimum, choose(counted, value, MinimumStart));
        if (peaks) {
            const auto single = static_cast<float>(value);
            peaksOver += static_cast<size_t>(counted && single >= settings.peaksOverThreshold);
            peaksBelow += static_cast<size_t>(counted && single <= settings.peaksBelowThreshold);
        }
    }
    const auto n = static_cast<double>(count);
    const auto dryDays = static_cast<double>(dry);
    cells[column::Mean] = count > 0 ? sum / n : missing;
    cells[column::Maximum] = maximum == MaximumStart ? missing : maximum;
    cells[column::Minimum] = minimum == MinimumStart ? missing : minimum;
    cells[column::Pot] = static_cast<double>(peaksOver);
    cells[column::Pbt] = static_cast<double>(peaksBelow);
    cells[column::Sum] = sum;
    cells[column::Count] = n;
    cells[column::WetDaysPercent] = count + dry > 0 ? n / (n + dryDays) : 0.0;
    if (needsRanges(settings.selected)) {
        blockRanges(values, kinds, counting, missing, cells[column::MaxRange],
                    cells[column::MinRange]);
    }
}

void momentsPass(const Values& values, const Kinds& kinds, int row, const EngineSettings& settings,
                 ResultTable& table) {
    auto& cells = table[row];
    if (!rowActive(kinds)) {
        setColumns(table, row, {column::Variance, column::Skewness}, settings.missingCode);
        return;
    }
    const Counting counting(settings);
    const double mean = cells[column::Mean];
    double squares = 0.0;
    double cubes = 0.0;
    double n = 0.0;
    for (size_t i = 0; i < values.size(); ++i) {
        if (counting.counted(kinds[i])) {
            const double deviation = values[i] - mean;
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
double maximumNDayTotal(const Values& values, const Kinds& kinds, size_t span) {
    double best = 0.0;
    if (span == 0 || values.size() < span) {
        return best;
    }
    auto amount = [&](size_t i) { return kinds[i] == Kind::Missing ? 0.0 : values[i]; };
    size_t segmentStart = 0;
    for (size_t i = 0; i <= values.size(); ++i) {
        if (i < values.size() && !isSentinel(kinds[i])) {
            continue;
        }
        // Entries segmentStart .. i-1 hold no sentinel.
        if (i - segmentStart >= span) {
            double total = 0.0;
            for (size_t j = segmentStart; j < segmentStart + span; ++j) {
                total += amount(j);
            }
            best = std::max(best, total);
            for (size_t j = segmentStart + span; j < i; ++j) {
                total += amount(j) - amount(j - span);
                best = std::max(best, total);
            }
        }
        segmentStart = i + 1;
    }
    return best;
}

void nDayTotalPass(const Values& values, const Kinds& kinds, int row,
                   const EngineSettings& settings, ResultTable& table) {
    table[row][column::MaxNTot] =
        rowActive(kinds)
            ? maximumNDayTotal(values, kinds, static_cast<size_t>(std::max(settings.nDayTotal, 0)))
            : settings.missingCode;
}

// Lag-1 correlation over the pairs of neighbouring real values.
void autocorrelationPass(const Values& values, const Kinds& kinds, int row,
                         const EngineSettings& settings, ResultTable& table) {
    double& result = table[row][column::Acf];
    result = settings.missingCode;
    if (!rowActive(kinds) || values.size() < 2) {
        return;
    }
    auto isPair = [&](size_t i) { return isReal(kinds[i]) && isReal(kinds[i + 1]); };
    double pairs = 0.0;
    double sumFirst = 0.0;
    double sumSecond = 0.0;
    for (size_t i = 0; i + 1 < values.size(); ++i) {
        if (isPair(i)) {
            pairs += 1.0;
            sumFirst += values[i];
            sumSecond += values[i + 1];
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
    for (size_t i = 0; i + 1 < values.size(); ++i) {
        if (isPair(i)) {
            const double a = values[i] - meanFirst;
            const double b = values[i + 1] - meanSecond;
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

SpellSummary summariseSpells(std::span<const int> lengths) {
    SpellSummary summary;
    if (lengths.empty()) {
        return summary;
    }
    // Day counts are whole numbers: summed as integers they are exact, as in doubles.
    long days = 0;
    long persistentDays = 0;
    int longest = 0;
    for (const int length : lengths) {
        days += length;
        persistentDays += length > 1 ? length : 0;
        longest = std::max(longest, length);
    }
    const auto k = static_cast<double>(lengths.size());
    summary.mean = static_cast<double>(days) / k;
    summary.longest = longest;
    double squares = 0.0;
    for (const int length : lengths) {
        squares += (length - summary.mean) * (length - summary.mean);
    }
    summary.deviation = std::sqrt(squares / k);
    summary.persistence = static_cast<double>(persistentDays) / static_cast<double>(days);
    return summary;
}

double medianSpell(std::span<const int> spells, double missingCode) {
    if (spells.empty()) {
        return missingCode;
    }
    if (spells.size() == 1) {
        return spells.front();
    }
    std::vector<int> lengths(spells.begin(), spells.end());
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

// Wet and dry spells: runs of wet or of dry days, each closed by a missing value, a
// sentinel or a change of class. A missing value or a sentinel leaves the class open
// ("?") until the next real value.
void spellsPass(const Kinds& kinds, int row, const EngineSettings& settings, ResultTable& table) {
    const double missing = settings.missingCode;
    if (!rowActive(kinds) || kinds.size() <= 2) {
        setColumns(table, row, SpellColumns, missing);
        return;
    }
    // Runs are closed without branching on the random change of class: every step writes
    // the run behind both lists and moves a list's end on only when its spell closes.
    const std::unique_ptr<int[]> wet(new int[kinds.size()]);
    const std::unique_ptr<int[]> dry(new int[kinds.size()]);
    size_t wetCount = 0;
    size_t dryCount = 0;
    // Missing stands for the open class ("?") here.
    auto classOf = [](Kind kind) { return isReal(kind) ? kind : Kind::Missing; };
    Kind current = classOf(kinds[0]);
    int run = 1;
    for (size_t i = 1; i < kinds.size(); ++i) {
        const Kind next = classOf(kinds[i]);
        const bool grows = next == current && next != Kind::Missing;
        wet[wetCount] = run;
        dry[dryCount] = run;
        wetCount += static_cast<size_t>(!grows && current == Kind::Wet);
        dryCount += static_cast<size_t>(!grows && current == Kind::Dry);
        run = grows ? run + 1 : 1;
        current = next;
    }
    const std::span<const int> wetSpells(wet.get(), wetCount);
    const std::span<const int> drySpells(dry.get(), dryCount);
    auto& cells = table[row];
    const SpellSummary wetSummary = summariseSpells(wetSpells);
    const SpellSummary drySummary = summariseSpells(drySpells);
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
        cells[column::MedWet] = medianSpell(wetSpells, missing);
    }
    if (settings.selected[column::MedDry]) {
        cells[column::MedDry] = medianSpell(drySpells, missing);
    }
}

// The counted values of a list, in list order.
void keepCountedValues(Values& values, const Kinds& kinds, const Counting& counting) {
    size_t kept = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        values[kept] = values[i];
        kept += static_cast<size_t>(counting.counted(kinds[i]));
    }
    values.resize(kept);
}

// The months of a season row, 13 Winter to 16 Autumn.
constexpr int SeasonMonths[4][3] = {{12, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}};

// Leaves every list holding its counted values in ascending order and notes which rows
// were active before. Each month's list is sorted by Shell's method; as a season's days
// are those of its three months and the year's those of its four seasons, merging the
// sorted months gives the seasons and merging the seasons the year, the same ascending
// lists that sorting each row would give.
void sortCountedValues(MemberRows& rows, const Counting& counting,
                       std::array<bool, CalendarRowCount + 1>& active) {
    for (int row = 1; row <= CalendarRowCount; ++row) {
        active[row] = rowActive(rows.kinds[row]);
    }
    for (int month = 1; month <= 12; ++month) {
        Values& values = rows.values[month];
        keepCountedValues(values, rows.kinds[month], counting);
        shellSort(values.data(), values.size());
    }
    auto mergeInto = [](Values& target, const Values& a, const Values& b) {
        target.resize(a.size() + b.size());
        std::merge(a.begin(), a.end(), b.begin(), b.end(), target.begin());
    };
    Values pair;
    for (int season = 0; season < 4; ++season) {
        const auto& months = SeasonMonths[season];
        mergeInto(pair, rows.values[months[0]], rows.values[months[1]]);
        mergeInto(rows.values[13 + season], pair, rows.values[months[2]]);
    }
    Values summerAutumn;
    mergeInto(pair, rows.values[13], rows.values[14]);
    mergeInto(summerAutumn, rows.values[15], rows.values[16]);
    mergeInto(rows.values[AnnualRow], pair, summerAutumn);
    for (auto& kinds : rows.kinds) {
        kinds.clear(); // they no longer describe the lists
    }
}

// Median, percentile, IQR and POP of one row whose list holds its counted values sorted.
void medianRow(const Values& list, bool active, const Values& year, int row,
               const EngineSettings& settings, bool wetFilter, ResultTable& table) {
    const double missing = settings.missingCode;
    auto& cells = table[row];
    if (!active) {
        setColumns(table, row,
                   {column::Percentile, column::Median, column::Iqr, column::Pop, column::PopTot},
                   missing);
        return;
    }
    const size_t n = list.size();
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
    if (n <= 1 || !wetFilter) {
        setColumns(table, row, {column::Pop, column::PopTot}, missing);
        return;
    }
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

void medianPass(MemberRows& rows, const EngineSettings& settings, ResultTable& table,
                const RowStep& beforeRow) {
    const Counting counting(settings);
    std::array<bool, CalendarRowCount + 1> active{};
    sortCountedValues(rows, counting, active);
    for (int row = CalendarRowCount; row >= 1; --row) {
        beforeRow(row);
        medianRow(rows.values[row], active[row], rows.values[AnnualRow], row, settings,
                  counting.wetFilter, table);
    }
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

void runPass(Pass pass, MemberRows& rows, const EngineSettings& settings, ResultTable& table,
             const RowStep& beforeRow) {
    if (pass == Pass::MedianPercentiles) {
        medianPass(rows, settings, table, beforeRow);
        return;
    }
    for (int row = 1; row <= CalendarRowCount; ++row) {
        beforeRow(row);
        const Values& values = rows.values[row];
        const Kinds& kinds = rows.kinds[row];
        switch (pass) {
        case Pass::First:
            firstPass(values, kinds, row, settings, table);
            break;
        case Pass::Moments:
            momentsPass(values, kinds, row, settings, table);
            break;
        case Pass::NDayTotal:
            nDayTotalPass(values, kinds, row, settings, table);
            break;
        case Pass::Autocorrelation:
            autocorrelationPass(values, kinds, row, settings, table);
            break;
        case Pass::Spells:
            spellsPass(kinds, row, settings, table);
            break;
        case Pass::MedianPercentiles:
            break;
        }
    }
}

ResultTable memberStatistics(MemberRows& rows, const EngineSettings& settings,
                             core::Progress& progress) {
    classifyEntries(rows, settings.missingCode, settings.thresh);
    ResultTable table = filledTable(0.0);
    for (const Pass pass : passesFor(settings)) {
        runPass(pass, rows, settings, table, [&](int row) {
            progress.report(row, CalendarRowCount, passCaption(pass));
            progress.throwIfStopped();
        });
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
