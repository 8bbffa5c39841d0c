// Hostile data files through every command that reads one: the quality check, a transform,
// summary statistics of observed data, calibration (as predictand and as predictor) and
// screening. Each edit of the valid precipitation file meets each command.
#include "robustness/base_set.hpp"
#include "robustness/case_runner.hpp"
#include "robustness/mutations.hpp"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

using namespace varo::robustness;

namespace {

// What an edit does to a file as a reader sees it.
enum class Effect {
    Bad,      // a value that is no number: every reader refuses, naming the file and line
    Short,    // fewer values than the period: readers of the period refuse
    Empty,    // no value at all
    Valid,    // still a valid file: every command takes it
    Trailing, // junk after the period: readers of the whole file refuse
    NoData,   // every value missing
};

struct DataEdit {
    std::string name;
    std::function<std::string(const std::string&)> edit;
    Effect effect;
    long line = 0;
    Guards guards = Guards::None;
    // Through every command; the others go through the three ways of reading a series:
    // the whole file, a period of one file, a period of several files together.
    bool everyCommand = false;
};

struct DataCommand {
    std::string name;
    std::vector<std::string> arguments; // data.dat is the edited file
    std::vector<std::string> others;    // valid files the command also reads
    std::string output;                 // the earlier output a run replaces
    bool readsWholeFile = false;        // rather than the period of the settings
};

const std::vector<std::string> Period{"--start", "01/01/1961", "--end", "31/12/1962"};

std::vector<std::string> with(std::vector<std::string> first,
                              const std::vector<std::string>& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
}

std::vector<DataCommand> dataCommands() {
    return {
        {"qc", {"qc", "data.dat"}, {}, "", true},
        {"transform",
         {"transform", "data.dat", "-o", "out.dat", "--op", "sqrt"},
         {},
         "out.dat",
         true},
        {"stats",
         with({"stats", "data.dat", "-o", "results.txt", "--stats", "Mean,Wet-days%"}, Period),
         {},
         "results.txt"},
        {"calibrate predictand",
         with({"calibrate", "data.dat", "temp.dat", "-o", "model.PAR"}, Period),
         {"temp.dat"},
         "model.PAR"},
        {"calibrate predictor",
         with({"calibrate", "tmax.dat", "data.dat", "-o", "model.PAR"}, Period),
         {"tmax.dat"},
         "model.PAR"},
        {"screen",
         with({"screen", "correlation", "data.dat", "temp.dat"}, Period),
         {"temp.dat"},
         ""},
    };
}

std::vector<DataEdit> dataEdits(long days) {
    const auto at = [](long line, std::string token) {
        return [line, token](const std::string& text) { return replaceLine(text, line, token); };
    };
    const std::string million = "1" + std::string(1000000, '0');
    const std::string hugeWord(2 << 20, 'x');
    return {
        {"empty", [](const std::string&) { return std::string(); }, Effect::Empty, 0, Guards::None,
         true},
        {"only a byte-order mark", [](const std::string&) { return ByteOrderMark; }, Effect::Empty,
         0, Guards::Quoting},
        {"first half", [days](const std::string& t) { return firstLines(t, days / 2); },
         Effect::Short, 0, Guards::None, true},
        {"last line cut to a sign", at(days, "-"), Effect::Bad, days},
        {"word at line 1", at(1, "rain"), Effect::Bad, 1},
        {"word at the middle", at(days / 2, "abc"), Effect::Bad, days / 2, Guards::None, true},
        {"word at the last line", at(days, "end"), Effect::Bad, days},
        {"1e999", at(200, "1e999"), Effect::Bad, 200, Guards::NotANumber, true},
        {"-1e999", at(201, "-1e999"), Effect::Bad, 201, Guards::NotANumber},
        {"2e308", at(202, "2e308"), Effect::Bad, 202, Guards::NotANumber},
        {"a million digits", at(300, million), Effect::Bad, 300, Guards::NotANumber},
        {"nan", at(50, "nan"), Effect::Bad, 50},
        {"inf", at(51, "-inf"), Effect::Bad, 51},
        {"hexadecimal", at(52, "0x1A"), Effect::Bad, 52},
        {"two points", at(53, "1.2.3"), Effect::Bad, 53},
        {"bare exponent", at(54, "1e"), Effect::Bad, 54},
        {"double sign", at(55, "+-1"), Effect::Bad, 55, Guards::NotANumber},
        {"number and word", at(56, "1.2abc"), Effect::Bad, 56},
        {"control bytes", at(100, "1\x01\x02\x1b[2J"), Effect::Bad, 100, Guards::Quoting, true},
        {"nul byte", at(101, std::string("0\0", 2)), Effect::Bad, 101, Guards::Quoting},
        {"2 MiB word", at(10, hugeWord), Effect::Bad, 10, Guards::Memory},
        {"binary junk",
         [](const std::string& t) {
             return std::string("\x7f"
                                "ELF\x02\x01\x01\0",
                                8) +
                    t;
         },
         Effect::Bad, 1, Guards::Quoting},
        {"byte-order mark", [](const std::string& t) { return ByteOrderMark + t; }, Effect::Valid,
         0, Guards::Quoting, true},
        {"CR line ends", [](const std::string& t) { return withLineEnds(t, "\r"); }, Effect::Valid},
        {"LF line ends", [](const std::string& t) { return withLineEnds(t, "\n"); }, Effect::Valid},
        {"no final line end", withoutFinalLineEnd, Effect::Valid},
        {"blank lines between", [](const std::string& t) { return withLineEnds(t, "\r\n \t\r\n"); },
         Effect::Valid},
        {"one long line", [](const std::string& t) { return withLineEnds(t, " ") + "\r\n"; },
         Effect::Valid},
        {"1 MiB of blanks", at(20, std::string(1 << 20, ' ') + "0.5"), Effect::Valid},
        {"junk after the period", [](const std::string& t) { return t + "end\r\n"; },
         Effect::Trailing, days + 1, Guards::None, true},
        {"all missing",
         [days](const std::string&) { return joinLines(std::vector<std::string>(days, "-999")); },
         Effect::NoData, 0, Guards::None, true},
    };
}

// The expectation of one edit through one command.
void expect(Case& c, const DataEdit& edit, const DataCommand& command) {
    c.mentions = {"data.dat"};
    const bool writes = !command.output.empty();
    switch (edit.effect) {
    case Effect::Bad:
        c.line = edit.line;
        break;
    case Effect::Short:
        c.expect = command.readsWholeFile ? Expect::Accepted : Expect::Refused;
        break;
    case Effect::Empty:
        // An empty series has nothing to check; a transform of nothing may write nothing.
        c.expect = command.name == "transform" ? Expect::Either : Expect::Refused;
        break;
    case Effect::Valid:
        c.expect = Expect::Accepted;
        break;
    case Effect::Trailing:
        c.expect = command.readsWholeFile ? Expect::Refused : Expect::Accepted;
        c.line = edit.line;
        break;
    case Effect::NoData:
        // A series of missing values is data (the transform, the statistics); there is
        // nothing to check, fit or correlate in it, and the message must say which file.
        c.expect = command.name == "transform" || command.name == "stats" ? Expect::Accepted
                                                                          : Expect::Refused;
        c.guards = Guards::Blame;
        break;
    }
    if (c.expect == Expect::Accepted) {
        c.mentions.clear();
        c.line = 0;
    }
    if (writes) {
        c.writes = {command.output};
    }
    if (c.guards == Guards::None) {
        c.guards = edit.guards;
    }
    if (c.guards == Guards::None && command.name == "transform" && c.expect == Expect::Refused) {
        c.guards = Guards::EarlyOutput;
    }
}

void writeCommandFiles(const Case& c, const DataCommand& command, const BaseSet& base) {
    for (const std::string& name : command.others) {
        c.write(name, name == "tmax.dat" ? base.temperature : base.predictors.at(name));
    }
    if (command.output == "model.PAR") {
        c.write("model.PAR", base.temperatureModel);
    } else if (command.output == "results.txt") {
        c.write("results.txt", base.results);
    } else if (!command.output.empty()) {
        c.write(command.output, base.temperature);
    }
}

// The quality check of a file that is still valid counts every value.
std::function<std::vector<std::string>(const ChildResult&)> countsValues(long days) {
    return [days](const ChildResult& result) -> std::vector<std::string> {
        const std::string wanted = "Number of values in file: " + std::to_string(days);
        if (result.out.find(wanted) == std::string::npos) {
            return {"the check does not report '" + wanted + "': " + shown(result.out, 120)};
        }
        return {};
    };
}

} // namespace

