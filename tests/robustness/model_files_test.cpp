// Hostile files of the model chain: parameter files and predictor folders through the
// weather generator, OUT and SIM files through summary statistics and transforms. A
// generator run has an earlier run's OUT and SIM beside it, which a refused run must leave.
#include "robustness/base_set.hpp"
#include "robustness/case_runner.hpp"
#include "robustness/mutations.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>

using namespace varo::robustness;

namespace {

using Edit = std::function<std::string(const std::string&)>;

struct FileEdit {
    std::string name;
    Edit edit;
    Expect expect = Expect::Refused;
    long line = 0; // the line the message must name
    Guards guards = Guards::None;
    // What a reader that takes the values free-format (not by their columns) makes of it,
    // when that differs; such a reader names no line.
    std::optional<Expect> freeForm;
    bool namesFile = true; // a refusal names the edited file
};

Edit at(long line, std::string text) {
    return [line, text](const std::string& file) { return replaceLine(file, line, text); };
}
Edit zone(long line, int k, std::string field) {
    return [line, k, field](const std::string& file) { return replaceZone(file, line, k, field); };
}
Edit cutTo(long lines) {
    return [lines](const std::string& file) { return firstLines(file, lines); };
}
Edit emptied() {
    return [](const std::string&) { return std::string(); };
}
Edit withMark() {
    return [](const std::string& file) { return ByteOrderMark + file; };
}
Edit lineEnds(std::string end) {
    return [end](const std::string& file) { return withLineEnds(file, end); };
}

// The generator's case: a model and its predictors, an earlier run beside them.
Case generatorCase(CaseRunner& runner, const std::string& name, const std::string& model) {
    const BaseSet& base = baseSet();
    Case c = runner.start(name, base.settings);
    c.write("model.PAR", model);
    for (const auto& [file, text] : base.predictors) {
        c.write("predictors/" + file, text);
    }
    c.write("run.OUT", base.outFile);
    c.write("run.SIM", base.simFile);
    c.arguments = {
        "generate",   "model.PAR", "--predictors", "predictors", "-o",
        "run.OUT",    "--start",   "01/01/1961",   "--days",     std::to_string(base.days),
        "--ensemble", "3"};
    c.writes = {"run.OUT", "run.SIM"};
    return c;
}

void applyEdit(Case& c, const FileEdit& edit, const std::string& file) {
    c.expect = edit.expect;
    c.line = edit.line;
    c.guards = edit.guards;
    if (edit.expect != Expect::Accepted && edit.namesFile) {
        c.mentions = {file};
    }
}

// Lines of the temperature model: 11 header lines, the predictand, three predictors, the
// rows from line 16 to 27, the predictand's path on line 28.
std::vector<FileEdit> temperatureModelEdits() {
    const std::string longName(2 << 20, 'n');
    return {
        {"empty", emptied()},
        {"only the first five lines", cutTo(5)},
        {"cut in the rows", cutTo(20), Expect::Refused, 0, Guards::EarlyOutput},
        {"without the predictand path", cutTo(27), Expect::Either},
        {"word as the predictor count", at(1, "three"), Expect::Refused, 1},
        {"word as the groups", at(2, "twelve"), Expect::Refused, 2},
        {"year length 367", at(3, " 367 "), Expect::Refused, 3, Guards::Found},
        {"record start not a date", at(4, "01/01/1961x"), Expect::Refused, 4},
        {"record start 31/02/1961", at(4, "31/02/1961"), Expect::Refused, 4},
        {"record days a word", at(5, "many"), Expect::Refused, 5},
        {"record days 1e999", at(5, " 1e999 "), Expect::Refused, 5, Guards::NotANumber},
        {"fit start a word", at(6, "start"), Expect::Refused, 6},
        {"fit days negative", at(7, " -5 "), Expect::Refused, 7},
        {"process flag a word", at(8, "#MAYBE#"), Expect::Refused, 8},
        {"transformation 9", at(9, "9"), Expect::Refused, 9},
        {"transformation a word", at(9, "none"), Expect::Refused, 9},
        {"nul in the header", at(8, std::string("#FALSE\0#", 8)), Expect::Refused, 8,
         Guards::Quoting},
        {"predictor count 2 of 3", at(1, " 2 "), Expect::Refused, 0, Guards::EarlyOutput},
        {"predictor count 4 of 3", at(1, " 4 "), Expect::Refused, 0, Guards::Blame},
        {"predictor count 99999", at(1, " 99999 "), Expect::Refused, 1},
        {"groups 1e999", at(2, " 1e999 "), Expect::Refused, 2, Guards::NotANumber},
        {"word in a row", zone(16, 2, "abc"), Expect::Refused, 16, Guards::EarlyOutput},
        {"1e999 in a row", zone(17, 2, "1e999"), Expect::Refused, 17, Guards::NotANumber},
        {"a sign alone in a row", zone(18, 3, "-"), Expect::Refused, 18, Guards::NotANumber},
        {"a point alone in a row", zone(19, 1, "."), Expect::Refused, 19, Guards::NotANumber},
        {"number and word in a row", zone(20, 2, "1.2abc"), Expect::Refused, 20,
         Guards::NotANumber},
        {"a short row", at(21, "13.290        4.026"), Expect::Refused, 21, Guards::EarlyOutput},
        {"an empty row", at(22, ""), Expect::Refused, 22, Guards::EarlyOutput},
        {"rows in 13-character columns",
         [](const std::string& file) {
             auto lines = splitLines(file);
             const auto cut = splitLines(withZoneWidth(joinLines(lines), 13));
             for (size_t i = 15; i < 27; ++i) {
                 lines[i] = cut[i];
             }
             return joinLines(lines);
         },
         Expect::Refused, 16, Guards::NotANumber},
        // A predictor that is not there is named, not the model.
        {"control bytes in a predictor name", at(13, "te\x01\x1bmp.dat"), Expect::Refused, 0,
         Guards::Quoting, std::nullopt, false},
        {"a 2 MiB predictor name", at(14, longName), Expect::Refused, 0, Guards::Quoting,
         std::nullopt, false},
        {"byte-order mark", withMark(), Expect::Accepted, 0, Guards::Quoting},
        {"CR line ends", lineEnds("\r"), Expect::Accepted},
        {"LF line ends", lineEnds("\n"), Expect::Accepted},
        {"no final line end", withoutFinalLineEnd, Expect::Accepted},
    };
}

// Lines of the precipitation model: the rows of the occurrence from line 17 to 28, of the
// amounts from 29 to 40, the predictand's path on line 41.
std::vector<FileEdit> precipitationModelEdits() {
    return {
        {"word in an amount row", zone(30, 3, "wet"), Expect::Refused, 30, Guards::EarlyOutput},
        {"1e999 in an amount row", zone(31, 1, "1e999"), Expect::Refused, 31, Guards::NotANumber},
        {"cut in the amount rows", cutTo(33), Expect::Refused, 0, Guards::EarlyOutput},
        {"Box-Cox rows without lamda and shift", at(9, "5"), Expect::Refused, 17,
         Guards::EarlyOutput},
        {"unconditional flag over conditional rows", at(8, "#FALSE#"), Expect::Either},
        {"CR line ends", lineEnds("\r"), Expect::Accepted},
    };
}

} // namespace

