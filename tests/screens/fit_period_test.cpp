#include "screens/fit_period.hpp"
#include "screens/folder_listing.hpp"
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

TEST(FolderListing, RegularFilesWithoutHiddenOnesSortedWithoutCase) {
    varo::testing::TempDir dir;
    for (const char* name : {"b.dat", "A.dat", ".hidden", "c.DAT"}) {
        dir.write(name, "1\r\n");
    }
    std::filesystem::create_directory(dir.path("sub"));
    EXPECT_EQ(screens::folderDataFiles(dir.folder()),
              (std::vector<std::string>{"A.dat", "b.dat", "c.DAT"}));
    EXPECT_TRUE(screens::folderDataFiles(dir.path("none")).empty());
}
