// The parts the screens share: the fit-period checks, the file choice and extension tests,
// the predictor picker and the numeric range check of a field.
#include "screens/file_choice.hpp"
#include "screens/fit_period.hpp"
#include "screens/predictor_picker.hpp"
#include "screens/text_field.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;

TEST(FitPeriod, ChecksInOrderAgainstEachOtherAndTheRecord) {
    core::ProgramState state;
    core::initialiseState(state);
    EXPECT_EQ(screens::fitStartRefusal("31/02/1961", "31/12/1990", state),
              "Start date is invalid - it must be in the format dd/mm/yyyy.");
    EXPECT_EQ(screens::fitStartRefusal("01/01/1991", "31/12/1990", state),
              "End date must be later than start date.");
    EXPECT_EQ(screens::fitStartRefusal("31/12/1960", "31/12/1990", state),
              "Fit start date must be later than record start date.");
    EXPECT_EQ(screens::fitStartRefusal("01/01/1961", "01/01/1961", state), std::nullopt);
    EXPECT_EQ(screens::fitEndRefusal("01/01/1961", "", state),
              "End date is invalid - it must be in the format dd/mm/yyyy.");
    EXPECT_EQ(screens::fitEndRefusal("01/01/1961", "01/01/1991", state),
              "Fit end date must be earlier than record end date.");
    // A start that is not a date leaves the end to the record check alone.
    EXPECT_EQ(screens::fitEndRefusal("x", "31/12/1990", state), std::nullopt);
}

// Only the extension as written or in lower case counts, as the screens have always tested.
TEST(FileChoice, ExtensionsInUpperOrLowerCaseOnly) {
    const std::pair<const char*, bool> parameterFiles[] = {
        {"/m/model.PAR", true},   {"model.par", true}, {".PAR", true}, {"model.Par", false},
        {"model.PAR.txt", false}, {"PAR", false},      {"", false},    {"rain.dat.par", true},
    };
    for (const auto& [path, expected] : parameterFiles) {
        EXPECT_EQ(screens::isParameterFile(path), expected) << path;
    }
    EXPECT_TRUE(screens::isOutFile("run.out"));
    EXPECT_FALSE(screens::isOutFile("run.Out"));
}

TEST(FileChoice, ShowsTheBareNameOnceChosenAndItsOwnTextBefore) {
    screens::ChosenFile file;
    EXPECT_EQ(file.text, "Not selected");
    EXPECT_FALSE(file.chosen());
    file.choose("/data/station/rain.dat");
    EXPECT_EQ(file.text, "rain.dat");
    EXPECT_EQ(file.path, "/data/station/rain.dat");
    file.clear("Not entered");
    EXPECT_EQ(file.text, "Not entered");
    EXPECT_TRUE(file.path.empty());
}

TEST(PredictorPicker, ListsRegularFilesWithoutHiddenOnesSortedWithoutCase) {
    varo::testing::TempDir dir;
    for (const char* name : {"b.dat", "A.dat", ".hidden", "c.DAT"}) {
        dir.write(name, "1\r\n");
    }
    std::filesystem::create_directory(dir.path("sub"));
    screens::PredictorPicker picker;
    picker.selected = {"left over"};
    picker.setFolder(dir.folder());
    EXPECT_EQ(picker.files, (std::vector<std::string>{"A.dat", "b.dat", "c.DAT"}));
    EXPECT_EQ(picker.count(), 0u);
    picker.setFolder(dir.path("none"));
    EXPECT_TRUE(picker.files.empty());
}

// A selection takes the list's order, whatever the order of the clicks; repeats and items
// past the end are passed over. Paths given by name keep their order.
TEST(PredictorPicker, SelectionInListOrder) {
    varo::testing::TempDir dir;
    for (const char* name : {"a.dat", "b.dat", "c.dat"}) {
        dir.write(name, "1\r\n");
    }
    screens::PredictorPicker picker;
    picker.setFolder(dir.folder());
    picker.selectItems({2, 0, 2, 7});
    EXPECT_EQ(picker.selected, (std::vector<std::string>{dir.path("a.dat"), dir.path("c.dat")}));
    EXPECT_TRUE(picker.isSelected(2));
    EXPECT_FALSE(picker.isSelected(1));
    picker.choose({dir.path("c.dat"), dir.path("a.dat")});
    EXPECT_EQ(picker.selected.front(), dir.path("c.dat"));
    EXPECT_EQ(picker.count(), 2u);

    varo::testing::ScriptedDialogs dialogs;
    dialogs.pickedFiles.push_back(dir.folder());
    picker.pickFolder(dialogs);
    EXPECT_EQ(dialogs.startFolders, std::vector<std::string>{dir.folder()});
    EXPECT_EQ(picker.count(), 0u);
}

TEST(PredictorDescription, TheEarliestCodeOfThePredictorTable) {
    core::ProgramState state;
    core::initialiseState(state);
    const std::pair<const char*, const char*> cases[] = {
        {"mslp.dat", "Mean sea level pressure"},
        {"OBS_P__F_1961.DAT", "Surface airflow strength"},
        {"gcm_p500.dat", "500 hPa geopotential height"},
        {"temp_p500.dat", "Mean temperature at 2m"}, // "temp" stands before "p500"
        {"rain.dat", ""},
    };
    for (const auto& [name, description] : cases) {
        EXPECT_EQ(screens::predictorDescription(state, name), description) << name;
    }
}

// The limits belong to a closed range and not to an open one; text that is no number gets
// its own message; a refused entry takes its last good value back.
TEST(RangeCheck, BoundsAndMessages) {
    using core::RangeEnds;
    struct Case {
        const char* text;
        RangeEnds ends;
        const char* message;
    };
    const Case cases[] = {
        {"2", RangeEnds::Included, nullptr},    {"10", RangeEnds::Included, nullptr},
        {"10.01", RangeEnds::Included, "out"},  {"1.99", RangeEnds::Included, "out"},
        {"2", RangeEnds::Excluded, "out"},      {"10", RangeEnds::Excluded, "out"},
        {"9.99", RangeEnds::Excluded, nullptr}, {"x", RangeEnds::Included, "none"},
        {"", RangeEnds::Excluded, "none"},      {"1e999", RangeEnds::Included, "none"},
    };
    for (const Case& c : cases) {
        varo::testing::ScriptedDialogs dialogs;
        screens::TextField field("5");
        field.text = c.text;
        const bool ok = field.check(dialogs, screens::rangeCheck(2, 10, "none", "out", c.ends));
        EXPECT_EQ(ok, c.message == nullptr) << c.text;
        EXPECT_EQ(field.text, ok ? c.text : "5") << c.text;
        EXPECT_EQ(dialogs.lastText(), c.message ? c.message : "") << c.text;
    }
}
