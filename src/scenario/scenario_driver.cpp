#include "scenario/scenario_driver.hpp"

#include "core/number_format.hpp"
#include "scenario/variance.hpp"

namespace varo::scenario {

ScenarioResult runScenario(const ScenarioRequest& request, core::UniformRandom& random,
                           core::Progress& progress, core::Notifier& notifier) {
    checkOutputWritable(request.outPath);
    ScenarioData data = readScenarioData(request.inPath, request.ensembleSize, progress);
    const SeriesScope& scope = request.scope;
    if (request.occurrence) {
        applyOccurrence(data, *request.occurrence, scope, request.start, random, progress,
                        notifier);
    }
    std::vector<MemberStatistics> statistics;
    if (request.varianceFactor) {
        statistics = memberStatistics(data, scope);
    }
    if (request.amount) {
        applyAmount(data, *request.amount, scope, progress);
    }
    ScenarioResult result;
    result.dayCount = data.dayCount;
    if (request.varianceFactor) {
        result.lamda = applyVariance(data, *request.varianceFactor, statistics, scope, progress);
    }
    if (request.trend) {
        applyTrend(data, *request.trend, request.yearIndicator, scope, progress);
    }
    writeScenarioData(request.outPath, data, progress);
    return result;
}

std::string resultsText(const ScenarioResult& result) {
    std::string text =
        "Scenario Generated.\r\n" + std::to_string(result.dayCount) + " days processed.";
    if (result.lamda) {
        text += "\r\nLamda for BoxCox transform: " + core::generalText(*result.lamda);
    }
    return text;
}

} // namespace varo::scenario