TEST(Robustness, ParameterFiles) {
    const BaseSet& base = baseSet();
    CaseRunner runner("parameter-files");
    for (const auto& [model, edits] :
         {std::pair{base.temperatureModel, temperatureModelEdits()},
          std::pair{base.precipitationModel, precipitationModelEdits()}}) {
        for (const FileEdit& edit : edits) {
            Case c = generatorCase(runner, edit.name, edit.edit(model));
            applyEdit(c, edit, "model.PAR");
            runner.run(c);
        }
    }
    // Not a file to read at all.
    for (const auto& [name, make] : std::vector<std::pair<std::string, std::function<void(Case&)>>>{
             {"missing", [](Case& c) { std::filesystem::remove(c.path("model.PAR")); }},
             {"a folder",
              [](Case& c) {
                  std::filesystem::remove(c.path("model.PAR"));
                  c.makeFolder("model.PAR");
              }},
             {"a data file", [&](Case& c) { c.write("model.PAR", base.temperature); }},
         }) {
        Case c = generatorCase(runner, name, base.temperatureModel);
        make(c);
        c.mentions = {"model.PAR"};
        runner.run(c);
    }
    runner.report();
}

TEST(Robustness, PredictorFolders) {
    const BaseSet& base = baseSet();
    CaseRunner runner("predictor-folders");
    const long days = base.days;
    const std::string& r850 = base.predictors.at("r850.dat");
    struct FolderEdit {
        std::string name;
        std::function<void(Case&)> make;
        Expect expect = Expect::Refused;
        std::string mention;
        long line = 0;
        Guards guards = Guards::None;
        bool unprivileged = false;
    };
    const auto replace = [](const std::string& file, const std::string& text) {
        return [file, text](Case& c) { c.write("predictors/" + file, text); };
    };
    const std::vector<FolderEdit> edits{
        {"folder missing", [](Case& c) { std::filesystem::remove_all(c.path("predictors")); },
         Expect::Refused, "temp.dat"},
        {"folder is a file",
         [](Case& c) {
             std::filesystem::remove_all(c.path("predictors"));
             c.write("predictors", "not a folder\r\n");
         },
         Expect::Refused, "temp.dat"},
        {"predictor missing",
         [](Case& c) { std::filesystem::remove(c.path("predictors/p500.dat")); }, Expect::Refused,
         "p500.dat"},
        {"predictor is a folder",
         [](Case& c) {
             std::filesystem::remove(c.path("predictors/p500.dat"));
             c.makeFolder("predictors/p500.dat");
         },
         Expect::Refused, "p500.dat"},
        {"predictor a link to nowhere",
         [](Case& c) {
             std::filesystem::remove(c.path("predictors/p500.dat"));
             c.symlink("gone.dat", "predictors/p500.dat");
         },
         Expect::Refused, "p500.dat"},
        {"predictor unreadable",
         [](Case& c) {
             std::filesystem::permissions(c.path("predictors/p500.dat"),
                                          std::filesystem::perms::none);
         },
         Expect::Refused, "p500.dat", 0, Guards::EarlyOutput, true},
        {"predictor empty", replace("r850.dat", ""), Expect::Refused, "r850.dat", 0,
         Guards::EarlyOutput},
        {"predictor short", replace("r850.dat", firstLines(r850, days / 3)), Expect::Refused,
         "r850.dat", 0, Guards::EarlyOutput},
        {"word near the end of a predictor", replace("r850.dat", replaceLine(r850, days - 5, "x")),
         Expect::Refused, "r850.dat", days - 5, Guards::EarlyOutput},
        {"1e999 in a predictor", replace("r850.dat", replaceLine(r850, 400, "1e999")),
         Expect::Refused, "r850.dat", 400, Guards::NotANumber},
        {"control bytes in a predictor", replace("r850.dat", replaceLine(r850, 3, "\x07\x08")),
         Expect::Refused, "r850.dat", 3, Guards::Quoting},
        {"byte-order mark on a predictor", replace("r850.dat", ByteOrderMark + r850),
         Expect::Accepted, "", 0, Guards::Quoting},
        {"CR line ends in a predictor", replace("r850.dat", withLineEnds(r850, "\r")),
         Expect::Accepted},
        {"a predictor all missing",
         replace("r850.dat", joinLines(std::vector<std::string>(days, "-999"))), Expect::Accepted},
        {"other files and hidden files beside",
         [](Case& c) {
             c.write("predictors/.hidden.dat", "junk\r\n");
             c.write("predictors/notes.txt", "\x01\x02\r\n");
             c.makeFolder("predictors/sub");
         },
         Expect::Accepted},
    };
    for (const FolderEdit& edit : edits) {
        Case c = generatorCase(runner, edit.name, base.temperatureModel);
        edit.make(c);
        c.expect = edit.expect;
        if (!edit.mention.empty()) {
            c.mentions = {edit.mention};
        }
        c.line = edit.line;
        c.guards = edit.guards;
        c.unprivileged = edit.unprivileged;
        runner.run(c);
    }
    runner.report();
}

