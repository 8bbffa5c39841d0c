#include "gui_test_support.hpp"

#include <QLabel>

using namespace varo;
using varo::testing::GuiFixture;

TEST_F(GuiFixture, QualityScreenChecksAPickedFile) {
    window->showHome();
    window->goTo(screens::ScreenKey::Quality);
    click("tb1Check");
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0], "You must select a file to check first.");

    dialogs.pickedFiles.push_back(dir.write("rain.dat", "1\r\n-999\r\n4\r\n"));
    click("SelectFileButton");
    EXPECT_EQ(find<QLabel>("SelectFileText")->text(), "rain.dat");
    // The results stand on the screen while the closing box is still open.
    QString totalWhileBoxOpen;
    dialogs.onMessage = [&](const varo::testing::ShownMessage&) {
        totalWhileBoxOpen = text("TotalText");
    };
    click("tb1Check");
    EXPECT_EQ(totalWhileBoxOpen, "3");
    EXPECT_EQ(dialogs.messages.back().title, "Quality check complete");
    EXPECT_EQ(dialogs.lastText(), "3 values processed in rain.dat.");
    EXPECT_EQ(text("TotalText"), "3");
    EXPECT_EQ(text("MissingText"), "1");
    EXPECT_EQ(text("MeanText"), "2.5");
    EXPECT_EQ(text("MaxDiff"), "0");

    click("tb1Reset");
    EXPECT_EQ(text("TotalText"), "");
    EXPECT_EQ(find<QLabel>("SelectFileText")->text(), "Not selected");
}
