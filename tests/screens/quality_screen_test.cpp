#include "screens/quality_screen.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

namespace {
struct QualityFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    core::NullProgress progress;
    TempDir dir;
    QualityFixture() { core::initialiseState(state); }
};
} // namespace

TEST_F(QualityFixture, NoFileChosenIsRefused) {
    screens::QualityScreen screen(state);
    EXPECT_EQ(screen.check(dialogs, progress), screens::RunOutcome::Refused);
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0], "You must select a file to check first.");
    EXPECT_EQ(screen.file.text, "Not selected");
}

TEST_F(QualityFixture, ResultsFillTheFieldsAndTheClosingBoxNamesTheFile) {
    screens::QualityScreen screen(state);
    dialogs.pickedFiles.push_back(dir.write("rain.dat", "0.5\r\n-999\r\n12.25\r\n0\r\n"));
    screen.pickFile(dialogs);
    EXPECT_EQ(screen.file.text, "rain.dat");
    EXPECT_EQ(screen.check(dialogs, progress), screens::RunOutcome::Done);
    EXPECT_EQ(screen.totalText, "4");
    EXPECT_EQ(screen.missingText, "1");
    EXPECT_EQ(screen.totalOkText, "3");
    EXPECT_EQ(screen.minText, "0");
    EXPECT_EQ(screen.maxText, "12.25");
    EXPECT_EQ(screen.meanText, "4.25");
    EXPECT_EQ(screen.maxDiffText, "12.25");
    EXPECT_EQ(screen.maxDiffVal1Text, "12.25");
    EXPECT_EQ(screen.maxDiffVal2Text, "0");
    EXPECT_EQ(screen.threshCountText, "2");
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "Quality check complete");
    EXPECT_EQ(dialogs.messages[0].text, "4 values processed in rain.dat.");
}

TEST_F(QualityFixture, LongFirstLineWarnsBeforeTheCheckGoesOn) {
    screens::QualityScreen screen(state);
    screen.file.choose(dir.write("wide.dat", "1.000 2.000 3.000 4.000\r\n"));
    EXPECT_EQ(screen.check(dialogs, progress), screens::RunOutcome::Done);
    ASSERT_EQ(dialogs.messages.size(), 2u);
    EXPECT_EQ(dialogs.messages[0].title, "Warning Message");
    EXPECT_EQ(dialogs.messages[0].text,
              "File may contain multiple columns or non-Windows line breaks / carriage returns. "
              "This may cause problems in VARO later.");
    EXPECT_EQ(screen.totalText, "4");
}

TEST_F(QualityFixture, AllMissingFileFailsAfterTheFieldsBeforeTheMean) {
    screens::QualityScreen screen(state);
    screen.file.choose(dir.write("m.dat", "-999\r\n-999\r\n"));
    EXPECT_EQ(screen.check(dialogs, progress), screens::RunOutcome::Failed);
    EXPECT_EQ(screen.totalText, "2");
    EXPECT_EQ(screen.maxText, "-9999");
    EXPECT_EQ(screen.meanText, "");
    EXPECT_EQ(screen.threshCountText, "");
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0].rfind("Sorry - an error has occurred", 0), 0u);
}

TEST_F(QualityFixture, ResetClearsAndShowsTheMissingCodeAfresh) {
    screens::QualityScreen screen(state);
    screen.file.choose(dir.write("a.dat", "1\r\n"));
    screen.check(dialogs, progress);
    state.globalMissingCode = -99.5;
    screen.reset();
    EXPECT_EQ(screen.file.text, "Not selected");
    EXPECT_EQ(screen.totalText, "");
    EXPECT_EQ(screen.missingCodeText, "-99.5");
}

namespace {
class StoppingProgress : public core::Progress {
public:
    void report(long, long, std::string_view) override {}
    bool stopRequested() override { return true; }
};
} // namespace

TEST_F(QualityFixture, CancelShowsNothing) {
    screens::QualityScreen screen(state);
    screen.file.choose(dir.write("a.dat", "1\r\n2\r\n"));
    StoppingProgress stopping;
    EXPECT_EQ(screen.check(dialogs, stopping), screens::RunOutcome::Cancelled);
    EXPECT_TRUE(dialogs.messages.empty());
}
