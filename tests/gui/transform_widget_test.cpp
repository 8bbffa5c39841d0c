#include "gui_test_support.hpp"

#include <QLabel>

using namespace varo;
using varo::testing::GuiFixture;

TEST_F(GuiFixture, TransformScreenRunsTheChosenOption) {
    window->goTo(screens::ScreenKey::Transform);
    EXPECT_EQ(find<QAbstractButton>("WrapCheck")->text(),
              "Wrap numbers round or fill gaps with missing code (-999) ");
    EXPECT_EQ(find<QAbstractButton>("Option1_11")->toolTip(), "Cube root ");

    dialogs.pickedFiles.push_back(dir.write("in.dat", "-8 27\r\n0 -999\r\n"));
    click("SelectFileButton");
    dialogs.pickedFiles.push_back(dir.path("out.dat"));
    click("SaveFileButton");
    EXPECT_EQ(find<QLabel>("SaveFileText")->text(), "out.dat");
    click("Option1_11");
    type("Colstxt", "2");
    click("tb1Transform");
    EXPECT_EQ(dialogs.messages.back().title, "Transformation complete");
    EXPECT_EQ(varo::testing::readFile(dir.path("out.dat")),
              "-2.000000     3.000000      \r\n 0            -999          \r\n");

    type("Colstxt", "0");
    EXPECT_EQ(dialogs.lastText(), "Number of columns must be a value between 1 and 100.");
    EXPECT_EQ(text("Colstxt"), "2");
}
