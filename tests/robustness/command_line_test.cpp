// Hostile command lines: dates and numbers out of their range or no dates and numbers at
// all, unknown names, and paths that point an output at an input, at a folder or nowhere.
// Every case has a full set of valid inputs and earlier outputs beside it.
#include "robustness/base_set.hpp"
#include "robustness/case_runner.hpp"
#include "robustness/mutations.hpp"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace varo::robustness;

namespace {

// A case with every input a command may want and the outputs of earlier runs.
Case commandCase(CaseRunner& runner, const std::string& name) {
    const BaseSet& base = baseSet();
    Case c = runner.start(name, base.settings);
    c.write("data.dat", base.precipitation);
    c.write("tmax.dat", base.temperature);
    c.write("temp.dat", base.predictors.at("temp.dat"));
    for (const char* name : TemperaturePredictors) {
        c.write(std::string("predictors/") + name, base.predictors.at(name));
    }
    c.write("model.PAR", base.temperatureModel);
    c.write("run.OUT", base.outFile);
    c.write("run.SIM", base.simFile);
    c.write("results.txt", base.results);
    c.write("out.dat", base.temperature);
    return c;
}

struct Line {
    std::string name;
    std::vector<std::string> arguments;
    Expect expect = Expect::Refused;
    std::vector<std::string> mentions;
    Guards guards = Guards::None;
    std::set<std::string> writes;
};

void runLines(CaseRunner& runner, const std::vector<Line>& lines) {
    for (const Line& line : lines) {
        Case c = commandCase(runner, line.name);
        c.arguments = line.arguments;
        c.expect = line.expect;
        c.mentions = line.mentions;
        c.guards = line.guards;
        c.writes = line.writes;
        runner.run(c);
    }
}

// The commands that take a date, with the date in the place of "D".
std::vector<Line> dateLines(const std::string& date) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> commands{
        {"stats",
         {"stats", "data.dat", "-o", "results.txt", "--stats", "Mean", "--start", date, "--end",
          "31/12/1962"}},
        {"calibrate",
         {"calibrate", "tmax.dat", "temp.dat", "-o", "model.PAR", "--start", date, "--end",
          "31/12/1962"}},
        {"generate",
         {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT", "--start", date,
          "--days", "100", "--ensemble", "2"}},
        {"screen",
         {"screen", "correlation", "data.dat", "temp.dat", "--start", date, "--end", "31/12/1962"}},
        {"--set", {"--set", "GlobalSDate=" + date, "qc", "data.dat"}},
        {"settings set", {"settings", "set", "GlobalSDate", date}},
    };
    std::vector<Line> lines;
    for (const auto& [name, arguments] : commands) {
        std::string label(1, '\'');
        label.append(shown(date, 24)).append("' / ").append(name);
        lines.push_back({label, arguments});
    }
    return lines;
}

} // namespace

TEST(Robustness, Dates) {
    CaseRunner runner("dates");
    // A few dates through every command that takes one, the rest through three.
    for (const std::string& date :
         std::vector<std::string>{"31/02/1961", "", "\x01\x02", std::string(4096, '1')}) {
        runLines(runner, dateLines(date));
    }
    for (const std::string& date :
         std::vector<std::string>{"00/01/1961", "01/13/1961", "99/99/99999", "01/01/1961x", "x",
                                  "01/01/-1", "1961-01-01"}) {
        auto lines = dateLines(date);
        std::erase_if(lines, [](const Line& line) {
            return line.arguments.front() == "calibrate" || line.arguments.front() == "screen" ||
                   line.arguments.front() == "--set";
        });
        runLines(runner, lines);
    }
    const std::vector<std::string> stats{"stats",       "data.dat", "-o",
                                         "results.txt", "--stats",  "Mean"};
    const auto with = [](std::vector<std::string> first, std::vector<std::string> more) {
        first.insert(first.end(), more.begin(), more.end());
        return first;
    };
    runLines(runner, {
                         {"a date without leading zeros",
                          with(stats, {"--start", "1/1/1961", "--end", "31/12/1962"}),
                          Expect::Either,
                          {},
                          Guards::None,
                          {"results.txt"}},
                         {"statistics start after end",
                          with(stats, {"--start", "31/12/1962", "--end", "01/01/1961"})},
                         {"statistics after the data",
                          with(stats, {"--start", "01/01/1963", "--end", "31/12/1964"}),
                          Expect::Refused,
                          {"data.dat"}},
                         {"delta with a bad base period",
                          with(stats, {"--delta", "absolute", "--base", "01/01/1961:x"})},
                         {"calibration after the data",
                          {"calibrate", "tmax.dat", "temp.dat", "-o", "model.PAR", "--start",
                           "01/01/1963", "--end", "31/12/1964"},
                          Expect::Refused,
                          {"tmax.dat"}},
                         {"generation after the predictors",
                          {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT",
                           "--start", "01/01/1963", "--days", "365", "--ensemble", "2"},
                          Expect::Refused,
                          {"temp.dat"},
                          Guards::EarlyOutput},
                         {"generation after the record",
                          {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT",
                           "--start", "01/01/1971", "--days", "10", "--ensemble", "2"},
                          Expect::Refused,
                          {},
                          Guards::EarlyOutput},
                         {"generation before the record",
                          {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT",
                           "--start", "01/01/1950", "--days", "10", "--ensemble", "2"}},
                     });
    runner.report();
}

