// Ctrl-C in the middle of every long command that can be cancelled (the quality check
// cannot), and inputs made to exhaust memory: a file
// of hundreds of megabytes without a separator under a tight memory limit, and single
// tokens and lines of 64 MB, which no command may hold whole.
#include "robustness/base_set.hpp"
#include "robustness/case_runner.hpp"
#include "robustness/mutations.hpp"

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace varo::robustness;

namespace {

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

// Sends one SIGINT as soon as the program has its own handler for it and, when a file is
// named, once that file has changed from its earlier size (the output has begun).
std::function<bool(pid_t)> interruptWhen(std::string changedFile = {}) {
    off_t earlier = -1;
    if (!changedFile.empty()) {
        struct stat info {};
        ::stat(changedFile.c_str(), &info);
        earlier = info.st_size;
    }
    return [changedFile, earlier](pid_t pid) {
        if (!changedFile.empty()) {
            struct stat info {};
            if (::stat(changedFile.c_str(), &info) != 0 || info.st_size == earlier) {
                return true;
            }
        }
        if (!catchesSignal(pid, SIGINT)) {
            return true;
        }
        ::kill(pid, SIGINT);
        return false;
    };
}

constexpr int Repeats = 20; // the observed years 20 times: 14,600 days
const std::string LongEnd = "31/12/2000";

// A case with long inputs: a series, the temperature model's predictors and predictand.
Case longCase(CaseRunner& runner, const std::string& name) {
    const BaseSet& base = baseSet();
    // The record runs long enough for the long inputs.
    Case c = runner.start(name, replaceLine(base.settings, 4, "GlobalEDate=31/12/2060"));
    c.write("long.dat", repeated(base.precipitation, Repeats));
    c.write("tmax.dat", repeated(base.temperature, Repeats));
    for (const char* name : TemperaturePredictors) {
        c.write(std::string("predictors/") + name, repeated(base.predictors.at(name), Repeats));
    }
    c.write("model.PAR", base.temperatureModel);
    c.write("run.OUT", base.outFile);
    c.write("run.SIM", base.simFile);
    c.write("results.txt", base.results);
    c.write("out.dat", base.temperature);
    return c;
}

} // namespace

TEST(Robustness, Interrupt) {
    CaseRunner runner("interrupt");
    // At most the record of the model's calibration.
    const std::string days = "3650";
    const std::vector<std::string> generate{"generate", "model.PAR", "--predictors", "predictors",
                                            "-o",       "run.OUT",   "--start",      "01/01/1961",
                                            "--days",   days,        "--ensemble",   "100"};
    struct Interruption {
        std::string name;
        std::vector<std::string> arguments;
        std::set<std::string> writes; // files a stopped run may leave changed, and name
        std::string afterChangeOf;    // interrupt once this file has changed
    };
    const std::vector<Interruption> interruptions{
        {"generate at its start", generate, {"run.OUT", "run.SIM"}},
        {"generate once writing", generate, {"run.OUT", "run.SIM"}, "run.OUT"},
        {"transform", {"transform", "long.dat", "-o", "out.dat", "--op", "sqrt"}, {"out.dat"}},
        {"stats",
         {"stats", "long.dat", "-o", "results.txt", "--stats", "Mean,Max_NTot,Median", "--start",
          "01/01/1961", "--end", LongEnd}},
        {"calibrate",
         {"calibrate", "tmax.dat", "predictors/temp.dat", "predictors/p500.dat",
          "predictors/r850.dat", "-o", "model.PAR", "--start", "01/01/1961", "--end", LongEnd}},
        {"screen",
         {"screen", "correlation", "long.dat", "predictors/temp.dat", "predictors/p500.dat",
          "--start", "01/01/1961", "--end", LongEnd}},
    };
    for (const Interruption& interruption : interruptions) {
        Case c = longCase(runner, interruption.name);
        c.arguments = interruption.arguments;
        c.expect = Expect::Interrupted;
        c.writes = interruption.writes;
        c.whileRunning = interruptWhen(
            interruption.afterChangeOf.empty() ? "" : c.path(interruption.afterChangeOf));
        if (!c.writes.empty()) {
            c.guards = Guards::ExitStatus;
        }
        runner.run(c);
    }
    runner.report();
}

namespace {

// A file of `size` bytes that starts with `start` and holds zero bytes after it, made
// sparse so that it costs neither time nor disk.
void sparseFile(const Case& c, const std::string& relative, const std::string& start,
                std::uintmax_t size) {
    c.write(relative, start);
    std::filesystem::resize_file(c.path(relative), size);
}

constexpr std::uintmax_t Token = 64'000'000;

} // namespace

TEST(Robustness, Memory) {
    const BaseSet& base = baseSet();
    CaseRunner runner("memory");
    // The resident memory of a plain quality check is the baseline of the bound.
    ChildRequest plain;
    plain.arguments = {varoProgram(), "--settings", base.folder + "/VARO.INI", "qc",
                       base.folder + "/precip.dat"};
    plain.environment = childEnvironment(base.folder, false);
    plain.workingFolder = base.folder;
    const long bound = runChild(plain).maxResidentKiB + 48 * 1024;

    struct Hog {
        std::string name;
        std::function<void(Case&)> make;
        std::vector<std::string> arguments;
        Expect expect;
        std::string mention;
        bool bounded; // resident memory stays near the baseline
    };
    const std::vector<Hog> hogs{
        {"300 MB without a separator",
         [](Case& c) { sparseFile(c, "data.dat", "1", 300'000'000); },
         {"qc", "data.dat"},
         Expect::Refused,
         "data.dat",
         false},
        {"a 64 MB token in a data file",
         [&](Case& c) {
             sparseFile(c, "data.dat", base.precipitation + "7", base.precipitation.size() + Token);
         },
         {"qc", "data.dat"},
         Expect::Refused,
         "data.dat",
         true},
        {"a 64 MB line in an OUT file",
         [&](Case& c) {
             sparseFile(c, "run.OUT", firstLines(base.outFile, 4) + "1", Token);
             c.write("run.SIM", base.simFile);
             c.write("results.txt", base.results);
         },
         {"stats", "run.OUT", "-o", "results.txt", "--stats", "Mean", "--ensemble-mean", "--start",
          "01/01/1961", "--end", "31/12/1962"},
         Expect::Refused,
         "run.OUT",
         true},
        {"a 64 MB line in a parameter file",
         [&](Case& c) {
             sparseFile(c, "model.PAR", firstLines(base.temperatureModel, 12) + "t", Token);
             c.write("run.OUT", base.outFile);
             c.write("run.SIM", base.simFile);
             for (const char* name : TemperaturePredictors) {
                 c.write(std::string("predictors/") + name, base.predictors.at(name));
             }
         },
         {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT", "--days", "30"},
         Expect::Refused,
         "model.PAR",
         true},
        {"a 64 MB line in the settings file",
         [&](Case& c) { sparseFile(c, "VARO.INI", base.settings + "Key=", Token); },
         {"settings", "show"},
         Expect::Accepted,
         "",
         true},
    };
    for (const Hog& hog : hogs) {
        Case c = runner.start(hog.name, base.settings);
        hog.make(c);
        c.arguments = hog.arguments;
        c.expect = hog.expect;
        if (!hog.mention.empty()) {
            c.mentions = {hog.mention};
        }
        c.addressSpace = 512ULL << 20;
        c.timeLimit = std::chrono::seconds(6);
        c.residentLimitKiB = hog.bounded ? bound : 0;
        c.guards = Guards::Memory;
        runner.run(c);
    }
    runner.report();
}
