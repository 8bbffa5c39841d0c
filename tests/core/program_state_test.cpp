#include "core/program_state.hpp"

#include <gtest/gtest.h>

using namespace varo::core;

TEST(ProgramState, InitialSettingsAreTheFactoryValues) {
    ProgramState state;
    initialiseState(state);
    EXPECT_EQ(state.yearIndicator, 366);
    EXPECT_EQ(globalDays(state), 10957);
    EXPECT_EQ(state.globalMissingCode, -999.0);
    EXPECT_FALSE(state.applyStepwise);
    EXPECT_TRUE(state.aicWanted);
    EXPECT_EQ(state.optimisationChoice, 1);
    EXPECT_EQ(state.precN, 12);
    EXPECT_FLOAT_EQ(state.conditionalThresh, 0.5f);
    EXPECT_TRUE(state.splash);
    EXPECT_EQ(state.settingsFile, state.defaultSettingsFile);
    EXPECT_NE(state.settingsFile.find("varo/VARO.INI"), std::string::npos);
}

TEST(ProgramState, VocabularyTables) {
    ProgramState state;
    initialiseState(state);
    ASSERT_EQ(state.predictorTable.size(), 30u);
    EXPECT_EQ(state.predictorTable[0].code, "temp");
    EXPECT_EQ(state.predictorTable[29].description, "Solar radiation");
    EXPECT_EQ(state.periodNames[1], "January");
    EXPECT_EQ(state.periodNames[13], "Winter");
    EXPECT_EQ(state.periodNames[17], "Annual");
    EXPECT_EQ(state.monthAbbreviations[12], "Dec");
    ASSERT_EQ(state.statisticTable.size(), 30u);
    std::string selected;
    for (const auto& row : state.statisticTable) {
        if (row.selected) {
            selected += row.name + " ";
        }
    }
    EXPECT_EQ(selected, "Mean Maximum Minimum Variance Sum ");
    EXPECT_EQ(statisticIndex(state, "Med_Dry"), 30);
    EXPECT_EQ(formatDate(state.statisticParameters.periodC.end), "31/12/2099");
    EXPECT_EQ(state.barColours[0], (Rgb{128, 0, 0}));
    EXPECT_EQ(state.frequencyColours[2], (Rgb{0, 0, 0}));
    EXPECT_EQ(state.piSingle, 3.1415927f);
}

TEST(ProgramState, CalendarFollowsTheYearLength) {
    struct Case {
        int yearIndicator;
        int row;
        int leapDays;
    };
    ProgramState state;
    initialiseState(state);
    for (const Case& c : {Case{360, 2, 0}, Case{365, 1, 0}, Case{366, 1, 1}}) {
        state.yearIndicator = static_cast<std::int16_t>(c.yearIndicator);
        EXPECT_EQ(calendarInForce(state).yearLengthRow, c.row) << c.yearIndicator;
        EXPECT_EQ(calendarInForce(state).leapExtraDays, c.leapDays) << c.yearIndicator;
    }
}

// Real calendar days of the standard period, both ends counted, in any year length.
TEST(ProgramState, GlobalDaysFollowTheStandardDates) {
    ProgramState state;
    initialiseState(state);
    state.yearIndicator = 360;
    state.globalSDate = {1, 1, 1961};
    state.globalEDate = {1, 1, 1961};
    EXPECT_EQ(globalDays(state), 1);
    state.globalEDate = {1, 3, 1964}; // over a leap day
    EXPECT_EQ(globalDays(state), 3 * 365 + 31 + 29 + 1);
}

TEST(ModelTransformation, CodesAndTheirOptions) {
    for (int code = TransformNone; code <= TransformBoxCox; ++code) {
        const auto setting = ModelTransformation::fromNumber(static_cast<float>(code));
        ASSERT_TRUE(setting.code()) << code;
        EXPECT_EQ(transformationOption(*setting.code()), code - 1);
        EXPECT_EQ(transformationOfOption(code - 1), *setting.code());
    }
    // A number that names no code is kept as it is and transforms nothing.
    for (float number : {0.0f, 2.5f, 6.0f, -1.0f}) {
        const auto setting = ModelTransformation::fromNumber(number);
        EXPECT_FALSE(setting.code()) << number;
        EXPECT_EQ(setting.codeInForce(), TransformNone) << number;
        EXPECT_EQ(setting.number(), number);
    }
    EXPECT_EQ(ProgramState{}.modelTransformation.number(), 1.0f);
}
