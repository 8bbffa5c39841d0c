#include "dataprep/transform.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <limits>

using namespace varo;
using namespace varo::dataprep;
using varo::testing::failsWith;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

struct Written {
    std::string text;
    bool refused = false;
};

Written written(int code, double x, float threshold = 0.0f) {
    Written result;
    result.text = writtenTransformValue(code, x, threshold, -999.0, result.refused);
    return result;
}

struct TransformFixture : ::testing::Test {
    TempDir dir;
    core::NullProgress progress;

    std::string run(const std::string& input, const TransformSettings& settings,
                    TransformCounts* counts = nullptr) {
        const auto in = dir.write("in.dat", input);
        const auto out = dir.path("out.dat");
        const auto found = transformFile(in, out, settings, progress);
        if (counts != nullptr) {
            *counts = found;
        }
        return readFile(out);
    }

    static TransformSettings lag(int rows, bool wrap, int columns = 1) {
        TransformSettings settings;
        settings.code = transform::Lag;
        settings.lag = rows;
        settings.wrap = wrap;
        settings.columns = columns;
        return settings;
    }
};

// A stop requested before the n-th check.
class StopAfter final : public core::Progress {
public:
    explicit StopAfter(int checks) : left_(checks) {}
    void report(long, long, std::string_view) override {}
    bool stopRequested() override { return --left_ < 0; }

private:
    int left_;
};

} // namespace

TEST(TransformValue, RefusalLimitsLieExactlyWhereTheyAreSet) {
    namespace t = transform;
    struct Case {
        int code;
        double x;
        bool refused;
    };
    const Case cases[] = {
        {t::NaturalLog, 0.0, true},     {t::NaturalLog, -1e-300, true},
        {t::NaturalLog, 1e-300, false}, {t::Log10, 0.0, true},
        {t::Log10, 1e-300, false},      {t::Square, 1e100, true},
        {t::Square, -1e100, true},      {t::Square, 9.99e99, false},
        {t::SquareRoot, -1e-9, true},   {t::SquareRoot, 0.0, false},
        {t::FourthRoot, -1e-9, true},   {t::FourthRoot, 0.0, false},
        {t::Inverse, 0.0, true},        {t::Inverse, 1e-300, false},
        {t::Power4, 1e25, true},        {t::Power4, -1e25, true},
        {t::Power4, 9.99e24, false},    {t::Exp, 700.0, true},
        {t::Exp, 699.99, false},        {t::Exp, -1e6, false},
        {t::Power10, 300.0, true},      {t::Power10, 299.99, false},
        {t::Cube, 1e35, true},          {t::Cube, -1e35, true},
        {t::Cube, -9.99e34, false},     {t::CubeRoot, -1e300, false},
        {t::Binomial, -1e300, false},   {t::Copy, std::numeric_limits<double>::max(), false},
    };
    for (const Case& c : cases) {
        const Written w = written(c.code, c.x);
        EXPECT_EQ(w.refused, c.refused) << "code " << c.code << " x " << c.x;
        if (c.refused) {
            EXPECT_EQ(w.text, "-999 ") << "code " << c.code << " x " << c.x;
        }
    }
}

TEST(TransformValue, WrittenFormsFollowTheOperation) {
    namespace t = transform;
    EXPECT_EQ(written(t::NaturalLog, 1.0).text, "0.000000");
    EXPECT_EQ(written(t::Log10, 100.0).text, "2.000000");
    EXPECT_EQ(written(t::Square, -3.0).text, "9.000000");
    EXPECT_EQ(written(t::SquareRoot, 2.0).text, "1.414214");
    EXPECT_EQ(written(t::FourthRoot, 16.0).text, "2.000000");
    EXPECT_EQ(written(t::Inverse, -8.0).text, "-0.125000");
    EXPECT_EQ(written(t::Power4, 1.5).text, "5.062500");
    EXPECT_EQ(written(t::Exp, 0.0).text, "1.000000");
    EXPECT_EQ(written(t::Power10, 2.0).text, "100.000000");
    EXPECT_EQ(written(t::Cube, -2.0).text, "-8.000000");
    // The cube root keeps the sign and writes 0 in the general form.
    EXPECT_EQ(written(t::CubeRoot, -8.0).text, "-2.000000");
    EXPECT_EQ(written(t::CubeRoot, 27.0).text, "3.000000");
    EXPECT_EQ(written(t::CubeRoot, 0.0).text, " 0 ");
    EXPECT_EQ(written(t::Copy, 12.5).text, " 12.5 ");
    EXPECT_EQ(written(t::Copy, -0.005).text, "-.005 ");
    // e to the power 699.99 is a 304-digit number, written in full.
    const Written big = written(t::Exp, 699.99);
    EXPECT_EQ(big.text.size(), 305u + 7u);
    EXPECT_EQ(big.text.substr(big.text.size() - 7), ".000000");
}

