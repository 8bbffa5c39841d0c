#include "screening/scatter.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/numeric_text.hpp"
#include "core/record_calendar.hpp"

#include <optional>

namespace varo::screening {

namespace {

// Days the progress bar counts: a season is a quarter of the period, a month a twelfth.
long progressDays(long days, int period) {
    if (period >= 1 && period <= 4) {
        return static_cast<long>(core::roundHalfEven(static_cast<double>(days) / 4));
    }
    if (period >= 5) {
        return static_cast<long>(core::roundHalfEven(static_cast<double>(days) / 12));
    }
    return days;
}

series::DailyFiles openFiles(const ScreeningRequest& request, const core::ProgramState& state) {
    try {
        return screeningFiles(request, state);
    } catch (const core::Failure&) {
        throw core::RunStopped("Could not find selected file.  Please retry.");
    }
}

} // namespace

ScatterData scatterData(const ScreeningRequest& request, const core::ProgramState& state,
                        core::Progress& progress) {
    ScreeningRequest opened = request;
    if (request.autoregression || request.predictorPaths.size() > 1) {
        opened.predictorPaths.resize(request.autoregression ? 0 : 1);
    }
    series::DailyFiles files = openFiles(opened, state);
    ScatterData data;
    data.yTitle = core::bareFileName(request.predictandPath);
    data.xTitle = request.autoregression ? std::string(AutoregressionName)
                                         : core::bareFileName(opened.predictorPaths.at(0));

    files.skipToStart(progress);
    data.progressDays =
        progressDays(core::daysInclusive(request.fitStart, request.fitEnd), request.period);

    const double missingCode = state.globalMissingCode;
    double previous = missingCode;
    if (request.autoregression) {
        previous = files.readDay()[0];
    }
    long day = 0;
    while (files.inPeriod()) {
        progress.report(day, data.progressDays, "Generating Scatter Plot");
        progress.throwIfStopped();
        const int month = files.position().month();
        const std::vector<double>& values = files.readDay();
        const double y = values[0];
        const double x = request.autoregression ? previous : values[1];
        previous = y;
        if (core::monthPassesPeriod(month, request.period)) {
            ++day;
            if (x == missingCode || y == missingCode) {
                ++data.missingCount;
            } else if (!request.conditional || isEvent(y, state.thresh)) {
                if (static_cast<long>(data.points.size()) == MaxScatterPoints) {
                    throw core::Failure(core::failure::OverflowOccurred,
                                        "More than " + std::to_string(MaxScatterPoints) +
                                            " points, more than a scatter chart can show: "
                                            "choose a shorter fit period or a season or "
                                            "month.");
                }
                data.points.push_back({x, y});
            }
        }
    }
    data.title = std::to_string(data.missingCount) + " missing value(s): " + data.yTitle;
    return data;
}

} // namespace varo::screening
