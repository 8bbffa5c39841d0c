#include "core/program_state.hpp"

#include <cstdlib>

namespace varo::core {

namespace {

const PredictorEntry PredictorTableRows[] = {
    {"temp", "Mean temperature at 2m"},         {"mslp", "Mean sea level pressure"},
    {"p500", "500 hPa geopotential height"},    {"p850", "850 hPa geopotential height"},
    {"rhum", "Near surface relative humidity"}, {"r500", "Relative humidity at 500 hPa"},
    {"r850", "Relative humidity at 850 hPa"},   {"sphu", "Near surface specific humidity"},
    {"p__f", "Surface airflow strength"},       {"p__z", "Surface vorticity"},
    {"p__v", "Surface meridional velocity"},    {"p__u", "Surface zonal velocity"},
    {"p_th", "Surface wind direction"},         {"p_zh", "Surface divergence"},
    {"p5_f", "500 hPa airflow strength"},       {"p5_z", "500 hPa vorticity"},
    {"p5_v", "500 hPa meridional velocity"},    {"p5_u", "500 hPa zonal velocity"},
    {"p5th", "500 hPa wind direction"},         {"p5zh", "500 hPa divergence"},
    {"p8_f", "850 hPa airflow strength"},       {"p8_z", "850 hPa vorticity"},
    {"p8_v", "850 hPa meridional velocity"},    {"p8_u", "850 hPa zonal velocity"},
    {"p8th", "850 hPa wind direction"},         {"p8zh", "850 hPa divergence"},
    {"shum", "Surface specific humidity"},      {"s850", "Specific humidity at 850 hPa"},
    {"s500", "Specific humidity at 500 hPa"},   {"dswr", "Solar radiation"},
};

const char* const StatisticNames[] = {
    "Mean",      "Maximum",     "Minimum",     "Median",      "Variance",  "IQR",
    "POT",       "PBT",         "Percentile",  "Sum",         "ACF",       "Skewness",
    "Max_NTot",  "Count",       "Wet-days%",   "Dry-spell",   "Wet-spell", "Max_dspel",
    "Max_wspel", "SD_WetSpell", "SD_DrySpell", "POP",         "POP_Tot",   "Max_Range",
    "Min_Range", "Wet_Persis",  "Dry_Persis",  "Persis_Corr", "Med_Wet",   "Med_Dry",
};

} // namespace

std::string homeFolder() {
    const char* home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? std::string(home) : std::string("/");
}

std::string defaultSettingsPath() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const std::string base =
        config != nullptr && *config != '\0' ? std::string(config) : homeFolder() + "/.config";
    return base + "/varo/VARO.INI";
}

std::int32_t globalDays(const ProgramState& state) {
    return static_cast<std::int32_t>(daysInclusive(state.globalSDate, state.globalEDate));
}

void initialiseState(ProgramState& state) {
    state = ProgramState{};
    state.settingsFile = defaultSettingsPath();
    state.defaultSettingsFile = state.settingsFile;
    state.defaultDir = homeFolder();
    state.defaultDirInitial = state.defaultDir;

    state.predictorTable.assign(std::begin(PredictorTableRows), std::end(PredictorTableRows));
    state.periodNames = {"",         "January", "February", "March",     "April",   "May",
                         "June",     "July",    "August",   "September", "October", "November",
                         "December", "Winter",  "Spring",   "Summer",    "Autumn",  "Annual"};
    state.monthAbbreviations = {"",    "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    state.statisticTable.clear();
    state.statisticTable.reserve(40);
    int row = 1;
    for (const char* name : StatisticNames) {
        const bool selected = row == 1 || row == 2 || row == 3 || row == 5 || row == 10;
        state.statisticTable.push_back({name, selected});
        ++row;
    }
    state.barColours = {Rgb{128, 0, 0}, Rgb{0, 128, 0}, Rgb{64, 0, 0}};
    state.lineColours = {Rgb{0, 255, 0}, Rgb{0, 0, 255}, Rgb{255, 0, 0}};
    state.frequencyColours = {Rgb{0, 255, 0}, Rgb{0, 0, 255}, Rgb{0, 0, 0}};
    state.scatterColour = Rgb{0, 0, 0};
}

int statisticIndex(const ProgramState& state, const std::string& name) {
    for (size_t i = 0; i < state.statisticTable.size(); ++i) {
        if (state.statisticTable[i].name == name) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

bool statisticSelected(const ProgramState& state, int index) {
    return index >= 1 && index <= static_cast<int>(state.statisticTable.size()) &&
           state.statisticTable[index - 1].selected;
}

} // namespace varo::core