TEST(Robustness, CommandLineValues) {
    CaseRunner runner("command-line-values");
    std::vector<Line> lines;
    const auto option = [&](const std::string& command, std::vector<std::string> arguments,
                            const std::string& name, const std::vector<std::string>& values) {
        for (const std::string& value : values) {
            auto full = arguments;
            full.insert(full.end(), {name, value});
            lines.push_back({command + " " + name + " '" + shown(value, 24) + "'", full});
        }
    };
    option(
        "generate",
        {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT", "--ensemble", "2"},
        "--days", {"-1", "0", "abc", "1e9", "99999999999999999999", ""});
    option("generate",
           {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT", "--days", "10"},
           "--ensemble", {"0", "101", "-5", "abc", "1e999", ""});
    const std::vector<std::string> transform{"transform", "data.dat", "-o", "out.dat", "--op"};
    const auto transformWith = [&](std::vector<std::string> more) {
        auto full = transform;
        full.insert(full.end(), more.begin(), more.end());
        return full;
    };
    option("transform", transformWith({"lag"}), "--lag",
           {"abc", "99999999999", "-99999999999", "1e999"});
    option("transform", transformWith({"copy"}), "--columns", {"0", "101", "abc", "-1", "1e999"});
    option("transform", transformWith({"binomial"}), "--threshold", {"abc"});
    option("transform", transformWith({"unboxcox", "--shift", "0"}), "--lamda",
           {"nan", "abc", "3"});
    option("transform", transformWith({"unboxcox", "--lamda", "0.5"}), "--shift", {"-1", "1e999"});
    option("transform", {"transform", "run.OUT", "-o", "out.dat", "--op", "copy", "--columns", "5"},
           "--extract", {"0", "6", "abc"});
    const std::vector<std::string> stats{"stats",   "data.dat",   "-o",    "results.txt",
                                         "--start", "01/01/1961", "--end", "31/12/1962"};
    const auto statsWith = [&](std::vector<std::string> more) {
        auto full = stats;
        full.insert(full.end(), more.begin(), more.end());
        return full;
    };
    option("stats", statsWith({"--stats", "Max_NTot"}), "--nday", {"1", "101", "abc"});
    option("stats", statsWith({"--stats", "Percentile"}), "--percentile", {"200", "-1", "abc"});
    option("stats", stats, "--stats", {"NoSuch", "Mean,Max,Min,Sum,Median,Variance,POT,PBT,IQR"});
    option("stats",
           {"stats", "run.OUT", "-o", "results.txt", "--stats", "Mean", "--start", "01/01/1961",
            "--end", "31/12/1962"},
           "--member", {"0", "6", "abc"});
    option("stats", statsWith({"--stats", "POP"}), "--pop-percentile", {"abc", "150"});
    option("calibrate", {"calibrate", "tmax.dat", "temp.dat", "-o", "model.PAR"},
           "--cross-validation", {"1", "11", "abc"});
    option("calibrate", {"calibrate", "tmax.dat", "temp.dat", "-o", "model.PAR"}, "--model",
           {"yearly", ""});
    option("screen", {"screen", "variance", "data.dat", "temp.dat"}, "--sig-level",
           {"2", "abc", "-0.5"});
    for (const std::string assignment : {"Thresh=abc", "YearIndicator=300", "Thresh", "=1"}) {
        lines.push_back({"--set '" + assignment + "'", {"--set", assignment, "qc", "data.dat"}});
    }
    // Odd but not wrong: a fraction of a day rounded, a selection repeated or left empty.
    for (const auto& [name, arguments] :
         std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"generate --days 1.5",
              {"generate", "model.PAR", "--predictors", "predictors", "-o", "run.OUT", "--days",
               "1.5", "--ensemble", "2"}},
             {"stats --stats repeated", statsWith({"--stats", "Mean,Mean,Mean,Mean,Mean,Mean,Mean,"
                                                              "Mean,Mean"})},
             {"stats --stats ',,,'", statsWith({"--stats", ",,,"})},
             {"stats --stats ''", statsWith({"--stats", ""})},
         }) {
        lines.push_back({name,
                         arguments,
                         Expect::Either,
                         {},
                         Guards::None,
                         {"run.OUT", "run.SIM", "results.txt"}});
    }
    // Numbers beyond the range of a double are no numbers.
    for (const auto& [name, arguments] :
         std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"transform --threshold 1e999", transformWith({"binomial", "--threshold", "1e999"})},
             {"--set GlobalMissingCode=1e999",
              {"--set", "GlobalMissingCode=1e999", "qc", "data.dat"}},
         }) {
        lines.push_back({name, arguments, Expect::Refused, {}, Guards::NotANumber});
    }
    lines.push_back({"--set unknown key",
                     {"--set", "NoSuchKey=1", "qc", "data.dat"},
                     Expect::Refused,
                     {"NoSuchKey"}});
    lines.push_back(
        {"unknown command", {"frobnicate"}, Expect::Refused, {"frobnicate"}, Guards::ExitStatus});
    lines.push_back({"unknown option", {"qc", "--frob", "data.dat"}, Expect::Refused, {"--frob"}});
    lines.push_back({"no command", {}, Expect::Refused});
    lines.push_back({"a command without its file", {"qc"}, Expect::Refused});
    lines.push_back({"a 100 KiB command", {std::string(100 << 10, 'q')}, Expect::Refused});
    lines.push_back(
        {"control bytes in a command", {"qc\x01\x1b[2J"}, Expect::Refused, {}, Guards::Quoting});
    lines.push_back({"a JSON run that fails",
                     {"--json", "qc", "missing.dat"},
                     Expect::Refused,
                     {"missing.dat"}});
    runLines(runner, lines);
    runner.report();
}

