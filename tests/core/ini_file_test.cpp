#include "core/ini_file.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

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
    const auto other = dir.write("b.ini", "[OTHER]\r\nX=1\r\n");
    ASSERT_TRUE(writeProfileString(other, "VARO", "Y", "2"));
    EXPECT_EQ(readFile(other), "[OTHER]\r\nX=1\r\n[VARO]\r\nY=2\r\n");
}

TEST(IniFile, FailedWriteLeavesTheOldFileWhole) {
    TempDir dir;
    EXPECT_FALSE(writeProfileString("/proc/varo-cannot-write/VARO.INI", "VARO", "A", "1"));
}
