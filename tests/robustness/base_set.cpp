#include "robustness/base_set.hpp"

#include "robustness/case_runner.hpp"
#include "robustness/mutations.hpp"
#include "sampledata/sample_data.hpp"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

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

// Holds an exclusive lock on a file while it lives.
class FileLock {
public:
    explicit FileLock(const std::string& path)
        : fd_(::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0644)) {
        if (fd_ < 0 || ::flock(fd_, LOCK_EX) != 0) {
            throw std::runtime_error("cannot lock " + path);
        }
    }
    ~FileLock() { ::close(fd_); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int fd_;
};

// The sample data of 1961 and 1962, two models calibrated on them, a run of the temperature
// model and its statistics.
void makeBase(const std::string& folder) {
    fs::create_directories(folder);
    sampledata::SampleOptions options;
    options.lastYear = 1962;
    options.futureLastYear = 1961; // the climate model's files are not used
    sampledata::writeSampleData(folder, options);
    std::ofstream(folder + "/VARO.INI", std::ios::binary) << BaseSettings;

    const std::vector<std::string> fit{"--start", "01/01/1961", "--end", "31/12/1962"};
    std::vector<std::string> temperature{"calibrate", "tmax.dat"};
    for (const char* name : TemperaturePredictors) {
        temperature.push_back(std::string("predictors/") + name);
    }
    temperature.insert(temperature.end(), {"-o", "tmax.PAR"});
    temperature.insert(temperature.end(), fit.begin(), fit.end());
    runStep(folder, temperature);
    std::vector<std::string> rain{"--set", "ModelTransformation=2", "calibrate", "precip.dat"};
    for (const char* name : PrecipitationPredictors) {
        rain.push_back(std::string("predictors/") + name);
    }
    rain.insert(rain.end(), {"-o", "precip.PAR", "--process", "conditional"});
    rain.insert(rain.end(), fit.begin(), fit.end());
    runStep(folder, rain);
    runStep(folder, {"generate", "tmax.PAR", "--predictors", "predictors", "-o", "tmax.OUT",
                     "--start", "01/01/1961", "--days", "730", "--ensemble", "5"});
    std::vector<std::string> stats{"stats", "tmax.OUT",       "-o", "results.txt", "--stats",
                                   "Mean",  "--ensemble-mean"};
    stats.insert(stats.end(), fit.begin(), fit.end());
    runStep(folder, stats);
}

BaseSet readBase(const std::string& folder) {
    BaseSet base;
    base.folder = folder;
    base.settings = BaseSettings;
    base.precipitation = readText(folder + "/precip.dat");
    base.temperature = readText(folder + "/tmax.dat");
    base.predictors = folderTexts(folder + "/predictors");
    base.temperatureModel = readText(folder + "/tmax.PAR");
    base.precipitationModel = readText(folder + "/precip.PAR");
    base.outFile = readText(folder + "/tmax.OUT");
    base.simFile = readText(folder + "/tmax.SIM");
    base.results = readText(folder + "/results.txt");
    base.days = lineCount(base.precipitation);
    return base;
}

// What the base set is made by: the program under test and this test program (which holds
// the sample data's generator). A change of either makes the set anew.
std::string makerKey() {
    std::string key;
    for (const std::string& path : {varoProgram(), std::string("/proc/self/exe")}) {
        struct stat info {};
        ::stat(path.c_str(), &info);
        key += std::to_string(info.st_mtim.tv_sec) + "." + std::to_string(info.st_mtim.tv_nsec) +
               "-" + std::to_string(info.st_size) + "-";
    }
    return key;
}

// The base set is made once for all the test processes of a build, in the build tree.
BaseSet cachedBase() {
    const fs::path home = fs::path(VARO_BINARY_DIR) / "tests" / "robustness";
    fs::create_directories(home);
    const FileLock lock((home / "base-set.lock").string());
    const fs::path folder = home / ("base-set-" + makerKey());
    if (!fs::exists(folder / "complete")) {
        for (const auto& entry : fs::directory_iterator(home)) {
            if (entry.path().filename().string().rfind("base-set-", 0) == 0) {
                fs::remove_all(entry.path());
            }
        }
        makeBase(folder.string());
        std::ofstream(folder / "complete") << "made\n";
    }
    return readBase(folder.string());
}

} // namespace

const BaseSet& baseSet() {
    static const BaseSet base = cachedBase();
    return base;
}

} // namespace varo::robustness
