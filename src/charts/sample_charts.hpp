// A sample chart for each chart screen, made from fixed synthetic data that look like the
// analyses' own (monthly means, a predictor against a predictand, residuals, annual
// statistics, return periods), so that the screenshot mode can show every chart screen
// without the files of a study. The same model comes out on every run.
#pragma once

#include "charts/chart_model.hpp"
#include "core/program_state.hpp"

#include <vector>

namespace varo::charts {

ChartModel sampleChart(ChartScreen screen, const core::ProgramState& state);

// The seven chart screens in the order of their table.
const std::vector<ChartScreen>& allChartScreens();

} // namespace varo::charts
