#include "core/failure.hpp"
#include "core/series_file.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo::core;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {
int failureNumber(const std::function<void()>& action, std::string* description = nullptr) {
    try {
        action();
    } catch (const Failure& failure) {
        if (description != nullptr) {
            *description = failure.description();
        }
        return failure.number();
    }
    return 0;
}
} // namespace

TEST(SeriesReader, BlanksLineEndsAndCommasSeparateNumbers) {
    TempDir dir;
    const auto path = dir.write("a.dat", "1.5 2\r\n-3,4e2\n\t5\r6\r\n");
    SeriesReader reader(path);
    for (double expected : {1.5, 2.0, -3.0, 400.0, 5.0, 6.0}) {
        EXPECT_EQ(reader.readNumber(), expected);
    }
    EXPECT_TRUE(reader.atEnd());
}

TEST(SeriesReader, ReadingPastTheEndIsFailure62AfterTheLastLineWithAValue) {
    TempDir dir;
    const auto path = dir.write("a.dat", "1\r\n2\r\n\r\n");
    SeriesReader reader(path);
    reader.readNumber();
    reader.readNumber();
    try {
        reader.readNumber();
        FAIL() << "no failure";
    } catch (const PastEndFailure& failure) {
        EXPECT_EQ(failure.number(), 62);
        EXPECT_EQ(failure.path(), path);
        EXPECT_EQ(failure.lastLine(), 2);
        EXPECT_EQ(failure.description(), "Reading past the end of '" + path + "' (after line 2).");
    }
    SeriesReader empty(dir.write("empty.dat", ""));
    EXPECT_EQ(failureNumber([&] { empty.readNumber(); }), 62);
    SeriesReader lines(dir.write("lines.dat", "a b\nc\n"));
    lines.readLine();
    lines.readLine();
    try {
        lines.readLine();
        FAIL() << "no failure";
    } catch (const PastEndFailure& failure) {
        EXPECT_EQ(failure.lastLine(), 2);
    }
}

TEST(SeriesReader, NonNumericTokenNamesFileLineAndToken) {
    TempDir dir;
    const auto path = dir.write("bad.dat", "1\r\n2\r\n3x\r\n");
    SeriesReader reader(path);
    reader.readNumber();
    reader.readNumber();
    std::string description;
    EXPECT_EQ(failureNumber([&] { reader.readNumber(); }, &description), 13);
    EXPECT_NE(description.find("'3x'"), std::string::npos);
    EXPECT_NE(description.find("line 3"), std::string::npos);
    EXPECT_NE(description.find(path), std::string::npos);
}

TEST(SeriesReader, WordsAreNotNumbers) {
    TempDir dir;
    for (const char* token : {"nan", "inf", "-", "abc", "1.2.3"}) {
        SeriesReader reader(dir.write("w.dat", token));
        EXPECT_EQ(failureNumber([&] { reader.readNumber(); }), 13) << token;
    }
}

TEST(SeriesReader, MissingFileAndFolderFail) {
    TempDir dir;
    EXPECT_EQ(failureNumber([&] { SeriesReader reader(dir.path("none.dat")); }), 53);
    EXPECT_EQ(failureNumber([&] { SeriesReader reader(dir.folder()); }), 53);
}

TEST(SeriesReader, LineCountSurvivesChunkBoundaries) {
    TempDir dir;
    std::string content;
    for (int i = 0; i < 300000; ++i) {
        content += "12.345\r\n";
    }
    content += "oops\r\n";
    SeriesReader reader(dir.write("long.dat", content));
    for (int i = 0; i < 300000; ++i) {
        ASSERT_EQ(reader.readNumber(), 12.345);
    }
    std::string description;
    EXPECT_EQ(failureNumber([&] { reader.readNumber(); }, &description), 13);
    EXPECT_NE(description.find("line 300001"), std::string::npos) << description;
}

TEST(SeriesReader, LinesLongerThanAReadChunkComeWhole) {
    TempDir dir;
    std::string row;
    for (int member = 0; member < 20000; ++member) {
        row += "1.500000      ";
    }
    SeriesReader reader(dir.write("wide.dat", row + "\r\n" + row + "\r\n7\r\n"));
    EXPECT_EQ(reader.readLine(), row);
    EXPECT_EQ(reader.readLine(), row);
    EXPECT_EQ(reader.readNumber(), 7.0);
    EXPECT_EQ(reader.lineNumber(), 4);
}

