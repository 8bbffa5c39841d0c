// The charts that the screening and calibration screens open, made from what their runs
// produce: the scatter analysis, the residual scatter and the residual histogram.
#pragma once

#include "calibration/regression.hpp"
#include "charts/chart_model.hpp"
#include "core/program_state.hpp"
#include "screening/scatter.hpp"

#include <vector>

namespace varo::screens {

// The scatter analysis: the predictor across, the predictand up; its title ("N missing
// value(s): predictand") is also the window's caption.
charts::ChartModel scatterAnalysisChart(const screening::ScatterData& data,
                                        const core::ProgramState& state);

// The residual scatter of a calibration: "Residual Plot", fitted values across titled
// "Predicted Value (Y')", residuals up titled "Residual".
charts::ChartModel residualScatterChart(const std::vector<calibration::ResidualPair>& pairs,
                                        const core::ProgramState& state);

// The residual histogram of `bars` bars (5 to 100): labels and counts by the half-open bar
// rule of `calibration::residualHistogram`, drawn on the histogram chart.
charts::ChartModel residualHistogramChart(const std::vector<calibration::ResidualPair>& pairs,
                                          int bars, const core::ProgramState& state);

} // namespace varo::screens
