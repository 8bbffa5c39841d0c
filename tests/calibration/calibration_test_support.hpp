// Helpers of the calibration tests: a progress that stops on a chosen report, a notifier
// that keeps what it was told, and matrices from data files.
#pragma once

#include "calibration/matrix_object.hpp"
#include "core/notices.hpp"
#include "core/progress.hpp"
#include "core/series_file.hpp"

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

} // namespace varo::testing
