#include "robustness/base_set.hpp"

#include "robustness/case_runner.hpp"
#include "sampledata/sample_data.hpp"

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace varo::robustness {

namespace fs = std::filesystem;

namespace {

const std::string BaseSettings = "[VARO]\r\n"
                                 "YearIndicator=366\r\n"
                                 "GlobalSDate=01/01/1961\r\n"
                                 "GlobalEDate=31/12/1970\r\n"
                                 "AllowNeg=True\r\n"
                                 "RandomSeed=False\r\n"
                                 "Thresh=0\r\n"
                                 "GlobalMissingCode=-999\r\n";

std::string readText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("the base set lacks " + path);
    }
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::map<std::string, std::string> folderTexts(const std::string& folder) {
    std::map<std::string, std::string> texts;
    for (const auto& entry : fs::directory_iterator(folder)) {
        texts[entry.path().filename().string()] = readText(entry.path().string());
    }
    return texts;
}

// Runs the real program in the base folder; a base step that fails ends every test.
void runStep(const std::string& folder, std::vector<std::string> arguments) {
    ChildRequest request;
    request.arguments = {varoProgram(), "--settings", "VARO.INI", "--quiet"};
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    request.environment = childEnvironment(folder, false);
    request.workingFolder = folder;
    request.timeLimit = std::chrono::seconds(60);
    const ChildResult result = runChild(request);
    if (result.exitCode != 0) {
        std::string line;
        for (const std::string& argument : arguments) {
            line += ' ' + argument;
        }
        throw std::runtime_error("making the base set, varo" + line +
                                 " failed: " + shown(result.err, 2000));
    }
}

struct BaseHolder {
    BaseSet set;
    ~BaseHolder() {
        if (std::getenv("VARO_ROBUSTNESS_KEEP") == nullptr) {
            std::error_code error;
            fs::remove_all(set.folder, error);
        }
    }
};

std::unique_ptr<BaseHolder> makeBase() {
    auto holder = std::make_unique<BaseHolder>();
    BaseSet& base = holder->set;
    base.folder = makeTemporaryFolder("varo-robustness-base-");
    sampledata::SampleOptions options;
    options.lastYear = 1962;
    options.futureLastYear = 1970;
    const auto files = sampledata::writeSampleData(base.folder, options);
    base.days = files.days;
    base.futureDays = files.futureDays;
    base.settings = BaseSettings;
    std::ofstream(base.folder + "/VARO.INI", std::ios::binary) << base.settings;

    const std::vector<std::string> fit{"--start", "01/01/1961", "--end", "31/12/1962"};
    std::vector<std::string> temperature{"calibrate", "tmax.dat"};
    for (const char* name : TemperaturePredictors) {
        temperature.push_back(std::string("predictors/") + name);
    }
    temperature.insert(temperature.end(), {"-o", "tmax.PAR"});
    temperature.insert(temperature.end(), fit.begin(), fit.end());
    runStep(base.folder, temperature);
    std::vector<std::string> rain{"--set", "ModelTransformation=2", "calibrate", "precip.dat"};
    for (const char* name : PrecipitationPredictors) {
        rain.push_back(std::string("predictors/") + name);
    }
    rain.insert(rain.end(), {"-o", "precip.PAR", "--process", "conditional"});
    rain.insert(rain.end(), fit.begin(), fit.end());
    runStep(base.folder, rain);
    runStep(base.folder,
            {"generate", "tmax.PAR", "--predictors", "predictors", "-o", "tmax.OUT", "--start",
             "01/01/1961", "--days", std::to_string(base.days), "--ensemble", "5"});
    std::vector<std::string> stats{"stats", "tmax.OUT",       "-o", "results.txt", "--stats",
                                   "Mean",  "--ensemble-mean"};
    stats.insert(stats.end(), fit.begin(), fit.end());
    runStep(base.folder, stats);

    base.precipitation = readText(files.precipitation);
    base.temperature = readText(files.maximumTemperature);
    base.predictors = folderTexts(files.predictorFolder);
    base.futurePredictors = folderTexts(files.futureFolder);
    base.temperatureModel = readText(base.folder + "/tmax.PAR");
    base.precipitationModel = readText(base.folder + "/precip.PAR");
    base.outFile = readText(base.folder + "/tmax.OUT");
    base.simFile = readText(base.folder + "/tmax.SIM");
    base.results = readText(base.folder + "/results.txt");
    return holder;
}

} // namespace

const BaseSet& baseSet() {
    static const std::unique_ptr<BaseHolder> holder = makeBase();
    return holder->set;
}

} // namespace varo::robustness