TEST(Robustness, Paths) {
    CaseRunner runner("paths");
    const std::vector<std::string> generate{"generate",   "model.PAR", "--predictors",
                                            "predictors", "--days",    "30",
                                            "--ensemble", "2",         "-o"};
    const auto generateTo = [&](const std::string& out) {
        auto full = generate;
        full.push_back(out);
        return full;
    };
    const auto transformTo = [](const std::string& out) {
        return std::vector<std::string>{"transform", "data.dat", "-o", out, "--op", "sqrt"};
    };
    const auto statsTo = [](const std::string& out) {
        return std::vector<std::string>{"stats", "data.dat", "-o",         out,     "--stats",
                                        "Mean",  "--start",  "01/01/1961", "--end", "31/12/1962"};
    };
    const auto calibrateTo = [](const std::string& out) {
        return std::vector<std::string>{"calibrate", "tmax.dat",   "temp.dat", "-o",        out,
                                        "--start",   "01/01/1961", "--end",    "31/12/1962"};
    };
    struct PathCase {
        std::string name;
        std::function<void(Case&)> make;
        std::vector<std::string> arguments;
        Expect expect = Expect::Refused;
        std::vector<std::string> mentions;
        Guards guards = Guards::None;
        std::set<std::string> writes;
    };
    const auto none = [](Case&) {};
    const auto link = [](const std::string& target, const std::string& name) {
        return [target, name](Case& c) { c.symlink(target, name); };
    };
    const auto hardLink = [](const std::string& target, const std::string& name) {
        return [target, name](Case& c) {
            std::filesystem::create_hard_link(c.path(target), c.path(name));
        };
    };
    const std::vector<PathCase> cases{
        {"transform onto its input",
         none,
         transformTo("data.dat"),
         Expect::Refused,
         {"data.dat"},
         Guards::SameFile},
        {"transform onto its input, second on the line",
         none,
         {"transform", "data.dat", "data.dat", "--op", "sqrt"},
         Expect::Refused,
         {"data.dat"},
         Guards::SameFile},
        {"transform onto ./ its input",
         none,
         transformTo("./data.dat"),
         Expect::Refused,
         {"data.dat"},
         Guards::SameFile},
        {"transform onto a link to its input",
         link("data.dat", "link.dat"),
         transformTo("link.dat"),
         Expect::Refused,
         {"data.dat", "link.dat"},
         Guards::SameFile},
        {"transform onto a hard link to its input",
         hardLink("data.dat", "hard.dat"),
         transformTo("hard.dat"),
         Expect::Refused,
         {"data.dat", "hard.dat"},
         Guards::SameFile},
        {"transform onto the settings file",
         none,
         transformTo("VARO.INI"),
         Expect::Refused,
         {"VARO.INI"},
         Guards::SameFile},
        {"stats onto its input",
         none,
         statsTo("data.dat"),
         Expect::Refused,
         {"data.dat"},
         Guards::SameFile},
        {"stats onto a link to its input",
         link("data.dat", "link.txt"),
         statsTo("link.txt"),
         Expect::Refused,
         {"data.dat", "link.txt"},
         Guards::SameFile},
        {"generate onto its model",
         none,
         generateTo("model.PAR"),
         Expect::Refused,
         {"model.PAR"},
         Guards::SameFile},
        {"generate onto a predictor",
         none,
         generateTo("predictors/temp.dat"),
         Expect::Refused,
         {"temp.dat"},
         Guards::SameFile},
        {"generate whose SIM file is a predictor",
         [](Case& c) {
             c.write("model.PAR", replaceLine(baseSet().temperatureModel, 13, "temp.SIM"));
             std::filesystem::rename(c.path("predictors/temp.dat"), c.path("predictors/temp.SIM"));
         },
         generateTo("predictors/temp.OUT"),
         Expect::Refused,
         {"temp.SIM"},
         Guards::SameFile},
        {"calibrate onto its predictand",
         [](Case& c) { std::filesystem::rename(c.path("tmax.dat"), c.path("station.PAR")); },
         {"calibrate", "station.PAR", "temp.dat", "-o", "station.PAR", "--start", "01/01/1961",
          "--end", "31/12/1962"},
         Expect::Refused,
         {"station.PAR"},
         Guards::SameFile},
        {"calibrate onto its predictor",
         [](Case& c) { std::filesystem::rename(c.path("temp.dat"), c.path("temp.PAR")); },
         {"calibrate", "tmax.dat", "temp.PAR", "-o", "temp.PAR", "--start", "01/01/1961", "--end",
          "31/12/1962"},
         Expect::Refused,
         {"temp.PAR"},
         Guards::SameFile},
        {"calibrate onto a link to its predictand",
         link("tmax.dat", "model2.PAR"),
         calibrateTo("model2.PAR"),
         Expect::Refused,
         {"tmax.dat", "model2.PAR"},
         Guards::SameFile},
        {"transform into a folder",
         [](Case& c) { c.makeFolder("outdir"); },
         transformTo("outdir"),
         Expect::Refused,
         {"outdir"}},
        {"stats into a folder",
         [](Case& c) { c.makeFolder("outdir"); },
         statsTo("outdir"),
         Expect::Refused,
         {"outdir"}},
        {"generate into a folder",
         [](Case& c) { c.makeFolder("outdir"); },
         generateTo("outdir"),
         Expect::Refused,
         {"outdir"},
         Guards::EarlyOutput},
        {"calibrate into a folder",
         [](Case& c) { c.makeFolder("outdir.PAR"); },
         calibrateTo("outdir.PAR"),
         Expect::Refused,
         {"outdir.PAR"}},
        {"transform into a missing folder",
         none,
         transformTo("missing/out.dat"),
         Expect::Refused,
         {"missing/out.dat"}},
        {"generate into a missing folder",
         none,
         generateTo("missing/run.OUT"),
         Expect::Refused,
         {"missing/"}},
        {"stats under a file",
         none,
         statsTo("data.dat/results.txt"),
         Expect::Refused,
         {"data.dat/results.txt"}},
        {"generate under a file",
         none,
         generateTo("data.dat/run.OUT"),
         Expect::Refused,
         {"data.dat/"}},
        {"transform to an empty name", none, transformTo(""), Expect::Refused},
        {"generate to an empty name", none, generateTo(""), Expect::Refused},
        {"transform to a 300-character name", none, transformTo(std::string(300, 'o') + ".dat"),
         Expect::Refused},
        {"transform of a 5000-character path",
         none,
         {"transform", std::string(5000, 'i'), "-o", "out.dat", "--op", "sqrt"},
         Expect::Refused},
        {"transform to a name with blanks and accents",
         none,
         transformTo("out put \xc3\xbc.dat"),
         Expect::Accepted,
         {},
         Guards::None,
         {"out put \xc3\xbc.dat"}},
        {"transform to a name with a line end",
         none,
         transformTo("out\nput.dat"),
         Expect::Either,
         {},
         Guards::None,
         {"out\nput.dat"}},
        {"transform through a link to nowhere",
         link("nowhere.dat", "dangling.dat"),
         transformTo("dangling.dat"),
         Expect::Either,
         {},
         Guards::None,
         {"dangling.dat", "nowhere.dat"}},
    };
    for (const PathCase& path : cases) {
        Case c = commandCase(runner, path.name);
        path.make(c);
        c.arguments = path.arguments;
        c.expect = path.expect;
        c.mentions = path.mentions;
        c.guards = path.guards;
        c.writes = path.writes;
        runner.run(c);
    }
    runner.report();
}
