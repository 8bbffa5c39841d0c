// Hostile settings files: read at the start of every command, where a bad value never
// stops the program, and written by `settings set` and `settings reset`, which must never
// replace a file they could not read nor write into a file that is no settings file.
#include "robustness/base_set.hpp"
#include "robustness/case_runner.hpp"
#include "robustness/mutations.hpp"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>

using namespace varo::robustness;

namespace {

// The base settings with the line of `key` holding `value` instead.
std::string replacing(const std::string& key, const std::string& value) {
    auto lines = splitLines(baseSet().settings);
    for (std::string& line : lines) {
        if (line.rfind(key + "=", 0) == 0) {
            line = key + "=" + value;
            return joinLines(lines);
        }
    }
    lines.push_back(key + "=" + value);
    return joinLines(lines);
}

std::string readBack(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// `settings show` read the file: its end date is the one in the file.
std::vector<std::string> showsFileValues(const ChildResult& result) {
    if (result.out.find("GlobalEDate=31/12/1970") == std::string::npos) {
        return {"the settings shown are not the file's: " + shown(result.out, 160)};
    }
    return {};
}

// Either the file's values are in force or a warning names the file as ignored.
std::vector<std::string> valuesOrWarning(const ChildResult& result) {
    if (result.err.find("VARO.INI") != std::string::npos) {
        return {};
    }
    return showsFileValues(result);
}

struct SettingsEdit {
    std::string name;
    std::function<void(Case&)> make; // writes or replaces VARO.INI (and other files)
    bool valuesRead = false;         // the file's own end date is in force
    std::string warning;             // a text the warning must hold (or, with valuesRead, may hold)
    Guards guards = Guards::None;
    bool unprivileged = false;
};

void settingsFile(Case& c, const std::string& text) {
    c.write("VARO.INI", text);
}

std::vector<SettingsEdit> settingsEdits() {
    const auto file = [](std::string text) { return [text](Case& c) { settingsFile(c, text); }; };
    const std::string& base = baseSet().settings;
    const std::string longText(256 << 10, '7');
    return {
        {"threshold a word", file(replacing("Thresh", "abc")), true},
        {"threshold 1e999", file(replacing("Thresh", "1e999")), true},
        {"year length 999", file(replacing("YearIndicator", "999")), true},
        {"year length a word", file(replacing("YearIndicator", "leap")), true},
        {"year length empty", file(replacing("YearIndicator", "")), true},
        {"year length 1e999", file(replacing("YearIndicator", "1e999")), true},
        {"start date 31/02/1961", file(replacing("GlobalSDate", "31/02/1961")), true},
        {"end date 99/99/9999", file(replacing("GlobalEDate", "99/99/9999"))},
        {"start after end", file(replacing("GlobalSDate", "01/01/2000")), true},
        {"missing code 1e999", file(replacing("GlobalMissingCode", "1e999")), true},
        {"odd model options",
         file(base + "PrecN=1e999\r\nBiasCorrection=abc\r\nConditionalThresh=nan\r\n"
                     "ModelTransformation=99\r\nOptimisationChoice=-5\r\nConditionalSelection="
                     "\x01\r\nApplyStepwise=Maybe\r\n"),
         true},
        {"a 256 KiB value", file(replacing("Thresh", longText)), true, "", Guards::Memory},
        {"a 256 KiB line without a key", file(base + longText + "\r\n"), true, "", Guards::Memory},
        {"control bytes in a value", file(replacing("DefaultDir", "\x01\x1b[2J")), true},
        {"no section header", file(base.substr(base.find('\n') + 1))},
        {"two sections", file(base + "[VARO]\r\nGlobalEDate=31/12/1999\r\n"), true},
        {"empty", file("")},
        {"binary junk", file(std::string("\x7f"
                                         "ELF\x02\x01\0\0\xff\xfe",
                                         10))},
        {"CR line ends", file(withLineEnds(base, "\r")), true},
        {"LF line ends", file(withLineEnds(base, "\n")), true},
        {"missing", [](Case& c) { std::filesystem::remove(c.path("VARO.INI")); }},
        {"redirected to a folder",
         [&](Case& c) {
             c.makeFolder("conf");
             settingsFile(c, base + "INIFile=conf\r\n");
         },
         true},
        {"redirected to a missing file", file(base + "INIFile=missing.ini\r\n"), true},
        {"redirected to a data file",
         [&](Case& c) {
             c.write("data.dat", baseSet().precipitation);
             settingsFile(c, base + "INIFile=data.dat\r\n");
         },
         true},
        {"redirected to itself", file(base + "INIFile=VARO.INI\r\n"), true},
        {"redirected to a 256 KiB path",
         file(base + "INIFile=" + std::string(256 << 10, 'p') + "\r\n"), true},
        // Either the mark is skipped or the file is named in a warning as ignored.
        {"byte-order mark", file(ByteOrderMark + base), true, "VARO.INI", Guards::Quoting},
        {"a folder",
         [](Case& c) {
             std::filesystem::remove(c.path("VARO.INI"));
             c.makeFolder("VARO.INI");
         },
         false, "VARO.INI", Guards::ExitStatus},
        {"unreadable",
         [](Case& c) {
             std::filesystem::permissions(c.path("VARO.INI"), std::filesystem::perms::none);
         },
         false, "VARO.INI", Guards::ExitStatus, true},
    };
}

} // namespace

TEST(Robustness, SettingsFilesRead) {
    const BaseSet& base = baseSet();
    CaseRunner runner("settings-read");
    for (const SettingsEdit& edit : settingsEdits()) {
        for (const std::string command : {"settings show", "qc"}) {
            // A run of a command after the start matters where the file is not read as such.
            if (command == "qc" && edit.valuesRead && edit.warning.empty()) {
                continue;
            }
            Case c = runner.start(edit.name + " / " + command, base.settings);
            c.write("data.dat", base.precipitation);
            edit.make(c);
            c.arguments = command == "qc" ? std::vector<std::string>{"qc", "data.dat"}
                                          : std::vector<std::string>{"settings", "show"};
            c.expect = Expect::Accepted;
            c.unprivileged = edit.unprivileged;
            c.guards = edit.guards;
            if (edit.valuesRead && command != "qc") {
                c.check = edit.warning.empty() ? showsFileValues : valuesOrWarning;
            } else if (!edit.valuesRead && !edit.warning.empty()) {
                c.mentions = {edit.warning};
            }
            runner.run(c);
        }
    }
    runner.report();
}

TEST(Robustness, SettingsFilesWritten) {
    const BaseSet& base = baseSet();
    CaseRunner runner("settings-written");
    const std::string userLine = "MyNote=keep me";
    struct Write {
        std::string name;
        std::function<void(Case&)> make;
        std::vector<std::string> arguments; // without the private settings file
        Expect expect;
        std::vector<std::string> mentions;
        Guards guards = Guards::None;
        bool unprivileged = false;
    };
    const std::vector<std::string> set{"--settings", "VARO.INI", "settings",
                                       "set",        "Thresh",   "0.5"};
    const auto file = [](std::string text) { return [text](Case& c) { settingsFile(c, text); }; };
    const std::vector<Write> writes{
        {"set on a valid file", file(base.settings + userLine + "\r\n"), set, Expect::Accepted},
        {"set on an empty file", file(""), set, Expect::Accepted},
        {"set on a missing file", [](Case& c) { std::filesystem::remove(c.path("VARO.INI")); }, set,
         Expect::Accepted},
        {"set on an unreadable file",
         [](Case& c) {
             std::filesystem::permissions(c.path("VARO.INI"), std::filesystem::perms::none);
         },
         set,
         Expect::Refused,
         {"VARO.INI"},
         Guards::SettingsWrite,
         true},
        {"set on a folder",
         [](Case& c) {
             std::filesystem::remove(c.path("VARO.INI"));
             c.makeFolder("VARO.INI");
         },
         set,
         Expect::Refused,
         {"VARO.INI"}},
        {"set on binary junk",
         file(std::string("\x7f"
                          "ELF\x02\x01\0\0\xff",
                          9)),
         set,
         Expect::Refused,
         {"VARO.INI"},
         Guards::SettingsWrite},
        {"set on a data file",
         [&](Case& c) { c.write("data.dat", base.precipitation); },
         {"--settings", "data.dat", "settings", "set", "Thresh", "0.5"},
         Expect::Refused,
         {"data.dat"},
         Guards::SettingsWrite},
        {"set the settings file to a data file",
         [&](Case& c) { c.write("data.dat", base.precipitation); },
         {"--settings", "VARO.INI", "settings", "set", "INIFile", "data.dat"},
         Expect::Refused,
         {"data.dat"},
         Guards::SettingsWrite},
        {"set a word as threshold",
         file(base.settings),
         {"--settings", "VARO.INI", "settings", "set", "Thresh", "abc"},
         Expect::Refused},
        {"set an unknown key",
         file(base.settings),
         {"--settings", "VARO.INI", "settings", "set", "NoSuchKey", "1"},
         Expect::Refused,
         {"NoSuchKey"}},
        {"set with a byte-order mark",
         file(ByteOrderMark + base.settings + userLine + "\r\n"),
         set,
         Expect::Either,
         {},
         Guards::Quoting},
        {"set with a 256 KiB line",
         file(base.settings + std::string(256 << 10, 'k') + "\r\n"),
         set,
         Expect::Either,
         {},
         Guards::Memory},
        {"reset in a folder under a file",
         [&](Case& c) { c.write("data.dat", base.precipitation); },
         {"--settings", "data.dat/VARO.INI", "settings", "reset"},
         Expect::Refused,
         {"data.dat/VARO.INI"},
         Guards::ExitStatus},
        {"reset on a folder",
         [](Case& c) {
             std::filesystem::remove(c.path("VARO.INI"));
             c.makeFolder("VARO.INI");
         },
         {"--settings", "VARO.INI", "settings", "reset"},
         Expect::Refused,
         {"VARO.INI"},
         Guards::ExitStatus},
    };
    for (const Write& write : writes) {
        Case c = runner.start(write.name, base.settings);
        write.make(c);
        c.privateSettings = false;
        c.arguments = write.arguments;
        c.expect = write.expect;
        c.mentions = write.mentions;
        c.guards = write.guards;
        c.unprivileged = write.unprivileged;
        c.writes = {"VARO.INI"};
        const std::string path = c.path("VARO.INI");
        const bool hadUserLine = readBack(path).find(userLine) != std::string::npos;
        // What a settings write keeps: the new value and every line of the user's.
        c.check = [path, userLine, hadUserLine](const ChildResult&) {
            const std::string text = readBack(path);
            std::vector<std::string> problems;
            if (text.find("Thresh=.5") == std::string::npos) {
                problems.push_back("the new threshold is not in the file: " + shown(text, 200));
            }
            if (hadUserLine && text.find(userLine) == std::string::npos) {
                problems.push_back("the user's own line is gone: " + shown(text, 200));
            }
            return problems;
        };
        runner.run(c);
    }
    runner.report();
}