namespace {

// The commands that read an OUT file with its SIM file, and what they may write.
struct OutCommand {
    std::string name;
    std::vector<std::string> arguments;
    std::string output;
    bool freeForm = false; // reads the values free-format rather than by their columns
};

std::vector<OutCommand> outCommands() {
    return {
        {"stats ensemble mean",
         {"stats", "run.OUT", "-o", "results.txt", "--stats", "Mean", "--ensemble-mean", "--start",
          "01/01/1961", "--end", "31/12/1962"},
         "results.txt"},
        {"stats member 3",
         {"stats", "run.OUT", "-o", "results.txt", "--stats", "Mean", "--member", "3", "--start",
          "01/01/1961", "--end", "31/12/1962"},
         "results.txt"},
        {"transform extract",
         {"transform", "run.OUT", "-o", "member.dat", "--op", "copy", "--columns", "5", "--extract",
          "3"},
         "member.dat",
         true},
    };
}

Case outCase(CaseRunner& runner, const std::string& name, const OutCommand& command,
             const std::string& out, const std::string& sim) {
    const BaseSet& base = baseSet();
    Case c = runner.start(name + " / " + command.name, base.settings);
    c.write("run.OUT", out);
    c.write("run.SIM", sim);
    c.write(command.output, command.output == "results.txt" ? base.results : base.temperature);
    c.arguments = command.arguments;
    c.writes = {command.output};
    return c;
}

} // namespace

