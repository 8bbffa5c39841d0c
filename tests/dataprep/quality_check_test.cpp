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

// What a check finds in small files: counts, extremes (from the fixed starting values of
// 9999 and -9999), the mean rounded to five decimals half to even, and the largest jump
// between neighbours (the first of equal ones, none across a missing value).
TEST(QualityCheck, ResultsOfSmallFiles) {
    struct Case {
        const char* content;
        long total;
        long missing;
        double minimum;
        double maximum;
        double mean;
        double maxDiff;
        double maxDiffFirst;
        double maxDiffSecond;
    };
    const Case cases[] = {
        {"1\r\n5\r\n-999\r\n2.5\r\n0\r\n", 5, 1, 0.0, 5.0, 2.125, 4.0, 1.0, 5.0},
        {"1\r\n-999\r\n5\r\n", 3, 1, 1.0, 5.0, 3.0, 0.0, -999.0, -999.0},
        {"0 3 0 3", 4, 0, 0.0, 3.0, 1.5, 3.0, 0.0, 3.0},
        {"10000\r\n20000\r\n", 2, 0, 9999.0, 20000.0, 15000.0, 10000.0, 10000.0, 20000.0},
        {"-10000\r\n-20000\r\n", 2, 0, -20000.0, -9999.0, -15000.0, 10000.0, -10000.0, -20000.0},
        {"1 2 3\r\n4 5 6\r\n", 6, 0, 1.0, 6.0, 3.5, 1.0, 1.0, 2.0},
        {"0.000005 0.000005", 2, 0, 0.000005, 0.000005, 0.0, 0.0, -999.0, -999.0},
        {"1 2 2", 3, 0, 1.0, 2.0, 1.66667, 1.0, 1.0, 2.0},
    };
    TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        const auto found = check(dir.write("a.dat", c.content));
        EXPECT_EQ(found.total, c.total);
        EXPECT_EQ(found.missing, c.missing);
        EXPECT_EQ(found.ok, c.total - c.missing);
        EXPECT_EQ(found.minimum, c.minimum);
        EXPECT_EQ(found.maximum, c.maximum);
        EXPECT_EQ(found.mean, c.mean);
        EXPECT_EQ(found.maxDiff, c.maxDiff);
        EXPECT_EQ(found.maxDiffFirst, c.maxDiffFirst);
        EXPECT_EQ(found.maxDiffSecond, c.maxDiffSecond);
    }
    EXPECT_EQ(check(dir.write("a.dat", "1\r\n5\r\n-999\r\n2.5\r\n0\r\n")).aboveThreshold, 3);
}

TEST(QualityCheck, ThresholdIsComparedInSinglePrecisionAndStrictly) {
    TempDir dir;
    // 0.1000000016 lies above the single 0.1f as a double, but rounds to it: no event.
    EXPECT_EQ(check(dir.write("a.dat", "0.1 0.1000000016 0.2"), 0.1f).aboveThreshold, 1);
    EXPECT_EQ(check(dir.write("b.dat", "0 0.000001"), 0.0f).aboveThreshold, 1);
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
