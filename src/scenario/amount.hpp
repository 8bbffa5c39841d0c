// The amount treatment: every treated value scaled by a factor or shifted by an addition.
#pragma once

#include "core/progress.hpp"
#include "scenario/scenario_data.hpp"
#include "scenario/series_scope.hpp"

#include <string_view>

namespace varo::scenario {

inline constexpr std::string_view AmountCaption = "Applying Amount";

enum class AmountKind { Factor, Addition };

struct AmountTreatment {
    AmountKind kind = AmountKind::Factor;
    float factor = 1.0f;   // (percentage + 100) / 100, in single precision
    double addition = 0.0; // added to each treated value
};

// Multiplies (in double precision) or adds to each value the scope treats: on a conditional
// series the wet values only, so that a dry 0 stays 0. Reports "Applying Amount" and tests
// for a stop once a member.
void applyAmount(ScenarioData& data, const AmountTreatment& treatment, const SeriesScope& scope,
                 core::Progress& progress);

} // namespace varo::scenario
