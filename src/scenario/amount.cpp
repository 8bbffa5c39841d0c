#include "scenario/amount.hpp"

namespace varo::scenario {

void applyAmount(ScenarioData& data, const AmountTreatment& treatment, const SeriesScope& scope,
                 core::Progress& progress) {
    const double factor = treatment.factor;
    for (int m = 0; m < data.memberCount(); ++m) {
        progress.report(m, data.memberCount(), AmountCaption);
        progress.throwIfStopped();
        for (double& value : data.members[static_cast<size_t>(m)]) {
            if (!scope.treated(value)) {
                continue;
            }
            value =
                treatment.kind == AmountKind::Factor ? value * factor : value + treatment.addition;
        }
    }
    progress.report(data.memberCount(), data.memberCount(), AmountCaption);
}

} // namespace varo::scenario
