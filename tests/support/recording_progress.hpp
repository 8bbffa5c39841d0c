// A `Progress` for tests: records each caption when it differs from the one before, and
// asks for a stop once, as a confirmed cancel does, after more than a given number of reports.
#pragma once

#include "core/progress.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace varo::testing {

class RecordingProgress final : public core::Progress {
public:
    // Never stops when `stopAfter` is negative.
    explicit RecordingProgress(long stopAfter = -1) : stopAfter_(stopAfter) {}
    void report(long, long, std::string_view caption) override {
        ++reports_;
        if (captions.empty() || captions.back() != caption) {
            captions.emplace_back(caption);
        }
    }
    bool stopRequested() override {
        if (stopped_ || stopAfter_ < 0 || reports_ <= stopAfter_) {
            return false;
        }
        stopped_ = true;
        return true;
    }

    std::vector<std::string> captions;

private:
    long stopAfter_;
    long reports_ = 0;
    bool stopped_ = false;
};

} // namespace varo::testing