TEST(Robustness, DataFiles) {
    const BaseSet& base = baseSet();
    CaseRunner runner("data-files");
    for (const DataEdit& edit : dataEdits(base.days)) {
        const std::string text = edit.edit(base.precipitation);
        for (const DataCommand& command : dataCommands()) {
            if (!edit.everyCommand && command.name != "qc" && command.name != "stats" &&
                command.name != "calibrate predictand") {
                continue;
            }
            Case c = runner.start(edit.name + " / " + command.name, base.settings);
            c.write("data.dat", text);
            writeCommandFiles(c, command, base);
            c.arguments = command.arguments;
            expect(c, edit, command);
            if (command.name == "qc" && edit.effect == Effect::Valid) {
                c.check = countsValues(base.days);
            }
            runner.run(c);
        }
    }
    runner.report();
}

// The file is not there as a file: missing, a folder, a link to nowhere, unreadable.
TEST(Robustness, DataFileKinds) {
    const BaseSet& base = baseSet();
    CaseRunner runner("data-file-kinds");
    struct Kind {
        std::string name;
        std::function<void(Case&)> make;
        Expect expect;
        bool unprivileged = false;
    };
    const std::vector<Kind> kinds{
        {"missing", [](Case&) {}, Expect::Refused},
        {"a folder", [](Case& c) { c.makeFolder("data.dat"); }, Expect::Refused},
        {"a link to nowhere", [](Case& c) { c.symlink("nowhere.dat", "data.dat"); },
         Expect::Refused},
        {"a link to a valid file",
         [&](Case& c) {
             c.write("real.dat", base.precipitation);
             c.symlink("real.dat", "data.dat");
         },
         Expect::Accepted},
        {"unreadable",
         [&](Case& c) {
             c.write("data.dat", base.precipitation);
             std::filesystem::permissions(c.path("data.dat"), std::filesystem::perms::none);
         },
         Expect::Refused, true},
    };
    for (const Kind& kind : kinds) {
        for (const DataCommand& command : dataCommands()) {
            Case c = runner.start(kind.name + " / " + command.name, base.settings);
            kind.make(c);
            writeCommandFiles(c, command, base);
            c.arguments = command.arguments;
            c.expect = kind.expect;
            if (kind.expect == Expect::Refused) {
                c.mentions = {"data.dat"};
            }
            c.unprivileged = kind.unprivileged;
            if (!command.output.empty()) {
                c.writes = {command.output};
            }
            if (command.name == "transform" && kind.expect == Expect::Refused) {
                c.guards = Guards::EarlyOutput;
            }
            runner.run(c);
        }
    }
    runner.report();
}