TEST(TransformValue, BinomialComparesInSinglePrecisionAndStrictly) {
    EXPECT_EQ(written(transform::Binomial, 5.0, 5.0f).text, " 0 ");
    EXPECT_EQ(written(transform::Binomial, 5.000001, 5.0f).text, " 1 ");
    // 5.00000001 rounds to the single 5 and so is no event.
    EXPECT_EQ(written(transform::Binomial, 5.00000001, 5.0f).text, " 0 ");
    EXPECT_EQ(written(transform::Binomial, -3.0, -3.5f).text, " 1 ");
}

TEST_F(TransformFixture, RowsArePaddedToPrintZonesAndCounted) {
    TransformSettings settings;
    settings.code = transform::NaturalLog;
    settings.columns = 3;
    TransformCounts counts;
    const std::string out =
        run("1 0 -999\r\n2.718281828459045 123456789 -1\r\n", settings, &counts);
    EXPECT_EQ(out, "0.000000      -999          -999          \r\n"
                   "1.000000      18.631402     -999          \r\n");
    EXPECT_EQ(counts.rows, 2);
    EXPECT_EQ(counts.missing, 1);
    EXPECT_EQ(counts.notConverted, 2);

    settings.code = transform::Square;
    settings.columns = 1;
    // A value wider than a zone moves the line on to the next zone boundary.
    EXPECT_EQ(run("12345678.9\r\n", settings), "152415787501905.220000      \r\n");
}

TEST_F(TransformFixture, BackwardChangeRunsPerColumnAcrossMissingValues) {
    TransformSettings settings;
    settings.code = transform::BackwardChange;
    settings.columns = 2;
    TransformCounts counts;
    const std::string out =
        run("1 10\r\n3 -999\r\n-999 12\r\n7 12.5\r\n8 12\r\n", settings, &counts);
    EXPECT_EQ(out, "-999          -999          \r\n"
                   " 2            -999          \r\n"
                   "-999          -999          \r\n"
                   "-999           .5           \r\n"
                   " 1            -.5           \r\n");
    EXPECT_EQ(counts.missing, 2);
    EXPECT_EQ(counts.notConverted, 0);
}

TEST_F(TransformFixture, LagsMoveRowsUpOrDownAndFillOrWrap) {
    const std::string input = "1\r\n2\r\n3\r\n-999\r\n";
    EXPECT_EQ(run(input, lag(2, false)), " 3            \r\n"
                                         "-999          \r\n"
                                         "-999          \r\n"
                                         "-999          \r\n");
    TransformCounts counts;
    EXPECT_EQ(run(input, lag(2, true), &counts), " 3            \r\n"
                                                 "-999          \r\n"
                                                 " 1            \r\n"
                                                 " 2            \r\n");
    EXPECT_EQ(counts.rows, 4);
    EXPECT_EQ(counts.missing, 1);
    // Lag 0 is a plain copy in the general form, zone by zone.
    EXPECT_EQ(run("1.5 2\r\n3 4\r\n", lag(0, false, 2)), " 1.5           2            \r\n"
                                                         " 3             4            \r\n");
    // A negative lag moves rows down.
    const std::string pairs = "1 10\r\n2 20\r\n3 30\r\n";
    EXPECT_EQ(run(pairs, lag(-1, false, 2)), "-999          -999          \r\n"
                                             " 1             10           \r\n"
                                             " 2             20           \r\n");
    EXPECT_EQ(run(pairs, lag(-1, true, 2)), " 3             30           \r\n"
                                            " 1             10           \r\n"
                                            " 2             20           \r\n");
}

TEST_F(TransformFixture, LagsBeyondTheFileStopWithTheirMessages) {
    EXPECT_EQ(varo::testing::stopMessage([&] { run("1\r\n2\r\n3\r\n", lag(-3, true)); }),
              "Negative lag value is too 'large' for this file - file contains only 3 rows.");
    EXPECT_EQ(readFile(dir.path("out.dat")), "");
    EXPECT_EQ(run("1\r\n2\r\n3\r\n", lag(-2, true)), " 2            \r\n"
                                                     " 3            \r\n"
                                                     " 1            \r\n");
    EXPECT_TRUE(failsWith([&] { run("1\r\n2\r\n3\r\n", lag(4, false)); },
                          core::failure::InputPastEnd,
                          "holds only 3 rows, fewer than the lag of 4 rows."));
    EXPECT_TRUE(failsWith([&] { run("1\r\n2\r\n3\r\n", lag(4, false)); },
                          core::failure::InputPastEnd, "is incomplete"));
    EXPECT_EQ(readFile(dir.path("out.dat")), "");
}

