#include "screens/chart_sources.hpp"

#include "calibration/calibration_report.hpp"
#include "charts/chart_builders.hpp"

namespace varo::screens {

charts::ChartModel scatterAnalysisChart(const screening::ScatterData& data,
                                        const core::ProgramState& state) {
    std::vector<double> x;
    std::vector<double> y;
    x.reserve(data.points.size());
    y.reserve(data.points.size());
    for (const screening::ScatterPoint& point : data.points) {
        x.push_back(point.x);
        y.push_back(point.y);
    }
    return charts::scatterChart(data.title, data.xTitle, data.yTitle, std::move(x), std::move(y),
                                state);
}

charts::ChartModel residualScatterChart(const std::vector<calibration::ResidualPair>& pairs,
                                        const core::ProgramState& state) {
    std::vector<double> fitted;
    std::vector<double> residuals;
    fitted.reserve(pairs.size());
    residuals.reserve(pairs.size());
    for (const calibration::ResidualPair& pair : pairs) {
        fitted.push_back(pair.fitted);
        residuals.push_back(pair.residual);
    }
    return charts::residualScatterChart(std::move(fitted), std::move(residuals), state);
}

charts::ChartModel residualHistogramChart(const std::vector<calibration::ResidualPair>& pairs,
                                          int bars, const core::ProgramState& state) {
    calibration::ResidualHistogram histogram = calibration::residualHistogram(pairs, bars);
    return charts::histogramChart(
        std::move(histogram.labels),
        std::vector<double>(histogram.counts.begin(), histogram.counts.end()), state);
}

} // namespace varo::screens
