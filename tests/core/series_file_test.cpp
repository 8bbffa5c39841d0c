#include "core/failure.hpp"
#include "core/series_file.hpp"
#include "support/temp_dir.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>

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

TEST(SeriesReader, LinesAcrossReadChunksComeWhole) {
    TempDir dir;
    std::string row;
    for (int member = 0; member < 4000; ++member) {
        row += "1.500000      ";
    }
    SeriesReader reader(dir.write("wide.dat", row + "\r\n" + row + "\r\n7\r\n"));
    EXPECT_EQ(reader.readLine(), row);
    EXPECT_EQ(reader.readLine(), row); // crosses the end of the first 64 KiB read
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
    EXPECT_EQ(reader.readLine(), "1.000         2.000");
    EXPECT_EQ(failureNumber([&] { reader.readLine(); }), 62);
}

// Every token that is not a number in range is refused with the file, the line, the
// column and the token, quoted safely.
TEST(SeriesReader, RefusedTokensSayWhereAndWhat) {
    struct Case {
        std::string content;
        std::string expected; // after the path
        std::string quoted;   // what the message quotes
    };
    const std::string million(1'000'000, '1');
    const std::vector<Case> cases = {
        {"1\r\n  1e999\r\n", "' is a number beyond the range this program holds.",
         "'1e999' on line 2, column 3 of '"},
        {"-1e999", "' is a number beyond the range this program holds.",
         "'-1e999' on line 1, column 1 of '"},
        {std::string(400, '9') + "\r\n", "' is a number beyond the range this program holds.",
         std::string("'").append(40, '9') + "...' on line 1, column 1 of '"},
        {"1\r\n2\r\n" + million, "' is longer than 4096 characters, so it is not a number.",
         std::string("'").append(40, '1') + "...' on line 3, column 1 of '"},
        {"1 2 abc\r\n", "' is not a number.", "'abc' on line 1, column 5 of '"},
        {"1,-\r\n", "' is not a number.", "'-' on line 1, column 3 of '"},
        {"\r\n.\r\n", "' is not a number.", "'.' on line 2, column 1 of '"},
        {"1.2abc", "' is not a number.", "'1.2abc' on line 1, column 1 of '"},
        {"4\r5e\r\n", "' is not a number.", "'5e' on line 2, column 1 of '"},
        {"7\x01\x7f\r\n", "' is not a number.", "'7\\x01\\x7F' on line 1, column 1 of '"},
        {"\xEF\xBB\xBF x", "' is not a number.", "'x' on line 1, column 2 of '"},
        {"1\r\n\xEF\xBB\xBF"
         "2",
         "' is not a number.",
         "'\xEF\xBB\xBF"
         "2' on line 2, column 1 of '"},
    };
    TempDir dir;
    for (const Case& c : cases) {
        const auto path = dir.write("bad.dat", c.content);
        SeriesReader reader(path);
        std::string description;
        int number = 0;
        while (number == 0) {
            number = failureNumber([&] { reader.readNumber(); }, &description);
        }
        EXPECT_EQ(number, 13) << c.quoted;
        EXPECT_EQ(description, c.quoted + path + c.expected);
    }
}

TEST(SeriesReader, ByteOrderMarkAtTheStartIsSkipped) {
    TempDir dir;
    SeriesReader reader(dir.write("bom.dat", "\xEF\xBB\xBF"
                                             "1.5\r\n2\r\n"));
    EXPECT_EQ(reader.readNumber(), 1.5);
    EXPECT_EQ(reader.readNumber(), 2.0);
    EXPECT_TRUE(reader.atEnd());
    SeriesReader lines(dir.write("bom.SIM", "\xEF\xBB\xBF 3 \r\nname\r\n"));
    EXPECT_EQ(lines.readLine(), " 3 ");
    SeriesReader onlyMark(dir.write("mark.dat", "\xEF\xBB\xBF"));
    EXPECT_TRUE(onlyMark.atEnd());
}

TEST(SeriesReader, NumbersTooSmallForADoubleReadAsZero) {
    TempDir dir;
    SeriesReader reader(dir.write("tiny.dat", "1e-400 -1e-400 0." + std::string(3000, '0') + "1"));
    EXPECT_EQ(reader.readNumber(), 0.0);
    const double negative = reader.readNumber();
    EXPECT_EQ(negative, 0.0);
    EXPECT_TRUE(std::signbit(negative));
    EXPECT_EQ(reader.readNumber(), 0.0);
}