TEST_F(TransformFixture, ExtractionWritesOneColumnUnpaddedAndCountsOnlyItsMissingValues) {
    TransformSettings settings;
    settings.code = transform::NaturalLog; // ignored while extracting
    settings.columns = 3;
    settings.extract = true;
    settings.extractColumn = 2;
    TransformCounts counts;
    const std::string out = run("-999 1.25 3\r\n4 -999 -999\r\n7 0 9\r\n", settings, &counts);
    EXPECT_EQ(out, " 1.25 \r\n-999 \r\n 0 \r\n");
    EXPECT_EQ(counts.rows, 3);
    EXPECT_EQ(counts.missing, 1);
    EXPECT_EQ(transformReportText(counts, true, -999.0),
              "3 rows processed.\r\n1 missing value(s) in extracted ensemble.");
}

TEST_F(TransformFixture, ValuesThatDoNotFillRowsOrAreNoNumbersFailAndSayTheOutputIsIncomplete) {
    TransformSettings settings;
    settings.code = transform::Copy;
    settings.columns = 3;
    EXPECT_TRUE(failsWith([&] { run("1 2 3\r\n4 5\r\n", settings); }, core::failure::InputPastEnd,
                          "ends part way through row 2"));
    EXPECT_TRUE(failsWith([&] { run("1 2 3\r\n4 5\r\n", settings); }, core::failure::InputPastEnd,
                          "\r\nThe output file '" + dir.path("out.dat") + "' is incomplete"));
    EXPECT_EQ(readFile(dir.path("out.dat")), " 1             2             3            \r\n");
    // A word fails naming its line.
    settings.code = transform::Exp;
    settings.columns = 1;
    EXPECT_TRUE(failsWith([&] { run("1\r\n2\r\nx7\r\n", settings); }, core::failure::TypeMismatch,
                          "'x7' on line 3"));
}

TEST_F(TransformFixture, ACancelLeavesTheRowsAlreadyWritten) {
    TransformSettings settings;
    settings.code = transform::Copy;
    const auto in = dir.write("in.dat", "1\r\n2\r\n3\r\n");
    StopAfter stop(2);
    EXPECT_THROW(transformFile(in, dir.path("out.dat"), settings, stop), core::Cancelled);
    EXPECT_EQ(readFile(dir.path("out.dat")), " 1            \r\n 2            \r\n");
}

TEST_F(TransformFixture, ANegativeLagCannotStoreMoreThan52000Rows) {
    std::string rows;
    for (long i = 0; i <= LagStoreRows; ++i) {
        rows += "1\n";
    }
    EXPECT_TRUE(failsWith([&] { run(rows, lag(-1, false)); }, core::failure::FileTooLarge));
    rows.resize(rows.size() - 2);
    TransformCounts counts;
    run(rows, lag(-1, false), &counts);
    EXPECT_EQ(counts.rows, LagStoreRows);
}

TEST(TransformReport, LinesFollowTheCounts) {
    EXPECT_EQ(transformReportText({10, 0, 0}, false, -999.0),
              "10 rows processed.\r\nNo missing values in file.");
    EXPECT_EQ(transformReportText({10, 2, 3}, false, -99.5),
              "10 rows processed.\r\n2 missing value(s) in file (not transformed).\r\n"
              "3 value(s) could not be converted (overflow would occur),\r\n"
              " - therefore written to file as -99.5 (current missing code).");
    EXPECT_EQ(transformReportText({4, 0, 0}, true, -999.0),
              "4 rows processed.\r\nNo missing values in extracted ensemble.");
}

TEST(TransformOptions, InCodeOrderAndFoundByName) {
    const auto& options = transformOptions();
    for (size_t i = 0; i < options.size(); ++i) {
        EXPECT_EQ(options[i].code, static_cast<int>(i) + 1);
    }
    EXPECT_EQ(findTransformOption("unboxcox")->code, transform::UnBoxCox);
    EXPECT_EQ(findTransformOption("log"), nullptr);
}

TEST(DescriptionCopy, LandsBesideTheInputUnderTheOutputsName) {
    TempDir dir;
    const auto in = dir.write("run.OUT", "1\r\n");
    dir.write("run.SIM", "description\r\n");
    std::filesystem::create_directories(dir.path("elsewhere"));
    EXPECT_EQ(descriptionCopyTarget(in, dir.path("elsewhere/new.dat")), dir.path("new.SIM"));
    EXPECT_EQ(copyDescriptionFile(in, dir.path("elsewhere/new.dat")), dir.path("new.SIM"));
    EXPECT_EQ(readFile(dir.path("new.SIM")), "description\r\n");
    EXPECT_FALSE(varo::testing::fileExists(dir.path("elsewhere/new.SIM")));
    // Copying the description onto itself leaves it alone.
    EXPECT_EQ(copyDescriptionFile(in, dir.path("elsewhere/run.OUT")), dir.path("run.SIM"));
    EXPECT_EQ(readFile(dir.path("run.SIM")), "description\r\n");
    EXPECT_TRUE(
        failsWith([&] { copyDescriptionFile(dir.write("plain.dat", "1\r\n"), dir.path("x.dat")); },
                  core::failure::FileNotFound, "plain.SIM"));
}
