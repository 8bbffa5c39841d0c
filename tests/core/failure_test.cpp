#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/progress.hpp"

#include <gtest/gtest.h>

using namespace varo::core;

TEST(ReportFailure, NumberOutsideTheTableShowsOnlyApologyAndDescription) {
    EXPECT_EQ(reportFailureText(1234, "x"),
              "Sorry - an error has occurred - please check all selections and try again.\r\nx");
}

TEST(ReportFailure, InputPastEndAddsTwoTableLines) {
    EXPECT_EQ(reportFailureText(62, "d"),
              "Sorry - an error has occurred - please check all selections and try again.\r\n"
              "Input past end of file.\r\nPlease check global program settings.\r\nd");
}

TEST(ReportFailure, SingularMatrixAndPathFailuresCarryTheirLines) {
    EXPECT_NE(
        reportFailureText(1306, "").find("\r\nMatrix is singular and cannot be inverted.\r\n"),
        std::string::npos);
    EXPECT_NE(reportFailureText(75, "").find(
                  "Unable to write to drive.\r\nPlease check default directory settings."),
              std::string::npos);
    EXPECT_EQ(failureTableLines(9), "File too large for program to handle.");
}

TEST(DatesHint, NamesTheFileItsLastLineAndTheDatesInUse) {
    struct Case {
        long lastLine;
        DatesInUse dates;
        std::string hint;
    };
    const std::string advice =
        ". Change the dates to match the file, or choose a file that covers them.";
    const Case cases[] = {
        {10957,
         {"01/01/1961", "31/12/2099", "01/01/1961", "31/12/2099", "fit", 366},
         "'/d/rain.dat' ends after line 10957, before the dates in use: record from 01/01/1961 "
         "to 31/12/2099, fit 01/01/1961 to 31/12/2099, year length 366" +
             advice},
        {3600,
         {"01/01/1961", "", "01/01/1971", "30/01/1971", "run", 360},
         "'/d/rain.dat' ends after line 3600, before the dates in use: record from 01/01/1961, "
         "run 01/01/1971 to 30/01/1971, year length 360" +
             advice},
        {0,
         {"01/01/1961", "31/12/1990", "", "", "fit", 365},
         "'/d/rain.dat' holds no value, before the dates in use: record from 01/01/1961 to "
         "31/12/1990, year length 365" +
             advice},
    };
    for (const Case& c : cases) {
        const Failure hinted = withDatesHint(PastEndFailure("/d/rain.dat", c.lastLine), c.dates);
        EXPECT_EQ(hinted.number(), 62);
        EXPECT_EQ(hinted.description(), c.hint);
        // The box keeps its required lines before the hint.
        EXPECT_EQ(reportFailureText(hinted.number(), hinted.description()),
                  "Sorry - an error has occurred - please check all selections and try again.\r\n"
                  "Input past end of file.\r\nPlease check global program settings.\r\n" +
                      c.hint);
    }
}

TEST(DatesHint, OnlyAFileEndingTooEarlyGetsIt) {
    const DatesInUse dates{"01/01/1961", "31/12/1990", "", "", "fit", 366};
    EXPECT_EQ(readingByDates(dates, [] { return 7; }), 7);
    try {
        readingByDates(dates, []() -> int { throw Failure(13, "'x' on line 2 is not a number."); });
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), "'x' on line 2 is not a number.");
    }
    try {
        readingByDates(dates, []() -> int { throw PastEndFailure("/d/a.dat", 4); });
        FAIL() << "no failure";
    } catch (const PastEndFailure&) {
        FAIL() << "the hint was not added";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), 62);
        EXPECT_EQ(failure.description().rfind("'/d/a.dat' ends after line 4, before", 0), 0u);
    }
}

TEST(StopFlag, OneConfirmationCancelsOneOperation) {
    StopFlag flag;
    EXPECT_FALSE(flag.checkStop());
    flag.request();
    EXPECT_TRUE(flag.checkStop());
    EXPECT_FALSE(flag.checkStop());
}

namespace {
class FlagProgress : public Progress {
public:
    StopFlag flag;
    void report(long, long, std::string_view) override {}
    bool stopRequested() override { return flag.checkStop(); }
};
} // namespace

TEST(Progress, ThrowIfStoppedThrowsCancelledOnceAfterARequest) {
    FlagProgress progress;
    EXPECT_NO_THROW(progress.throwIfStopped());
    progress.flag.request();
    EXPECT_THROW(progress.throwIfStopped(), Cancelled);
    EXPECT_NO_THROW(progress.throwIfStopped());
}

namespace {
class WarningsOnly final : public varo::core::Notifier {
public:
    void warning(std::string_view title, std::string_view text) override {
        shown = std::string(title) + ": " + std::string(text);
    }
    void information(std::string_view, std::string_view) override {}
    std::string shown;
};
} // namespace

TEST(Notifier, AnErrorThatDoesNotStopARunIsAWarningTitledErrorMessage) {
    WarningsOnly notifier;
    notifier.error("Part of the results cannot be computed.");
    EXPECT_EQ(notifier.shown, "Error Message: Part of the results cannot be computed.");
}
