// A scenario run: a daily series file in, the same series perturbed by up to four
// treatments out, as an OUT file (without a SIM file).
//
// The run checks that its output can be written, then reads the whole input (`ScenarioData`)
// and applies the treatments in their order: occurrence; the member means and deviations,
// when the variance is to change, so that they belong to the series after the occurrence
// and before the amounts; amount; variance; trend. Only then is the output written, whole
// (`writeScenarioData`). A failure, a stop with a message of its own (`core::RunStopped`)
// or a cancel before that leaves no output and an earlier file of the output's name as it
// was; the input is only ever read.
#pragma once

#include "core/dates.hpp"
#include "core/notices.hpp"
#include "core/progress.hpp"
#include "core/random.hpp"
#include "core/record_calendar.hpp"
#include "scenario/amount.hpp"
#include "scenario/occurrence.hpp"
#include "scenario/scenario_data.hpp"
#include "scenario/series_scope.hpp"
#include "scenario/trend.hpp"

#include <optional>
#include <string>

namespace varo::scenario {

struct ScenarioRequest {
    std::string inPath;
    std::string outPath;
    int ensembleSize = 1;
    SeriesScope scope;
    SeriesStart start;       // the calendar and first date, for the months of the occurrence
    int yearIndicator = 366; // for the linear trend
    std::optional<OccurrenceTreatment> occurrence;
    std::optional<AmountTreatment> amount;
    std::optional<float> varianceFactor; // (change + 100) / 100
    std::optional<TrendTreatment> trend;
};

struct ScenarioResult {
    long dayCount = 0;
    // The Box-Cox exponent of the last member, for a conditional variance treatment.
    std::optional<double> lamda;
};

// Runs the whole scenario; `random` is drawn in the required order by the occurrence
// treatment alone (the screen seeds it from the clock). Warnings go to `notifier`. Throws
// `core::Failure`, `core::RunStopped` and `core::Cancelled` as told above.
ScenarioResult runScenario(const ScenarioRequest& request, core::UniformRandom& random,
                           core::Progress& progress, core::Notifier& notifier);

// The text of the "Results" box: "Scenario Generated.", the days processed and, after a
// conditional variance treatment, "Lamda for BoxCox transform: " with the exponent in the
// general number form; lines separated by CR LF.
std::string resultsText(const ScenarioResult& result);

} // namespace varo::scenario
