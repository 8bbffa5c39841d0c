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
