#include "gui_test_support.hpp"

#include <QLabel>

using namespace varo;
using varo::testing::GuiFixture;

// The hub's scenario key opens the screen; its fields, ticks and option groups reach the
// record, a refused entry shows its message and the last good value, and a run ends with
// the "Results" box.
TEST_F(GuiFixture, ScenarioScreenRunsTheTickedTreatments) {
    window->showHome();
    EXPECT_TRUE(window->toolbarAction(screens::ScreenKey::Generate)->isEnabled());
    goTo(screens::ScreenKey::Generate);
    EXPECT_EQ(find<QLabel>("InFileText")->text(), "Not selected");
    EXPECT_FALSE(find<QAbstractButton>("AmountOption0")->isChecked());
    EXPECT_TRUE(find<QAbstractButton>("OccurenceOption0")->isChecked());

    dialogs.pickedFiles.push_back(dir.write("in.dat", "0\r\n2\r\n0\r\n4\r\n"));
    click("InFileButton");
    dialogs.pickedFiles.push_back(dir.path("out.OUT"));
    click("SaveAsButton");
    EXPECT_EQ(find<QLabel>("OutFileText")->text(), "out.OUT");

    type("AmountFactorText", "150");
    EXPECT_EQ(dialogs.lastText(), "Factor must be between -100 and 100.");
    EXPECT_EQ(text("AmountFactorText"), "0");

    click("AmountCheck");
    click("tb1Generate");
    EXPECT_EQ(dialogs.lastText(),
              "You are trying to apply an amount but have not selected which treatment to apply.");
    click("AmountOption0");
    type("AmountFactorText", "50");
    click("ConditionalCheck");
    click("tb1Generate");
    EXPECT_EQ(dialogs.messages.back().title, "Results");
    EXPECT_EQ(dialogs.lastText(), "Scenario Generated.\r\n4 days processed.");
    EXPECT_EQ(varo::testing::readFile(dir.path("out.OUT")),
              "0.000         \r\n3.000         \r\n0.000         \r\n6.000         \r\n");

    click("tb1Reset");
    EXPECT_FALSE(find<QAbstractButton>("AmountCheck")->isChecked());
    EXPECT_FALSE(find<QAbstractButton>("AmountOption0")->isChecked());
    EXPECT_EQ(text("AmountFactorText"), "0");
    EXPECT_EQ(find<QLabel>("InFileText")->text(), "Not selected");
}
