// Helpers of the calibration tests: a progress that stops on a chosen report, a notifier
// that keeps what it was told, matrices and reference numbers from data files, and the
// six-year record that the whole-run tests calibrate.
#pragma once

#include "calibration/calibrate_driver.hpp"
#include "calibration/matrix_object.hpp"
#include "core/dates.hpp"
#include "core/notices.hpp"
#include "core/progress.hpp"
#include "core/series_file.hpp"
#include "support/reference_lines.hpp"

#include <array>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace varo::testing {

// Counts reports; asks for a stop once the count reaches `stopAt` (0: never).
class CountingProgress final : public core::Progress {
public:
    explicit CountingProgress(long stopAt = 0) : stopAt_(stopAt) {}
    void report(long current, long total, std::string_view caption) override {
        ++reports;
        if (captions.empty() || captions.back() != caption) {
            captions.emplace_back(caption);
        }
        lastCurrent = current;
        lastTotal = total;
        if (stopAt_ > 0 && reports == stopAt_) {
            stop_ = true;
        }
    }
    bool stopRequested() override {
        const bool was = stop_;
        stop_ = false;
        return was;
    }
    long reports = 0;
    long lastCurrent = 0;
    long lastTotal = 0;
    std::vector<std::string> captions; // each change of caption, in order

private:
    long stopAt_;
    bool stop_ = false;
};

class RecordingNotifier final : public core::Notifier {
public:
    void warning(std::string_view title, std::string_view text) override {
        warnings.push_back(std::string(title) + ": " + std::string(text));
    }
    void information(std::string_view title, std::string_view text) override {
        informations.push_back(std::string(title) + ": " + std::string(text));
    }
    std::vector<std::string> warnings;
    std::vector<std::string> informations;
};

// A one-column matrix of the values, and the values of a matrix's column.
inline calibration::MatrixObject column(const std::vector<double>& values) {
    calibration::MatrixObject m(static_cast<int>(values.size()), 1);
    for (size_t r = 0; r < values.size(); ++r) {
        m.setValue(static_cast<int>(r), 0, values[r]);
    }
    return m;
}

inline std::vector<double> values(const calibration::MatrixObject& m, int col = 0) {
    std::vector<double> out;
    for (int r = 0; r < m.rows(); ++r) {
        out.push_back(m.getValue(r, col));
    }
    return out;
}

// Rows of "y x1 .. xk" read from a data file: Y, and X with its column of ones.
struct Design {
    calibration::MatrixObject x;
    calibration::MatrixObject y;
};

inline Design readDesign(const std::string& path, int rows, int predictors) {
    core::SeriesReader reader(path);
    Design design{calibration::MatrixObject(rows, predictors + 1),
                  calibration::MatrixObject(rows, 1)};
    for (int r = 0; r < rows; ++r) {
        design.y.setValue(r, 0, static_cast<float>(reader.readNumber()));
        design.x.setValue(r, 0, 1.0);
        for (int j = 1; j <= predictors; ++j) {
            design.x.setValue(r, j, static_cast<float>(reader.readNumber()));
        }
    }
    return design;
}

// Sum of absolute deviations of the centred problem for the given slopes.
inline double centredObjective(const calibration::MatrixObject& x,
                               const calibration::MatrixObject& y,
                               const calibration::MatrixObject& beta) {
    const int n = y.rows();
    const int k = x.columns() - 1;
    std::vector<double> xbar(static_cast<size_t>(k) + 1, 0.0);
    for (int j = 1; j <= k; ++j) {
        xbar[j] = x.columnSum(j) / n;
    }
    const double ybar = y.columnSum(0) / n;
    double total = 0.0;
    for (int r = 0; r < n; ++r) {
        double fit = 0.0;
        for (int j = 1; j <= k; ++j) {
            fit += beta.getValue(j, 0) * (x.getValue(r, j) - xbar[j]);
        }
        total += std::fabs(y.getValue(r, 0) - ybar - fit);
    }
    return total;
}

// tests/data/calibration/driver: rain.dat, mslp.dat and shum.dat hold 1961 to 1966.
inline const std::string DriverData = std::string(VARO_TEST_DATA) + "/calibration/driver";

inline core::ProgramState sixYearState() {
    core::ProgramState state;
    core::initialiseState(state);
    state.globalSDate = {1, 1, 1961};
    state.globalEDate = {31, 12, 1966};
    state.thresh = 0.0f;
    return state;
}

// Rain from the two predictors, fitted over 1962 to `fitEnd`.
inline calibration::CalibrationRequest driverRequest(calibration::ModelType type, bool conditional,
                                                     core::Date fitEnd = {31, 12, 1966}) {
    calibration::CalibrationRequest r;
    r.data.predictandPath = DriverData + "/rain.dat";
    r.data.predictorPaths = {DriverData + "/mslp.dat", DriverData + "/shum.dat"};
    r.data.fitStart = core::Date{1, 1, 1962};
    r.data.fitEnd = fitEnd;
    r.data.fitDays = core::dayDifference(r.data.fitStart, fitEnd) + 1;
    r.data.modelType = type;
    r.predictandName = "rain.dat";
    r.fitStartText = "01/01/1962";
    r.conditional = conditional;
    return r;
}

// Runs `calibrate` and keeps what it reported, warned and remembered between runs.
struct Calibrator {
    CountingProgress progress;
    RecordingNotifier notifier;
    std::array<double, 12> meanRatio{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

    calibration::CalibrationResults operator()(const core::ProgramState& state,
                                               const calibration::CalibrationRequest& r) {
        return calibration::calibrate(state, r, meanRatio, progress, notifier);
    }
};

} // namespace varo::testing
