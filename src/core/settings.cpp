#include "core/settings.hpp"

#include "core/dates.hpp"
#include "core/ini_file.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"

#include <cmath>
#include <optional>

namespace varo::core {

const std::vector<std::string_view> SettingsScreenKeys = {
    "YearIndicator", "GlobalSDate", "GlobalEDate",       "AllowNeg",
    "RandomSeed",    "Thresh",      "GlobalMissingCode", "DefaultDir"};

const std::vector<std::string_view> AdvSettingsScreenKeys = {"PrecN",
                                                             "INIFile",
                                                             "BiasCorrection",
                                                             "ModelTransformation",
                                                             "OptimisationChoice",
                                                             "ConditionalSelection",
                                                             "ConditionalThresh",
                                                             "ApplyStepwise",
                                                             "AICWanted"};

namespace {

std::string trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

std::string trueFalse(bool value) {
    return value ? "True" : "False";
}

// Reads one key at a time from a file that may change part way (the INIFile redirect).
class StartupReader {
public:
    explicit StartupReader(std::string path) : path_(std::move(path)) {}
    void redirect(std::string path) { path_ = std::move(path); }
    // Empty optional for an absent key.
    std::optional<std::string> read(std::string_view key) const {
        std::string value = readSetting(path_, key);
        if (value == MissingText) {
            return std::nullopt;
        }
        return value;
    }

private:
    std::string path_;
};

void loadBoolean(const StartupReader& reader, std::string_view key, bool& field) {
    if (const auto value = reader.read(key)) {
        if (textStartsTrue(*value)) {
            field = true;
        } else if (textStartsFalse(*value)) {
            field = false;
        }
    }
}

void loadDate(const StartupReader& reader, std::string_view key, std::string& field,
              ProgramState& state) {
    if (const auto value = reader.read(key)) {
        if (const auto date = parseDate(*value)) {
            field = formatDate(*date);
            recalculateGlobalDays(state);
        }
    }
}

template <typename Number, typename Convert>
void loadNumber(const StartupReader& reader, std::string_view key, Number& field, Convert convert) {
    if (const auto value = reader.read(key)) {
        if (isNumeric(*value)) {
            field = convert(leadingNumber(*value));
        }
    }
}

std::int16_t oneOrTwo(double value) {
    return std::trunc(value) == 1.0 ? 1 : 2;
}

} // namespace

std::string readSetting(const std::string& path, std::string_view key) {
    // Paths get the long buffer: a settings file path of 30 characters would be cut short.
    const size_t buffer = key == "DefaultDir" || key == "INIFile" ? DirectoryBuffer : ValueBuffer;
    return readProfileString(path, SettingsSection, key, MissingText, buffer);
}

std::optional<std::string> settingsFileProblem(const std::string& path) {
    if (const auto problem = iniFileProblem(path, SettingsSection)) {
        return "The settings file '" + path + "' is not used: " + *problem + ".";
    }
    return std::nullopt;
}

bool textStartsTrue(std::string_view text) {
    return text.substr(0, 4) == "True";
}
bool textStartsFalse(std::string_view text) {
    return text.substr(0, 5) == "False";
}

void recalculateGlobalDays(ProgramState& state) {
    const auto start = parseDate(state.globalSDate);
    const auto end = parseDate(state.globalEDate);
    if (start && end) {
        state.globalDays = static_cast<std::int32_t>(daysInclusive(*start, *end));
    }
}

std::string writtenSettingValue(const ProgramState& state, std::string_view key) {
    if (key == "YearIndicator")
        return std::to_string(state.yearIndicator);
    if (key == "GlobalSDate")
        return state.globalSDate;
    if (key == "GlobalEDate")
        return state.globalEDate;
    if (key == "AllowNeg")
        return trueFalse(state.allowNeg);
    if (key == "RandomSeed")
        return trueFalse(state.randomSeed);
    if (key == "Thresh")
        return generalTextSingle(state.thresh);
    if (key == "GlobalMissingCode")
        return generalText(state.globalMissingCode);
    if (key == "DefaultDir")
        return state.defaultDir;
    if (key == "PrecN")
        return std::to_string(state.precN);
    if (key == "INIFile")
        return state.settingsFile;
    if (key == "BiasCorrection")
        return generalTextSingle(state.biasCorrection);
    if (key == "ModelTransformation")
        return generalTextSingle(state.modelTransformation);
    if (key == "OptimisationChoice")
        return std::to_string(state.optimisationChoice);
    if (key == "ConditionalSelection")
        return std::to_string(state.conditionalSelection);
    if (key == "ConditionalThresh")
        return generalTextSingle(state.conditionalThresh);
    if (key == "ApplyStepwise")
        return trueFalse(state.applyStepwise);
    if (key == "AICWanted")
        return trueFalse(state.aicWanted);
    if (key == "Splash")
        return trueFalse(state.splash);
    return {};
}

void loadStartupSettings(ProgramState& state) {
    StartupReader reader(state.settingsFile);
    const auto yearIndicator = reader.read("YearIndicator");
    if (!yearIndicator) {
        return;
    }
    if (isNumeric(*yearIndicator)) {
        const long long year = roundHalfEven(leadingNumber(*yearIndicator));
        if (year == 360 || year == 365 || year == 366) {
            setYearIndicator(state, static_cast<int>(year));
        }
    }
    loadDate(reader, "GlobalSDate", state.globalSDate, state);
    loadDate(reader, "GlobalEDate", state.globalEDate, state);
    loadBoolean(reader, "AllowNeg", state.allowNeg);
    loadBoolean(reader, "RandomSeed", state.randomSeed);
    loadBoolean(reader, "ApplyStepwise", state.applyStepwise);
    loadNumber(reader, "Thresh", state.thresh, [](double v) { return static_cast<float>(v); });
    loadNumber(reader, "GlobalMissingCode", state.globalMissingCode, [](double v) { return v; });
    loadNumber(reader, "PrecN", state.precN,
               [](double v) { return static_cast<std::int16_t>(roundHalfEven(v)); });
    if (const auto iniFile = reader.read("INIFile")) {
        const std::string path = trimmed(*iniFile);
        if (!path.empty()) {
            state.settingsFile = path;
            reader.redirect(path);
        }
    }
    if (const auto folder = reader.read("DefaultDir")) {
        state.defaultDir = trimmed(*folder);
        state.defaultDirInitial = state.defaultDir;
    }
    loadNumber(reader, "BiasCorrection", state.biasCorrection,
               [](double v) { return static_cast<float>(v); });
    loadNumber(reader, "ModelTransformation", state.modelTransformation,
               [](double v) { return static_cast<float>(v); });
    if (const auto splash = reader.read("Splash")) {
        state.splash = textStartsTrue(*splash);
    }
    if (const auto aic = reader.read("AICWanted")) {
        state.aicWanted = textStartsTrue(*aic);
    }
    loadNumber(reader, "OptimisationChoice", state.optimisationChoice, oneOrTwo);
    loadNumber(reader, "ConditionalSelection", state.conditionalSelection, oneOrTwo);
    loadNumber(reader, "ConditionalThresh", state.conditionalThresh,
               [](double v) { return v < 0.05 || v > 0.95 ? 0.5f : static_cast<float>(v); });
    const auto stepwise = reader.read("ApplyStepwise");
    state.applyStepwise = stepwise && textStartsTrue(*stepwise);
    if (state.applyStepwise) {
        state.optimisationChoice = 1;
    }
}

} // namespace varo::core
