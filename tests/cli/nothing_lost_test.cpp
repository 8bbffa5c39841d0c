// Bad input through every command that writes: each case exits 1 or 2 with a message that
// says what is wrong, and no file of the folder (inputs, the outputs of an earlier run, the
// settings file) changes, appears or disappears.
#include "cli_test_support.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>

using namespace varo::testing;
namespace fs = std::filesystem;

namespace {

const std::string Data = VARO_TEST_DATA;

// Runs the command line with exactly these arguments.
CliRun runExactly(const std::vector<std::string>& args) {
    std::ostringstream out;
    std::ostringstream err;
    CliRun run;
    run.exitCode = varo::cli::runCli(args, out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
}

// Every regular file under the folder with its bytes; links are listed by their target.
std::map<std::string, std::string> snapshot(const TempDir& dir) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(dir.folder())) {
        const std::string path = entry.path().string();
        if (entry.is_symlink()) {
            files[path] = "-> " + fs::read_symlink(entry.path()).string();
        } else if (entry.is_regular_file()) {
            files[path] = readFile(path);
        } else {
            files[path] = "folder";
        }
    }
    return files;
}

// A folder with a model and its predictors, an earlier run's OUT and SIM files, data files
// and a settings file: every case works on its own copy.
void fillFolder(const TempDir& dir) {
    const std::string weathergen = Data + "/weathergen/";
    dir.write("reg.PAR", readFile(weathergen + "reg.PAR"));
    dir.write("reg_p1.dat", readFile(weathergen + "reg_p1.dat"));
    dir.write("reg_p2.dat", readFile(weathergen + "reg_p2.dat"));
    dir.write("run.OUT", readFile(Data + "/statistics/ensemble3.OUT"));
    dir.write("run.SIM", readFile(Data + "/statistics/ensemble3.SIM"));
    dir.write("rain.dat", readFile(Data + "/calibration/driver/rain.dat"));
    dir.write("mslp.dat", readFile(Data + "/calibration/driver/mslp.dat"));
    dir.write("VARO.INI", "[VARO]\r\nYearIndicator=366\r\nGlobalSDate=01/01/1960\r\n"
                          "GlobalEDate=31/12/1990\r\nMyOwnNote=keep me\r\n");
    std::string long9000;
    for (int line = 1; line <= 9500; ++line) {
        long9000 += line == 9000 ? "word\r\n" : std::to_string(line % 17) + ".25\r\n";
    }
    dir.write("long.dat", long9000);
    dir.write("out.dat", "an earlier transform\r\n");
    fs::create_directories(dir.path("folder.OUT"));
    fs::create_symlink(dir.path("rain.dat"), dir.path("link.dat"));
    fs::create_symlink(dir.path("rain.dat"), dir.path("rain.PAR"));
}

struct Case {
    std::string what;
    std::vector<std::string> args; // "@" stands for the folder
    std::function<void(const TempDir&)> prepare;
    int exitCode;
    std::string message; // a part of stderr
};

std::vector<std::string> inFolder(const TempDir& dir, const std::vector<std::string>& args) {
    std::vector<std::string> result;
    for (std::string arg : args) {
        if (const size_t at = arg.find('@'); at != std::string::npos) {
            arg.replace(at, 1, dir.folder());
        }
        result.push_back(arg);
    }
    return result;
}

void replaceLine(const TempDir& dir, const std::string& name, int line, const std::string& by) {
    std::string text = readFile(dir.path(name));
    size_t start = 0;
    for (int i = 1; i < line; ++i) {
        start = text.find("\r\n", start) + 2;
    }
    text.replace(start, text.find("\r\n", start) - start, by);
    dir.write(name, text);
}

