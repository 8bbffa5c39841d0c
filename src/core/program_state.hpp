// The process-wide record of settings, calendar tables, vocabulary tables and chart
// colours. One instance lives as long as the program and is passed by reference to
// whoever reads it; `initialiseState` gives every field its initial value.
#pragma once

#include "core/dates.hpp"
#include "core/model_transformation.hpp"
#include "core/progress.hpp"
#include "core/record_calendar.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace varo::core {

struct PredictorEntry {
    std::string code;
    std::string description;
};

struct StatisticEntry {
    std::string name;
    bool selected = false;
};

struct Rgb {
    int red = 0;
    int green = 0;
    int blue = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

struct DatePeriod {
    Date start;
    Date end;
};

// Parameters of the statistics, edited on the statistics selection screen.
struct StatisticParameters {
    float percentile = 95.0f;
    float peaksOverThreshold = 0.0f;
    float peaksBelowThreshold = 0.0f;
    std::int16_t nDayTotal = 5;
    float potPercentile = 90.0f;
    std::int16_t deltaKind = 1; // 1 percentage, 2 absolute
    DatePeriod basePeriod{{1, 1, 1961}, {31, 12, 1990}};
    DatePeriod periodA{{1, 1, 2011}, {31, 12, 2040}};
    DatePeriod periodB{{1, 1, 2041}, {31, 12, 2070}};
    DatePeriod periodC{{1, 1, 2071}, {31, 12, 2099}};
};

struct ProgramState {
    // Settings (kept in the settings file under keys of the same name). The calendar row
    // and leap days follow from the year length (`calendarInForce`), the days of the
    // standard period from its dates (`globalDays`).
    std::int16_t yearIndicator = 366; // 366, 365 or 360
    float thresh = 0.0f;
    Date globalSDate{1, 1, 1961};
    Date globalEDate{31, 12, 1990};
    double globalMissingCode = -999.0;
    bool allowNeg = true;
    bool randomSeed = true;
    StopFlag stopRequested;
    float biasCorrection = 1.0f;
    ModelTransformation modelTransformation;
    std::int16_t precN = 12;
    std::int16_t precNDefault = 12;
    std::int16_t optimisationChoice = 1; // 1 ordinary least squares, 2 dual simplex
    bool applyStepwise = false;
    bool aicWanted = true;
    std::int16_t conditionalSelection = 1; // 1 stochastic, 2 fixed threshold
    float conditionalThresh = 0.5f;
    std::array<float, 12> monthModification{};
    bool splash = true;
    std::string settingsFile;        // the file that loads and saves use
    std::string defaultSettingsFile; // kept for Reset
    std::string defaultDir;
    std::string defaultDirInitial;

    // Vocabulary tables.
    std::vector<PredictorEntry> predictorTable;
    std::array<std::string, 18> periodNames;        // 1..17
    std::array<std::string, 13> monthAbbreviations; // 1..12
    std::vector<StatisticEntry> statisticTable;     // 30 in use, room for 40
    StatisticParameters statisticParameters;

    // Chart defaults; changed by chart settings screens while the program runs, never saved.
    std::int16_t chartKind = 2;
    std::array<Rgb, 3> barColours;
    std::array<Rgb, 3> lineColours;
    std::array<Rgb, 3> frequencyColours;
    Rgb scatterColour;
    bool frequencyChartFlag = true;
    std::int16_t frequencyChartValue1 = 100;
    std::int16_t frequencyChartValue2 = 20;

    // pi as the nearest single-precision value.
    float piSingle = 3.1415927f;

    // The predictand chosen on the screening screen, remembered for the calibration screen.
    std::string selectedPredictandName;
    std::string selectedPredictandPath;
};

// Fills every field with its initial value. Paths of this platform: the settings file is
// $XDG_CONFIG_HOME/varo/VARO.INI (~/.config/varo/VARO.INI) and the default folder is the
// home folder.
void initialiseState(ProgramState& state);

// Where the settings file lives when nothing says otherwise.
std::string defaultSettingsPath();
std::string homeFolder();

// Days of the standard period, both ends counted (real calendar days in any year length).
std::int32_t globalDays(const ProgramState& state);

// A statistic's place (1-based) in the statistic table, 0 when there is none.
int statisticIndex(const ProgramState& state, const std::string& name);
bool statisticSelected(const ProgramState& state, int index);

} // namespace varo::core