TEST(SeriesReader, NumberThenLinesReadsFollowingLines) {
    TempDir dir;
    SeriesReader reader(
        dir.write("p.par", " 2 \r\n#FALSE#\r\nname.dat\r\n1.000         2.000\r\n"));
    EXPECT_EQ(reader.readNumber(), 2.0);
    EXPECT_EQ(reader.readLine(), "#FALSE#");
    EXPECT_EQ(reader.readLine(), "name.dat");
    const std::string row = reader.readLine();
    EXPECT_EQ(zoneField(row, 1), 1.0);
    EXPECT_EQ(zoneField(row, 2), 2.0);
    EXPECT_EQ(zoneField(row, 3), 0.0);
    EXPECT_EQ(failureNumber([&] { reader.readLine(); }), 62);
}

TEST(ZoneField, TakesTheLeadingNumberOfFourteenCharacters) {
    const std::string line = "-999.000      12.5abc       1234567890123.5";
    EXPECT_EQ(zoneField(line, 1), -999.0);
    EXPECT_EQ(zoneField(line, 2), 12.5);
    EXPECT_EQ(zoneField(line, 3), 1234567890123.0); // the field holds only 14 characters
}

TEST(TextFileWriter, ZonesAndCrLfLineEnds) {
    TempDir dir;
    const auto path = dir.path("out.txt");
    {
        TextFileWriter writer(path);
        writer.writeZoned("1.000");
        writer.writeZoned("-999.000");
        writer.endLine();
        writer.writeLine("next");
        writer.close();
    }
    EXPECT_EQ(readFile(path), "1.000         -999.000      \r\nnext\r\n");
}

TEST(TextFileWriter, UnwritableFolderFails) {
    EXPECT_NE(failureNumber([] { TextFileWriter writer("/nonexistent-folder/x.txt"); }), 0);
}

TEST(FileNames, BareNameAndFolder) {
    EXPECT_EQ(bareFileName("/a/b/c.dat"), "c.dat");
    EXPECT_EQ(bareFileName("c.dat"), "c.dat");
    EXPECT_EQ(folderOf("/a/b/c.dat"), "/a/b");
    EXPECT_EQ(folderOf("c.dat"), "");
}

TEST(FileNames, AbsolutePathIsTidiedAgainstTheWorkingFolder) {
    const std::filesystem::path here = std::filesystem::current_path();
    EXPECT_EQ(absolutePath("data/./rain.dat"), (here / "data/rain.dat").string());
    EXPECT_EQ(absolutePath("data/../rain.dat"), (here / "rain.dat").string());
    EXPECT_EQ(absolutePath("/a/b/../c.dat"), "/a/c.dat");
    EXPECT_EQ(absolutePath(""), "");
}

TEST(FirstLine, EndsAtWhicheverLineEndComesFirst) {
    const std::pair<std::string, std::string> cases[] = {
        {"12.5\r\n3\r\n", "12.5"},
        {"12.5\n3\n", "12.5"},
        {"12.5\r3\r", "12.5"},
        {"12.5\n\r3", "12.5"},
        {"\r\n12.5\r\n", ""},
        {"12.5", "12.5"},
        {"", ""},
        {"1 2 3\t4\n5", "1 2 3\t4"},
    };
    TempDir dir;
    for (const auto& [content, first] : cases) {
        EXPECT_EQ(readFirstLine(dir.write("a.dat", content)), first) << content;
    }
    EXPECT_EQ(readFirstLine(dir.path("absent.dat")), std::nullopt);
}

TEST(FirstLine, FileWithoutLineEndsIsReadOnlyToTheLimit) {
    TempDir dir;
    const auto path = dir.write("long.dat", std::string(100000, '7'));
    EXPECT_EQ(readFirstLine(path, 16), std::string(16, '7'));
    EXPECT_EQ(readFirstLine(path)->size(), 4096u);
}