const std::vector<Case>& cases() {
    const std::string generate = "generate";
    static const std::vector<Case> all = {
        {"transform onto its input",
         {"transform", "@/rain.dat", "@/rain.dat", "--op", "sqrt"},
         nullptr,
         2,
         "is the same file as the input file"},
        {"transform onto a link to its input",
         {"transform", "@/rain.dat", "-o", "@/link.dat", "--op", "copy"},
         nullptr,
         2,
         "The output file '@/link.dat' is the same file as the input file '@/rain.dat'"},
        {"transform onto the settings file",
         {"transform", "@/rain.dat", "-o", "@/VARO.INI", "--op", "copy"},
         nullptr,
         2,
         "The output file '@/VARO.INI' is the same file as the input file '@/VARO.INI'"},
        {"transform of a file with a word at line 9000",
         {"transform", "@/long.dat", "-o", "@/out.dat", "--op", "ln"},
         nullptr,
         1,
         "'word' on line 9000, column 1 of '@/long.dat' is not a number."},
        {"transform onto a folder",
         {"transform", "@/rain.dat", "-o", "@/folder.OUT", "--op", "copy"},
         nullptr,
         1,
         "Cannot open '@/folder.OUT': it is a folder."},
        {"stats onto its OUT file",
         {"stats", "@/run.OUT", "-o", "@/run.OUT", "--start", "01/01/1961", "--end", "31/12/1961"},
         nullptr,
         2,
         "is the same file as the input file '@/run.OUT'"},
        {"stats onto its SIM file",
         {"stats", "@/run.OUT", "-o", "@/run.SIM", "--start", "01/01/1961", "--end", "31/12/1961"},
         nullptr,
         2,
         "is the same file as the input file '@/run.SIM'"},
        {"stats of an OUT file with a '-' field",
         {"stats", "@/run.OUT", "-o", "@/r.txt", "--start", "01/01/1961", "--end", "31/12/1961",
          "--ensemble-mean"},
         [](const TempDir& dir) {
             replaceLine(dir, "run.OUT", 3, "0.240         -             13.087        ");
         },
         1,
         "Column 2 (characters 15 to 28) of line 3 of '@/run.OUT' holds '-', which is not a "
         "number."},
        {"stats of an OUT file of 13-character columns",
         {"stats", "@/run.OUT", "-o", "@/r.txt", "--start", "01/01/1961", "--end", "31/12/1961",
          "--ensemble-mean"},
         [](const TempDir& dir) {
             replaceLine(dir, "run.OUT", 2, "13.500       13.500       1.5");
         },
         1,
         "part of a number that runs over into column 2"},
        {"stats of an OUT file with 1e999",
         {"stats", "@/run.OUT", "-o", "@/r.txt", "--start", "01/01/1961", "--end", "31/12/1961",
          "--member", "3"},
         [](const TempDir& dir) {
             replaceLine(dir, "run.OUT", 5, "0.240         0.000         1e999         ");
         },
         1,
         "holds '1e999', which is a number beyond the range this program holds."},
        {"stats with a garbled SIM file",
         {"stats", "@/run.OUT", "-o", "@/r.txt", "--start", "01/01/1961", "--end", "31/12/1961"},
         [](const TempDir& dir) { replaceLine(dir, "run.SIM", 7, " three "); },
         2,
         "An error occurred opeing the *.SIM file. Please try again.\nLine 7 of the SIM file "
         "'@/run.SIM' should hold the ensemble size, but 'three' is not a number."},
        {"generate onto its parameter file",
         {generate, "@/reg.PAR", "--predictors", "@", "-o", "@/reg.PAR", "--start", "27/02/1960",
          "--days", "10"},
         nullptr,
         2,
         "The output file '@/reg.PAR' is the same file as the input file '@/reg.PAR'"},
        {"generate onto a predictor",
         {generate, "@/reg.PAR", "--predictors", "@", "-o", "@/reg_p2.dat", "--start", "27/02/1960",
          "--days", "10"},
         nullptr,
         2,
         "is the same file as the input file '@/reg_p2.dat'"},
        {"generate with a bad parameter row over an earlier run",
         {generate, "@/reg.PAR", "--predictors", "@", "-o", "@/run.OUT", "--start", "27/02/1960",
          "--days", "10"},
         [](const TempDir& dir) { replaceLine(dir, "reg.PAR", 20, "0.100  x"); },
         1,
         "of line 20 of '@/reg.PAR' holds '0.100  x', which is not a number"},
        {"generate with a predictor too short",
         {generate, "@/reg.PAR", "--predictors", "@", "-o", "@/run.OUT", "--start", "27/02/1960",
          "--days", "300"},
         nullptr,
         1,
         "'@/reg_p1.dat' ends after line 200, before the dates in use: record from 01/01/1960, "
         "run of 300 days from 27/02/1960"},
        {"generate from a start after the data",
         {generate, "@/reg.PAR", "--predictors", "@", "-o", "@/run.OUT", "--start", "01/01/1970",
          "--days", "10"},
         nullptr,
         1,
         "ends after line 200, before the dates in use: record from 01/01/1960, run of 10 days "
         "from 01/01/1970"},
        {"generate onto a folder",
         {generate, "@/reg.PAR", "--predictors", "@", "-o", "@/folder.OUT", "--start", "27/02/1960",
          "--days", "10"},
         nullptr,
         1,
         "Cannot open '@/folder.OUT': it is a folder."},
        {"calibrate onto its predictand",
         {"calibrate", "@/rain.dat", "@/mslp.dat", "-o", "@/rain.PAR", "--end", "31/12/1961"},
         nullptr,
         2,
         "The output file '@/rain.PAR' is the same file as the input file '@/rain.dat'"},
        {"qc of a number beyond range",
         {"qc", "@/rain.dat"},
         [](const TempDir& dir) { replaceLine(dir, "rain.dat", 4, "-1e999"); },
         1,
         "'-1e999' on line 4, column 1 of '@/rain.dat' is a number beyond the range"},
        {"settings set into a data file",
         {"--settings", "@/rain.dat", "settings", "set", "Thresh", "1"},
         nullptr,
         2,
         "Sorry, unable to save data to @/rain.dat.\nThe settings file '@/rain.dat' is not used: "
         "it has no [VARO] section, so it is not a settings file."},
        {"settings set of INIFile to a data file",
         {"settings", "set", "INIFile", "@/mslp.dat"},
         nullptr,
         2,
         "it has no [VARO] section"},
        {"settings set into a folder",
         {"--settings", "@/folder.OUT", "settings", "set", "Thresh", "1"},
         nullptr,
         2,
         "The settings file '@/folder.OUT' is not used: it is a folder."},
        {"settings reset where no file can be made",
         {"--settings", "@/rain.dat/VARO.INI", "settings", "reset"},
         nullptr,
         1,
         "Sorry, unable to save data to @/rain.dat/VARO.INI."},
    };
    return all;
}

