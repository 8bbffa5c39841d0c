#include "screens/stats_select_screen.hpp"
#include "support/scripted_dialogs.hpp"

#include <gtest/gtest.h>

using namespace varo;
using screens::StatsSelectScreen;
using Period = screens::StatsSelectScreen::Period;
using varo::testing::ScriptedDialogs;

namespace {
struct StatsSelectFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    StatsSelectFixture() { core::initialiseState(state); }
};
} // namespace

TEST_F(StatsSelectFixture, OpensOnTheStateAndRefusesANinthTick) {
    StatsSelectScreen screen(state);
    EXPECT_EQ(screen.tickCount(), 5); // Mean, Maximum, Minimum, Variance, Sum
    for (int box : {4, 6, 7}) {
        EXPECT_TRUE(screen.click(dialogs, box, true));
    }
    EXPECT_TRUE(dialogs.errors().empty());
    EXPECT_FALSE(screen.click(dialogs, 30, true));
    EXPECT_FALSE(screen.check1[30]);
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{"You can select up to a maximum of eight statistics only."});
    // Clearing one makes room again.
    EXPECT_TRUE(screen.click(dialogs, 1, false));
    EXPECT_TRUE(screen.click(dialogs, 30, true));
    EXPECT_EQ(screen.tickCount(), 8);
}

TEST_F(StatsSelectFixture, ParameterFieldsRefuseAndRestoreTheLastGoodValue) {
    StatsSelectScreen screen(state);
    struct Case {
        screens::TextField* field;
        bool (StatsSelectScreen::*check)(screens::Dialogs&);
        std::string text;
        bool passes;
        std::string message;
    };
    const std::string percent = "Percentile must be a value between 0 and 100.";
    const std::string nDay = "N-day total must be a value between 2 and 100.";
    const std::string threshold = "Threshold must be a value.";
    const Case cases[] = {
        {&screen.addPercentText, &StatsSelectScreen::checkAddPercent, "100", true, ""},
        {&screen.addPercentText, &StatsSelectScreen::checkAddPercent, "100.5", false, percent},
        {&screen.addPercentText, &StatsSelectScreen::checkAddPercent, "-1", false, percent},
        {&screen.precPotText, &StatsSelectScreen::checkPrecPot, "0", true, ""},
        {&screen.precPotText, &StatsSelectScreen::checkPrecPot, "abc", false, percent},
        {&screen.nDayTotalText, &StatsSelectScreen::checkNDayTotal, "2", true, ""},
        {&screen.nDayTotalText, &StatsSelectScreen::checkNDayTotal, "1", false, nDay},
        {&screen.nDayTotalText, &StatsSelectScreen::checkNDayTotal, "101", false, nDay},
        {&screen.poThreshText, &StatsSelectScreen::checkPoThresh, "-3.5", true, ""},
        {&screen.pbtThreshText, &StatsSelectScreen::checkPbtThresh, "", false, threshold},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const std::string before = c.field->lastGood;
        dialogs.messages.clear();
        c.field->text = c.text;
        EXPECT_EQ((screen.*c.check)(dialogs), c.passes);
        EXPECT_EQ(c.field->text, c.passes ? c.text : before);
        EXPECT_EQ(dialogs.errors(),
                  c.passes ? std::vector<std::string>{} : std::vector<std::string>{c.message});
    }
}

TEST_F(StatsSelectFixture, PeriodChecksNameTheirPeriod) {
    StatsSelectScreen screen(state);
    auto refusal = [&](Period period, bool start, const std::string& text) {
        dialogs.messages.clear();
        auto& field = start ? screen.startText(period) : screen.endText(period);
        field.text = text;
        const bool ok =
            start ? screen.checkStart(dialogs, period) : screen.checkEnd(dialogs, period);
        return ok ? std::string() : dialogs.lastText();
    };
    EXPECT_EQ(refusal(Period::Base, true, "31/02/1961"), "Base start date is invalid.");
    EXPECT_EQ(screen.baseStartText.text, "01/01/1961");
    EXPECT_EQ(refusal(Period::Base, true, "31/12/1990"),
              "Base start date must be earlier than base end date.");
    EXPECT_EQ(refusal(Period::Base, true, "01/01/1940"), "Base period must be less than 50 years.");
    EXPECT_EQ(refusal(Period::Base, true, "01/01/1941"), ""); // 49 calendar years
    EXPECT_EQ(refusal(Period::Base, false, "1990"), "Base end date is invalid.");
    EXPECT_EQ(refusal(Period::Base, false, "01/01/1941"),
              "Base end date must be later than base start date.");
    EXPECT_EQ(refusal(Period::Base, false, "01/01/1991"),
              "Base period must be less than 50 years.");

    EXPECT_EQ(refusal(Period::A, true, "x"), "Period A start date is invalid.");
    EXPECT_EQ(refusal(Period::A, true, "01/01/2041"),
              "Period A start date must be earlier than Period A end date.");
    EXPECT_EQ(refusal(Period::A, true, "31/12/1990"),
              "Period A period must be less than 50 years.");
    EXPECT_EQ(refusal(Period::A, false, "01/01/2061"), "Period A must be less than 50 years.");
    EXPECT_EQ(refusal(Period::A, false, "01/01/2060"), "");
    EXPECT_EQ(refusal(Period::B, false, "01/01/2041"),
              "Period B end date must be later than period B start date.");
    EXPECT_EQ(refusal(Period::C, false, "99/12/2099"), "Period C end date is invalid.");
    EXPECT_EQ(refusal(Period::C, true, "01/01/2021"),
              "Period C period must be less than 50 years.");
}

TEST_F(StatsSelectFixture, LeavingWritesTheChoicesIntoTheState) {
    StatsSelectScreen screen(state);
    screen.click(dialogs, 1, false);
    screen.click(dialogs, 13, true);
    screen.addPercentText.text = "99";
    screen.checkAddPercent(dialogs);
    screen.nDayTotalText.text = "2.5"; // a whole number of days, ties to even
    screen.checkNDayTotal(dialogs);
    screen.poThreshText.text = "oops"; // refused: the last good value stays
    screen.checkPoThresh(dialogs);
    screen.periodBStartText.text = "1/2/2042";
    screen.checkStart(dialogs, Period::B);
    screen.deltaOption = 1;
    screen.leave();
    EXPECT_FALSE(state.statisticTable[0].selected);
    EXPECT_TRUE(state.statisticTable[12].selected);
    EXPECT_TRUE(state.statisticTable[1].selected);
    const auto& p = state.statisticParameters;
    EXPECT_EQ(p.percentile, 99.0f);
    EXPECT_EQ(p.nDayTotal, 2);
    EXPECT_EQ(p.peaksOverThreshold, 0.0f);
    EXPECT_EQ(p.periodB.start, (varo::core::Date{1, 2, 2042}));
    EXPECT_EQ(p.deltaKind, 2);
    // A new visit shows what was left.
    StatsSelectScreen again(state);
    EXPECT_FALSE(again.check1[1]);
    EXPECT_EQ(again.addPercentText.text, "99");
    EXPECT_EQ(again.deltaOption, 1);
}
