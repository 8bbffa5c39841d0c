#include "screens/settings_override.hpp"
#include "support/scripted_dialogs.hpp"

#include <gtest/gtest.h>

using namespace varo;
using varo::testing::ScriptedDialogs;

namespace {
struct OverrideFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    OverrideFixture() { core::initialiseState(state); }
    bool set(const std::string& key, const std::string& value) {
        return screens::overrideSetting(state, dialogs, key, value);
    }
};
} // namespace

TEST_F(OverrideFixture, KeysIgnoreCaseAndUseTheScreenChecks) {
    EXPECT_TRUE(set("thresh", "0.5"));
    EXPECT_EQ(state.thresh, 0.5f);
    EXPECT_FALSE(set("BiasCorrection", "0"));
    EXPECT_EQ(dialogs.lastText(), "Bias correction must be positive and less than two.");
    EXPECT_TRUE(set("YearIndicator", "360"));
    EXPECT_EQ(state.yearLengthRow, 2);
    EXPECT_FALSE(set("YearIndicator", "364"));
    EXPECT_EQ(dialogs.lastText(), "YearIndicator must be 366, 365 or 360.");
    EXPECT_TRUE(set("GlobalSDate", "01/01/1971"));
    EXPECT_EQ(state.globalDays, 7305);
}

TEST_F(OverrideFixture, CouplingsOfTheModelOptionsHold) {
    EXPECT_TRUE(set("ApplyStepwise", "true"));
    EXPECT_TRUE(state.applyStepwise);
    EXPECT_TRUE(set("OptimisationChoice", "2"));
    EXPECT_FALSE(state.applyStepwise);
    EXPECT_TRUE(set("AICWanted", "False"));
    EXPECT_FALSE(state.aicWanted);
    EXPECT_FALSE(set("AllowNeg", "maybe"));
    EXPECT_EQ(dialogs.lastText(), "AllowNeg must be True or False.");
}

TEST_F(OverrideFixture, UnknownKeysNameTheKnownOnes) {
    EXPECT_FALSE(set("Colour", "red"));
    EXPECT_EQ(dialogs.lastText().rfind(
                  "There is no setting 'Colour'. The settings are YearIndicator,", 0),
              0u);
    EXPECT_EQ(screens::settingsFileKeys().size(), 18u);
}
