#include "core/failure.hpp"
#include "dataprep/quality_check.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using varo::testing::TempDir;

namespace {
dataprep::QualityResults check(const std::string& path, float threshold = 0.0f) {
    core::NullProgress progress;
    return dataprep::checkQuality(path, -999.0, threshold, progress);
}
} // namespace

TEST(QualityCheck, FirstLineWarningByLengthAndLineEnd) {
    struct Case {
        const char* name;
        std::string content;
        bool warns;
    };
    const std::string fifteen(15, '1');
    const std::string sixteen(16, '1');
    const Case cases[] = {
        {"fifteen CRLF", fifteen + "\r\n2\r\n", false},
        {"sixteen CRLF", sixteen + "\r\n2\r\n", true},
        {"fifteen LF", fifteen + "\n2\n", false},
        {"sixteen LF", sixteen + "\n2\n", true},
        {"fifteen CR", fifteen + "\r2\r", false},
        {"sixteen CR", sixteen + "\r2\r", true},
        // Several short LF lines are not one long line.
        {"short LF lines", "1.5\n2.5\n3.5\n4.5\n5.5\n", false},
        {"columns", "1.000 2.000 3.000 4.000\n", true},
        {"no line end", sixteen, true},
        {"empty", "", false},
    };
    TempDir dir;
    for (const Case& c : cases) {
        EXPECT_EQ(dataprep::firstLineTooLong(dir.write("a.dat", c.content)), c.warns) << c.name;
    }
    EXPECT_FALSE(dataprep::firstLineTooLong(dir.path("absent.dat")));
}

TEST(QualityCheck, CountsExtremesMeanAndJump) {
    TempDir dir;
    const auto results = check(dir.write("a.dat", "1\r\n5\r\n-999\r\n2.5\r\n0\r\n"));
    EXPECT_EQ(results.total, 5);
    EXPECT_EQ(results.missing, 1);
    EXPECT_EQ(results.ok, 4);
    EXPECT_EQ(results.minimum, 0.0);
    EXPECT_EQ(results.maximum, 5.0);
    EXPECT_EQ(results.mean, 2.125);
    EXPECT_EQ(results.maxDiff, 4.0);
    EXPECT_EQ(results.maxDiffFirst, 1.0);
    EXPECT_EQ(results.maxDiffSecond, 5.0);
    EXPECT_EQ(results.aboveThreshold, 3);
}

TEST(QualityCheck, MissingValueBreaksTheChainOfDifferences) {
    TempDir dir;
    const auto results = check(dir.write("a.dat", "1\r\n-999\r\n5\r\n"));
    EXPECT_EQ(results.maxDiff, 0.0);
    EXPECT_EQ(results.maxDiffFirst, -999.0);
    EXPECT_EQ(results.maxDiffSecond, -999.0);
}

TEST(QualityCheck, FirstOfEqualJumpsIsKept) {
    TempDir dir;
    const auto results = check(dir.write("a.dat", "0 3 0 3"));
    EXPECT_EQ(results.maxDiff, 3.0);
    EXPECT_EQ(results.maxDiffFirst, 0.0);
    EXPECT_EQ(results.maxDiffSecond, 3.0);
}

TEST(QualityCheck, FixedStartingValuesStayForExtremeFiles) {
    TempDir dir;
    const auto high = check(dir.write("h.dat", "10000\r\n20000\r\n"));
    EXPECT_EQ(high.minimum, 9999.0);
    EXPECT_EQ(high.maximum, 20000.0);
    const auto low = check(dir.write("l.dat", "-10000\r\n-20000\r\n"));
    EXPECT_EQ(low.maximum, -9999.0);
}

TEST(QualityCheck, ThresholdIsComparedInSinglePrecisionAndStrictly) {
    TempDir dir;
    // 0.1000000016 lies above the single 0.1f as a double, but rounds to it: no event.
    EXPECT_EQ(check(dir.write("a.dat", "0.1 0.1000000016 0.2"), 0.1f).aboveThreshold, 1);
    EXPECT_EQ(check(dir.write("b.dat", "0 0.000001"), 0.0f).aboveThreshold, 1);
}

TEST(QualityCheck, MeanIsRoundedToFiveDecimalsHalfToEven) {
    TempDir dir;
    EXPECT_EQ(check(dir.write("a.dat", "0.000005 0.000005")).mean, 0.0);
    EXPECT_EQ(check(dir.write("b.dat", "1 2 2")).mean, 1.66667);
}

TEST(QualityCheck, EveryValueOfAMultiColumnFileCounts) {
    TempDir dir;
    EXPECT_EQ(check(dir.write("a.dat", "1 2 3\r\n4 5 6\r\n")).total, 6);
}

TEST(QualityCheck, EmptyFileFailsWith62AndAllMissingHasNoMean) {
    TempDir dir;
    try {
        check(dir.write("e.dat", ""));
        FAIL();
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), 62);
    }
    const auto missing = check(dir.write("m.dat", "-999 -999"));
    EXPECT_EQ(missing.ok, 0);
    EXPECT_FALSE(missing.mean.has_value());
}