std::string withFolder(const TempDir& dir, std::string text) {
    for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@', at + 1)) {
        text.replace(at, 1, dir.folder());
    }
    return text;
}

} // namespace

TEST(CliNothingLost, EveryRefusalOrFailureLeavesEveryFileAsItWas) {
    for (const Case& c : cases()) {
        TempDir dir;
        fillFolder(dir);
        if (c.prepare) {
            c.prepare(dir);
        }
        const auto before = snapshot(dir);
        std::vector<std::string> args = inFolder(dir, c.args);
        if (std::find(args.begin(), args.end(), "--settings") == args.end()) {
            args.insert(args.begin(), {"--settings", dir.path("VARO.INI")});
        }
        const CliRun run = runExactly(args);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.what << "\n" << run.err;
        EXPECT_NE(run.err.find(withFolder(dir, c.message)), std::string::npos) << c.what << "\n"
                                                                               << run.err;
        EXPECT_EQ(snapshot(dir), before) << c.what;
    }
}

TEST(CliNothingLost, AnUnknownCommandIsNamed) {
    TempDir dir;
    const auto run = runVaro(dir, {"--json", "genrate", "model.PAR"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "Unknown command 'genrate'. The commands are: settings, qc, transform, "
                       "screen, calibrate, generate, scenario, stats, compare, demo.\nRun with "
                       "--help for more information.\n");
    EXPECT_FALSE(fileExists(dir.path("VARO.INI")));
    const auto nested = runVaro(dir, {"settings", "--json", "shw"});
    EXPECT_EQ(nested.exitCode, 2);
    EXPECT_EQ(nested.err, "Unknown command 'settings shw'. The commands of settings are: show, "
                          "set, reset.\nRun with --help for more information.\n");
    EXPECT_EQ(runVaro(dir, {"--json", "settings", "show"}).exitCode, 0);
    const auto none = runVaro(dir, {"--json"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_NE(none.err.find("A subcommand is required"), std::string::npos);
}

TEST(CliNothingLost, ASettingsFileThatIsPassedOverIsNamedInAWarning) {
    TempDir dir;
    const auto data = dir.write("rain.dat", "1\r\n2\r\n");
    const auto run = runExactly({"--settings", data, "settings", "show"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "Warning: The settings file '" + data +
                           "' is not used: it has no [VARO] section, so it is not a settings "
                           "file. None of its settings are in force.\n");
    EXPECT_NE(run.out.find("YearIndicator=366\n"), std::string::npos);

    // A byte-order mark no longer hides the file's settings.
    const auto marked = dir.write("marked.INI", "\xEF\xBB\xBF[VARO]\r\nYearIndicator=360\r\n");
    const auto read = runExactly({"--settings", marked, "settings", "show"});
    EXPECT_EQ(read.err, "");
    EXPECT_NE(read.out.find("YearIndicator=360\n"), std::string::npos);
}
