#include "core/program_state.hpp"

#include <gtest/gtest.h>

using namespace varo::core;

TEST(ProgramState, InitialSettingsAreTheFactoryValues) {
    ProgramState state;
    initialiseState(state);
    EXPECT_EQ(state.yearIndicator, 366);
    EXPECT_EQ(state.globalDays, 10957);
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
        if (row.flag == "Y") {
            selected += row.name + " ";
        }
    }
    EXPECT_EQ(selected, "Mean Maximum Minimum Variance Sum ");
    EXPECT_EQ(statisticIndex(state, "Med_Dry"), 30);
    EXPECT_EQ(state.statisticParameters.periodC.end, "31/12/2099");
    EXPECT_EQ(state.barColours[0], (Rgb{128, 0, 0}));
    EXPECT_EQ(state.frequencyColours[2], (Rgb{0, 0, 0}));
    EXPECT_EQ(state.piSingle, 3.1415927f);
}

TEST(ProgramState, YearIndicatorSetsRowAndLeapDays) {
    ProgramState state;
    initialiseState(state);
    setYearIndicator(state, 360);
    EXPECT_EQ(state.yearLengthRow, 2);
    EXPECT_EQ(state.leapExtraDays, 0);
    setYearIndicator(state, 365);
    EXPECT_EQ(state.yearLengthRow, 1);
    EXPECT_EQ(state.leapExtraDays, 0);
    setYearIndicator(state, 366);
    EXPECT_EQ(state.leapExtraDays, 1);
}