TEST(Robustness, OutFiles) {
    const BaseSet& base = baseSet();
    CaseRunner runner("out-files");
    const long days = base.days;
    const std::vector<FileEdit> edits{
        {"empty", emptied(), Expect::Refused, 0, Guards::None, Expect::Either},
        {"first half", cutTo(days / 2), Expect::Refused, 0, Guards::None, Expect::Accepted},
        {"a sign alone", zone(100, 2, "-"), Expect::Refused, 100, Guards::NotANumber},
        {"a point alone", zone(101, 2, "."), Expect::Refused, 101, Guards::NotANumber},
        {"1e999", zone(102, 3, "1e999"), Expect::Refused, 102, Guards::NotANumber},
        {"number and word", zone(103, 3, "1.2abc"), Expect::Refused, 103, Guards::NotANumber},
        {"a word", zone(104, 1, "abc"), Expect::Refused, 104},
        {"a blank field", zone(105, 3, ""), Expect::Refused, 105, Guards::None, Expect::Refused},
        {"a short line", at(106, "13.169        0.925"), Expect::Refused, 106, Guards::None,
         Expect::Refused},
        {"13-character columns", [](const std::string& file) { return withZoneWidth(file, 13); },
         Expect::Refused, 1, Guards::NotANumber, Expect::Accepted},
        // Tabs that keep every value in its column are blanks; one tab between values is not
        // a column layout at all.
        {"tabs in place of blanks",
         [](const std::string& file) {
             std::string result = file;
             std::replace(result.begin(), result.end(), ' ', '\t');
             return result;
         },
         Expect::Accepted},
        {"one tab between the values",
         [](const std::string& file) {
             auto lines = splitLines(file);
             for (std::string& line : lines) {
                 std::string cut;
                 for (size_t start = 0; start < line.size(); start += 14) {
                     const std::string field = line.substr(start, 14);
                     if (!cut.empty()) {
                         cut += '\t';
                     }
                     cut += field.substr(0, field.find(' '));
                 }
                 line = cut;
             }
             return joinLines(lines);
         },
         Expect::Refused, 1, Guards::None, Expect::Accepted},
        {"control bytes", zone(107, 2, "\x01\x02"), Expect::Refused, 107, Guards::Quoting},
        {"a 2 MiB line", at(10, std::string(2 << 20, '7')), Expect::Refused, 10, Guards::Memory},
        {"byte-order mark", withMark(), Expect::Accepted, 0, Guards::Quoting},
        {"CR line ends", lineEnds("\r"), Expect::Accepted},
        {"LF line ends", lineEnds("\n"), Expect::Accepted},
        {"a sixth value on a line", at(108, splitLines(base.outFile)[107] + "1.000"),
         Expect::Either},
    };
    for (const FileEdit& edit : edits) {
        for (const OutCommand& command : outCommands()) {
            Case c = outCase(runner, edit.name, command, edit.edit(base.outFile), base.simFile);
            applyEdit(c, edit, "run.OUT");
            if (command.freeForm && edit.freeForm) {
                c.expect = *edit.freeForm;
                c.line = 0;
                c.guards = Guards::None;
                if (c.expect == Expect::Accepted) {
                    c.mentions.clear();
                }
            }
            if (command.freeForm && c.expect != Expect::Accepted && c.guards == Guards::None) {
                c.guards = Guards::EarlyOutput;
            }
            runner.run(c);
        }
    }
    runner.report();
}

