// The data of a calibration: one pass over the predictand and predictor files, days
// grouped by month, season or year, and the design matrices of a group.
//
// The files are read together, one value from each a day, from the record start through
// the skip to the fit start and on to the fit end. A day with the missing code in any file
// is dropped. Kept days are stored in single precision in the next free place of their
// group, and runs of consecutive kept days of a group form its sections: a new section
// opens at the first kept day after a dropped day and at each entry into a group after
// leaving it. The autoregressive lag pairs a day with the day before it within a section
// (across the whole year for an annual model).
#pragma once

#include "calibration/matrix_object.hpp"
#include "core/dates.hpp"
#include "core/program_state.hpp"

#include <array>
#include <string>
#include <vector>

namespace varo::calibration {

enum class ModelType { Monthly = 0, Seasonal = 1, Annual = 2 };

int groupCount(ModelType type);
// The group (1-based) of a month: the month, its season, or 1.
int groupOfMonth(ModelType type, int month);
// The months (1 to 12) of a group, January first.
std::vector<int> monthsOfGroup(ModelType type, int group);
// "January" .. "December", "Winter" .. "Autumn", or "Annual".
std::string groupName(const core::ProgramState& state, ModelType type, int group);

// What a calibration reads.
struct CalibrationData {
    std::string predictandPath;
    std::vector<std::string> predictorPaths; // in model order
    core::Date fitStart;
    core::Date fitEnd;
    long fitDays = 0; // days in the fit period, which size the groups
    ModelType modelType = ModelType::Monthly;
};

inline constexpr int MaxSeries = 100;
inline constexpr int MaxSections = 200;
inline constexpr int MinimumGroupDays = 10;

class DayCube {
public:
    DayCube(ModelType type, int series, long fitDays);

    ModelType modelType() const { return type_; }
    int groups() const { return groupCount(type_); }
    int series() const { return series_; }
    // Kept days of a group (1-based).
    int count(int group) const { return counts_[static_cast<size_t>(group - 1)]; }
    const std::vector<int>& sectionLengths(int group) const {
        return sections_[static_cast<size_t>(group - 1)];
    }
    // Series 0 is the predictand, 1.. the predictors; days count from 0 within the group.
    float value(int group, int day, int series) const {
        return values_[(static_cast<size_t>(group - 1) * capacity_ + static_cast<size_t>(day)) *
                           static_cast<size_t>(series_) +
                       static_cast<size_t>(series)];
    }

    // Stores a kept day of a group, opening a new section first when asked. Overrunning the
    // days or sections a group holds is failure 9.
    void store(int group, const std::vector<double>& day, bool newSection);

private:
    ModelType type_;
    int series_;
    size_t capacity_;
    std::vector<float> values_;
    std::array<int, 12> counts_{};
    std::array<std::vector<int>, 12> sections_;
};

// Reads the files of a calibration in one pass (`series::DailyFiles` over the record of the
// settings). Progress shows "Reading Data" (and "Skipping Unnecessary Data" while the skip
// goes on) and a stop request throws `core::Cancelled`. File problems are the failures of
// `core::SeriesReader`: 53 for a missing file, 62 for a file that ends before the fit end
// (naming the dates in use, or, when no day had a value in every file, why), 13 for a
// token that is no number.
DayCube readDayCube(const core::ProgramState& state, const CalibrationData& data,
                    core::Progress& progress);

struct GroupDesign {
    MatrixObject x; // 1.0, the predictors, then the lag column when asked
    MatrixObject y;
};

// X and Y of a group. With the lag, an unconditional model's lag column is the previous
// day's predictand and a conditional model's is 1.0 when that was wet and 0.0 otherwise.
// Monthly and seasonal models pair days within sections only, and a section of one day
// leaves an unfilled row of zeros at the end of the matrices.
GroupDesign buildGroupDesign(const DayCube& cube, int group, bool lag, bool conditional,
                             float thresh);

} // namespace varo::calibration
