#include "statistics/analysis_run.hpp"

#include "core/notices.hpp"

#include <algorithm>

namespace varo::statistics {

namespace {

std::vector<int> membersToCompute(int memberCount, const EnsembleChoice& ensemble) {
    if (memberCount == 1) {
        return {0};
    }
    if (!ensemble.mean) {
        if (ensemble.member < 1 || ensemble.member > memberCount) {
            throw core::RunStopped("Ensemble member does not exist in data file.");
        }
        return {ensemble.member - 1};
    }
    std::vector<int> members(static_cast<size_t>(memberCount));
    for (int m = 0; m < memberCount; ++m) {
        members[static_cast<size_t>(m)] = m;
    }
    return members;
}

} // namespace

PeriodResults analysePeriod(const series::DataSource& source, const core::Date& start,
                            const core::Date& end, const EngineSettings& settings,
                            const EnsembleChoice& ensemble, core::Progress& progress) {
    progress.report(0, 100, caption::AnalysingScenario);
    const std::vector<int> members = membersToCompute(source.memberCount, ensemble);
    series::PeriodValues data = series::readPeriod(source, start, end, progress);
    const RowLayout layout(data.days);

    // The lists of the members to compute stay for all the passes; every member of the file
    // counts towards the largest number of blocks holding data.
    std::vector<MemberRows> lists(members.size());
    std::array<int, CalendarRowCount + 1> counts{};
    MemberRows scratch;
    size_t next = 0;
    for (int m = 0; m < data.memberCount; ++m) {
        const bool computed = next < members.size() && members[next] == m;
        MemberRows& rows = computed ? lists[next++] : scratch;
        layout.fill(data.member(m), settings.missingCode, settings.thresh, rows);
        for (int row = 1; row <= CalendarRowCount; ++row) {
            counts[row] = std::max(counts[row], blocksWithData(rows.kinds[row]));
        }
    }
    data = series::PeriodValues{};

    std::vector<ResultTable> tables(members.size(), filledTable(0.0));
    const std::vector<Pass> passes = passesFor(settings);
    const long totalSteps = static_cast<long>(passes.size() * members.size()) * CalendarRowCount;
    long step = 0;
    for (const Pass pass : passes) {
        for (size_t i = 0; i < members.size(); ++i) {
            runPass(pass, lists[i], settings, tables[i], [&](int) {
                progress.report(step, totalSteps, passCaption(pass));
                if (pass == Pass::NDayTotal) {
                    progress.report(step, totalSteps, caption::MaxNDayTotal);
                }
                ++step;
                progress.throwIfStopped();
            });
        }
    }
    for (ResultTable& table : tables) {
        finishSums(table, counts, settings.missingCode);
    }
    if (tables.size() == 1) {
        return PeriodResults{tables.front(), std::nullopt};
    }
    return ensembleMean(tables, settings.missingCode);
}

AnalysisResults runAnalysis(const AnalysisRequest& request, core::Progress& progress) {
    EngineSettings settings = request.settings;
    settings.momentsForTests = request.deltas;
    AnalysisResults results;
    results.base = analysePeriod(request.source, request.start, request.end, settings,
                                 request.ensemble, progress);
    if (!request.deltas) {
        return results;
    }
    DeltaResults delta;
    for (size_t p = 0; p < 3; ++p) {
        const PeriodResults period =
            analysePeriod(request.source, request.periodStart[p], request.periodEnd[p], settings,
                          request.ensemble, progress);
        delta.deltas[p] = deltaTable(results.base.values, period.values, settings.selected,
                                     request.deltaKind, settings.missingCode);
        delta.tests[p] = tTests(results.base.values, period.values, settings.missingCode);
    }
    results.delta = delta;
    return results;
}

} // namespace varo::statistics
