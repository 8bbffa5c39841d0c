#include "core/failure.hpp"
#include "core/settings.hpp"
#include "screens/navigation.hpp"
#include "screens/screen_run.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <new>

using namespace varo;
using varo::testing::readFile;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

TEST(Hub, WorkScreensInTheOrderOfTheWork) {
    const auto& keys = screens::hubToolbar();
    ASSERT_EQ(keys.size(), 11u);
    EXPECT_EQ(keys[1].name, "tb2Quality");
    EXPECT_EQ(keys[5].name, "tb2WeatherGen");
    EXPECT_EQ(keys[10].name, "tb2TSPlot");
    screens::Hub hub;
    EXPECT_TRUE(hub.go(screens::ScreenKey::Quality));
    EXPECT_FALSE(hub.go(screens::ScreenKey::Quality));
    EXPECT_EQ(screens::findToolbarKey("calibrate")->key, screens::ScreenKey::Calibrate);
}

TEST(Intro, TickedSplashBoxWritesSplashFalseAlone) {
    TempDir dir;
    core::ProgramState state;
    screens::startProgram(state, dir.path("VARO.INI"));
    screens::IntroScreen intro(state);
    EXPECT_TRUE(intro.waits());
    intro.start();
    EXPECT_FALSE(varo::testing::fileExists(dir.path("VARO.INI")));
    intro.splashCheck = true;
    intro.start();
    EXPECT_EQ(readFile(dir.path("VARO.INI")), "[VARO]\r\nSplash=False\r\n");
}

TEST(Intro, SplashSettingOtherThanTrueHidesTheOpeningScreen) {
    TempDir dir;
    dir.write("VARO.INI", "[VARO]\r\nYearIndicator=366\r\nSplash=yes\r\n");
    core::ProgramState state;
    screens::startProgram(state, dir.path("VARO.INI"));
    EXPECT_FALSE(screens::IntroScreen(state).waits());
}

TEST(Questions, ExitAndCancelAskWithTheirOwnWords) {
    ScriptedDialogs dialogs;
    dialogs.answers = {true, false};
    EXPECT_TRUE(screens::confirmExit(dialogs));
    EXPECT_FALSE(screens::confirmCancel(dialogs));
    EXPECT_EQ(dialogs.questions[0], "Do you really want to exit VARO?");
    EXPECT_EQ(dialogs.questions[1], "Do you really want to cancel processing?");
}

TEST(GuardedRun, FailureStopAndCancelEachRunTheCleanup) {
    ScriptedDialogs dialogs;
    int cleanups = 0;
    const auto cleanup = [&] { ++cleanups; };
    EXPECT_EQ(screens::guardedRun(
                  dialogs, []() -> screens::RunOutcome { throw core::Failure(53, "x"); }, cleanup),
              screens::RunOutcome::Failed);
    EXPECT_EQ(dialogs.lastText(), core::reportFailureText(53, "x"));
    EXPECT_EQ(screens::guardedRun(
                  dialogs, []() -> screens::RunOutcome { throw core::RunStopped("Own words."); },
                  cleanup),
              screens::RunOutcome::Failed);
    EXPECT_EQ(dialogs.lastText(), "Own words.");
    const size_t shown = dialogs.messages.size();
    EXPECT_EQ(screens::guardedRun(
                  dialogs, []() -> screens::RunOutcome { throw core::Cancelled(); }, cleanup),
              screens::RunOutcome::Cancelled);
    EXPECT_EQ(dialogs.messages.size(), shown);
    EXPECT_EQ(cleanups, 3);
    EXPECT_EQ(screens::guardedRun(
                  dialogs, [] { return screens::RunOutcome::Done; }, cleanup),
              screens::RunOutcome::Done);
    EXPECT_EQ(cleanups, 3);
}

TEST(GuardedRun, RunningOutOfMemoryIsAFailureWithItsNumber) {
    ScriptedDialogs dialogs;
    int cleanups = 0;
    EXPECT_EQ(
        screens::guardedRun(
            dialogs, []() -> screens::RunOutcome { throw std::bad_alloc(); }, [&] { ++cleanups; }),
        screens::RunOutcome::Failed);
    EXPECT_EQ(cleanups, 1);
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0],
              "Sorry - an error has occurred - please check all selections and try again.\r\n"
              "There is not enough memory to finish this run. What it had written stays as it "
              "is.");
    EXPECT_EQ(screens::guardedRun(
                  dialogs, []() -> screens::RunOutcome { throw std::bad_array_new_length(); },
                  [&] { ++cleanups; }),
              screens::RunOutcome::Failed);
    EXPECT_EQ(cleanups, 2);
}