// SIM lines: predictors, groups, year length, first day, days, process flag, members,
// variance inflation, transformation, bias correction, predictand, predictor names.
TEST(Robustness, SimFiles) {
    const BaseSet& base = baseSet();
    CaseRunner runner("sim-files");
    std::vector<FileEdit> edits{
        {"empty", emptied(), Expect::Refused, 0, Guards::SimMessage},
        {"cut after six lines", cutTo(6), Expect::Refused, 0, Guards::SimMessage},
        {"year length 400", at(3, " 400 "), Expect::Refused, 3, Guards::SimMessage},
        {"first day 31/02/1961", at(4, "31/02/1961"), Expect::Refused, 4, Guards::SimMessage},
        {"days negative", at(5, " -1 "), Expect::Refused, 5, Guards::SimMessage},
        {"members 0", at(7, " 0 "), Expect::Refused, 7, Guards::SimMessage},
        {"members 101", at(7, " 101 "), Expect::Refused, 7, Guards::SimMessage},
        {"members 1e999", at(7, " 1e999 "), Expect::Refused, 7, Guards::SimMessage},
        {"groups 1e999", at(2, " 1e999 "), Expect::Refused, 2, Guards::SimMessage},
        {"year length -1e999", at(3, " -1e999 "), Expect::Refused, 3, Guards::SimMessage},
        {"bias correction 1e999", at(10, " 1e999 "), Expect::Refused, 10, Guards::NotANumber},
        {"control bytes", at(6, "#FALSE\x01#"), Expect::Refused, 6, Guards::SimMessage},
        {"a 2 MiB line", at(2, std::string(2 << 20, '1')), Expect::Refused, 2, Guards::SimMessage},
        {"byte-order mark", withMark(), Expect::Accepted, 0, Guards::Quoting},
        {"CR line ends", lineEnds("\r"), Expect::Accepted},
        {"LF line ends", lineEnds("\n"), Expect::Accepted},
    };
    for (long line = 1; line <= 10; ++line) {
        edits.push_back({"a word on line " + std::to_string(line), at(line, "word"),
                         Expect::Refused, line, Guards::SimMessage});
    }
    const OutCommand stats = outCommands().front();
    for (const FileEdit& edit : edits) {
        Case c = outCase(runner, edit.name, stats, base.outFile, edit.edit(base.simFile));
        applyEdit(c, edit, "run.SIM");
        runner.run(c);
    }
    // The SIM file promises more members than the OUT file holds: the OUT file is wrong.
    Case more = outCase(runner, "six members promised", stats, base.outFile,
                        replaceLine(base.simFile, 7, " 6 "));
    more.mentions = {"run.OUT"};
    more.line = 1;
    runner.run(more);
    for (const auto& [name, make] : std::vector<std::pair<std::string, std::function<void(Case&)>>>{
             {"missing", [](Case& c) { std::filesystem::remove(c.path("run.SIM")); }},
             {"a folder",
              [](Case& c) {
                  std::filesystem::remove(c.path("run.SIM"));
                  c.makeFolder("run.SIM");
              }},
         }) {
        Case c = outCase(runner, name, stats, base.outFile, base.simFile);
        make(c);
        c.mentions = {"run.SIM"};
        c.guards = Guards::SimMessage;
        runner.run(c);
    }
    runner.report();
}