TEST(SeriesReader, LineLongerThanTheBoundIsRefusedWithoutBeingHeld) {
    TempDir dir;
    const std::string atBound(MaxLineLength, 'a');
    SeriesReader fits(dir.write("fits.txt", atBound + "\r\nnext\r\n"));
    EXPECT_EQ(fits.readLine(), atBound);
    EXPECT_EQ(fits.readLine(), "next");

    const auto path = dir.write("long.txt", "first\r\n" + std::string(10'000'000, 'b'));
    SeriesReader reader(path);
    reader.readLine();
    std::string description;
    EXPECT_EQ(failureNumber([&] { reader.readLine(); }, &description), 13);
    EXPECT_EQ(description, "Line 2 of '" + path + "' is longer than 65536 characters; it starts '" +
                               std::string(40, 'b') + "...'.");
}

TEST(ZoneNumber, TheZoneHoldsOneWholeNumberInRange) {
    struct Case {
        std::string line;
        int k;
        std::optional<double> value;
        std::string problem; // when there is no value
    };
    const std::vector<Case> cases = {
        {"-999.000      12.5          ", 1, -999.0, ""},
        {"-999.000      12.5          ", 2, 12.5, ""},
        {"1.000         2.000", 2, 2.0, ""},
        {"       13.500       13.500", 1, 13.5, ""}, // right-aligned 13-character columns
        {"       13.500       13.500", 2, 13.5, ""},
        {"-123456789.000-123456789.000", 2, -123456789.0, ""}, // a value filling its zone
        {"1e-400", 1, 0.0, ""},
        {"-             ", 1, {}, "holds '-', which is not a number"},
        {".             ", 1, {}, "holds '.', which is not a number"},
        {"1e999         ",
         1,
         {},
         "holds '1e999', which is a number beyond the range this "
         "program holds"},
        {"1.2abc        ", 1, {}, "holds '1.2abc', which is not a number"},
        {"1.0   2.0     ", 1, {}, "holds '1.0   2.0', which is not a number"},
        {"13.500       13.500       ",
         1,
         {},
         "holds '13.500       1', part of a number that runs over into column 2"},
        {"13.500       13.500       ",
         2,
         {},
         "holds '3.500', part of a number that runs over from column 1"},
        {"1.000\t\x01      ", 1, {}, "holds '1.000\\t\\x01', which is not a number"},
        {"1.000         ", 2, {}, "is empty where a number must stand"},
        {"1.000                       ", 2, {}, "is empty where a number must stand"},
    };
    for (const Case& c : cases) {
        double value = -1.0;
        const std::string problem = zoneProblem(c.line, c.k, value);
        if (c.value) {
            EXPECT_EQ(problem, "") << c.line;
            EXPECT_EQ(value, *c.value) << c.line;
        } else {
            EXPECT_EQ(problem, c.problem) << c.line;
        }
    }
}

TEST(ZoneNumber, RefusalNamesColumnCharactersLineAndFile) {
    std::string description;
    EXPECT_EQ(failureNumber([&] { zoneNumber("1.000         -", 2, 7, "run.OUT"); }, &description),
              13);
    EXPECT_EQ(description, "Column 2 (characters 15 to 28) of line 7 of 'run.OUT' holds '-', "
                           "which is not a number.");
    EXPECT_EQ(zoneNumber("1.000         -2.5", 2, 7, "run.OUT"), -2.5);
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

TEST(RefuseFolder, AFolderFailsAsCreatingItWouldAndAFileDoesNot) {
    TempDir dir;
    std::string description;
    EXPECT_EQ(failureNumber([&] { refuseFolder(dir.folder()); }, &description), 75);
    EXPECT_EQ(description, "Cannot open '" + dir.folder() + "': it is a folder.");
    EXPECT_EQ(failureNumber([&] { refuseFolder(dir.write("a.OUT", "x")); }), 0);
    EXPECT_EQ(failureNumber([&] { refuseFolder(dir.path("new.OUT")); }), 0);
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

TEST(SplitLines, AnyLineEndEndsALineAndALastLineNeedsNone) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
        {"", {}},
        {"a", {"a"}},
        {"a\r\n", {"a"}},
        {"a\r\nb", {"a", "b"}},
        {"a\rb\nc\r\n", {"a", "b", "c"}},
        {"a\n\nb", {"a", "", "b"}},
        {"\r\n\r", {"", ""}},
        {"a\n\r", {"a", ""}}, // LF then CR are two ends, not one
        {" a \t\r\n", {" a \t"}},
    };
    for (const auto& [text, lines] : cases) {
        EXPECT_EQ(splitLines(text), lines) << text;
    }
}
