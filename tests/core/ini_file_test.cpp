#include "core/ini_file.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>
#include <vector>

using namespace varo::core;
using varo::testing::readFile;
using varo::testing::TempDir;

TEST(IniFile, AbsentFileOrKeyGivesTheDefault) {
    TempDir dir;
    EXPECT_EQ(readProfileString(dir.path("none.ini"), "VARO", "Thresh", "Missing", 30), "Missing");
    const auto path = dir.write("a.ini", "[OTHER]\r\nThresh=1\r\n[VARO]\r\nPrecN=12\r\n");
    EXPECT_EQ(readProfileString(path, "VARO", "Thresh", "Missing", 30), "Missing");
    EXPECT_EQ(readProfileString(path, "VARO", "PrecN", "Missing", 30), "12");
}

TEST(IniFile, KeysAndSectionsIgnoreCaseAndValuesAreTrimmedToTheBuffer) {
    TempDir dir;
    const auto path = dir.write("a.ini", "[varo]\nthresh =  0.5  \nDefaultDir=\"/home/x\"\nLong=" +
                                             std::string(40, 'a') + "\n");
    EXPECT_EQ(readProfileString(path, "VARO", "Thresh", "Missing", 30), "0.5");
    EXPECT_EQ(readProfileString(path, "VARO", "DefaultDir", "Missing", 200), "/home/x");
    EXPECT_EQ(readProfileString(path, "VARO", "Long", "Missing", 30), std::string(29, 'a'));
}

TEST(IniFile, WriteReplacesAKeyInPlaceAndKeepsEverythingElse) {
    TempDir dir;
    const auto path =
        dir.write("a.ini", "; note\r\n[VARO]\r\nA=1\r\nB=2\r\n\r\n[OTHER]\r\nA=9\r\n");
    ASSERT_TRUE(writeProfileString(path, "VARO", "a", "5"));
    EXPECT_EQ(readFile(path), "; note\r\n[VARO]\r\na=5\r\nB=2\r\n\r\n[OTHER]\r\nA=9\r\n");
    ASSERT_TRUE(writeProfileString(path, "VARO", "C", "3"));
    EXPECT_EQ(readFile(path), "; note\r\n[VARO]\r\na=5\r\nB=2\r\nC=3\r\n\r\n[OTHER]\r\nA=9\r\n");
}

TEST(IniFile, WriteCreatesFileFolderAndSection) {
    TempDir dir;
    const auto path = dir.path("sub/dir/VARO.INI");
    ASSERT_TRUE(writeProfileString(path, "VARO", "Splash", "False"));
    EXPECT_EQ(readFile(path), "[VARO]\r\nSplash=False\r\n");
    const auto other = dir.write("b.ini", "[OTHER]\r\nX=1\r\n[VARO]\r\n");
    ASSERT_TRUE(writeProfileString(other, "VARO", "Y", "2"));
    EXPECT_EQ(readFile(other), "[OTHER]\r\nX=1\r\n[VARO]\r\nY=2\r\n");
    const auto empty = dir.write("c.ini", "");
    ASSERT_TRUE(writeProfileString(empty, "VARO", "Y", "2"));
    EXPECT_EQ(readFile(empty), "[VARO]\r\nY=2\r\n");
}

TEST(IniFile, FailedWriteLeavesTheOldFileWhole) {
    TempDir dir;
    EXPECT_FALSE(writeProfileString("/proc/varo-cannot-write/VARO.INI", "VARO", "A", "1"));
}

TEST(IniFile, ByteOrderMarkIsSkippedOnReadAndKeptOnWrite) {
    TempDir dir;
    const auto path = dir.write("bom.ini", "\xEF\xBB\xBF[VARO]\r\nYearIndicator=360\r\n");
    EXPECT_EQ(readProfileString(path, "VARO", "YearIndicator", "Missing", 30), "360");
    EXPECT_FALSE(iniFileProblem(path, "VARO"));
    ASSERT_TRUE(writeProfileString(path, "VARO", "Thresh", "1"));
    EXPECT_EQ(readFile(path), "\xEF\xBB\xBF[VARO]\r\nYearIndicator=360\r\nThresh=1\r\n");
}

// A write goes only into an absent file, an empty one, or one holding the section; any
// other file stays byte for byte as it was.
TEST(IniFile, WritesNeverGoIntoAFileThatIsNoSettingsFile) {
    TempDir dir;
    std::filesystem::create_directories(dir.path("folder.ini"));
    ASSERT_EQ(::mkfifo(dir.path("pipe.ini").c_str(), 0600), 0);
    const std::string big = "[VARO]\r\n" + std::string(MaxIniFileSize, ';') + "\r\n";
    struct Case {
        std::string name;
        std::optional<std::string> content; // nothing for the folder
        std::optional<std::string> problem;
    };
    const std::vector<Case> cases = {
        {"data.dat", "1\r\n2\r\n", "it has no [VARO] section, so it is not a settings file"},
        {"other.ini", "[OTHER]\r\nA=1\r\n",
         "it has no [VARO] section, so it is not a settings file"},
        {"keys.ini", "Thresh=1\r\n", "it has no [VARO] section, so it is not a settings file"},
        {"big.ini", big, "it is larger than 1024 KiB, far larger than a settings file"},
        {"folder.ini", std::nullopt, "it is a folder"},
        {"pipe.ini", std::nullopt, "it is not a regular file"},
        {"empty.ini", "", std::nullopt},
        {"blank.ini", "\r\n  \r\n", std::nullopt},
        {"lower.ini", " [ varo ] \r\nA=1\r\n", std::nullopt},
        {"absent.ini", std::nullopt, std::nullopt},
    };
    for (const Case& c : cases) {
        const std::string path = c.content ? dir.write(c.name, *c.content) : dir.path(c.name);
        EXPECT_EQ(iniFileProblem(path, "VARO"), c.problem) << c.name;
        const bool written = writeProfileString(path, "VARO", "Thresh", "2");
        EXPECT_EQ(written, !c.problem) << c.name;
        if (c.problem && c.content) {
            EXPECT_EQ(readFile(path), *c.content) << c.name;
        }
        if (written) {
            EXPECT_EQ(readProfileString(path, "VARO", "Thresh", "Missing", 30), "2") << c.name;
        }
    }
    EXPECT_TRUE(std::filesystem::is_directory(dir.path("folder.ini")));
    EXPECT_EQ(readProfileString(dir.path("big.ini"), "VARO", "A", "Missing", 30), "Missing");
}
