#include "gui_test_support.hpp"

#include "core/settings.hpp"
#include "gui/settings_widget.hpp"

#include <QDialog>
#include <QRadioButton>

using namespace varo;
using varo::testing::GuiFixture;

TEST_F(GuiFixture, RefusedThresholdShowsItsMessageAndTheLastGoodValue) {
    window->showHome();
    window->openSettings();
    type("RainThreshText", "1000.5");
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0], "Threshold must be positive and less than 1000.");
    EXPECT_EQ(text("RainThreshText"), "0");
    type("RainThreshText", "1000");
    EXPECT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(state.thresh, 1000.0f);
}

TEST_F(GuiFixture, AKeyLeavesTheFocusedEntryFirst) {
    window->showHome();
    window->openSettings();
    QLineEdit* end = find<QLineEdit>("EDateText");
    end->setFocus();
    end->setText("01/01/1950");
    click("menuBack");
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{"End date should be later than start date."});
    EXPECT_EQ(window->currentPage()->objectName(), "Home");
    EXPECT_EQ(core::formatDate(state.globalEDate), "31/12/1990");
}

TEST_F(GuiFixture, BackStaysOnARefusedEntry) {
    window->showHome();
    window->openSettings();
    auto* settings = window->currentPage();
    find<QLineEdit>("MissingCodeText")->setText("abc");
    click("menuBack");
    EXPECT_EQ(dialogs.lastText(), "Missing data identifier must be a number.");
    EXPECT_EQ(window->currentPage(), settings);
    EXPECT_EQ(text("MissingCodeText"), "-999");
}

TEST_F(GuiFixture, SaveWritesTheOptionChosen) {
    window->showHome();
    window->openSettings();
    click("YearDays2");
    EXPECT_EQ(state.yearIndicator, 360);
    click("menuSave");
    EXPECT_EQ(dialogs.messages.back().title, "Settings Saved");
    EXPECT_EQ(core::readSetting(dir.path("VARO.INI"), "YearIndicator"), "360");
}

TEST_F(GuiFixture, AdvancedSettingsCouplesStepwiseAndOptimisation) {
    window->showHome();
    std::unique_ptr<QDialog> dialog(window->advancedSettingsDialog());
    dialog->show();
    auto* stepwise = dialog->findChild<QAbstractButton*>("StepwiseCheck");
    auto* simplex = dialog->findChild<QRadioButton*>("OptimisationOption1");
    auto* leastSquares = dialog->findChild<QRadioButton*>("OptimisationOption0");
    QTest::mouseClick(simplex, Qt::LeftButton);
    EXPECT_EQ(state.optimisationChoice, 2);
    QTest::mouseClick(stepwise, Qt::LeftButton);
    EXPECT_TRUE(state.applyStepwise);
    EXPECT_TRUE(leastSquares->isChecked());
    EXPECT_EQ(state.optimisationChoice, 1);

    auto* bias = dialog->findChild<QLineEdit*>("BiasText");
    bias->setFocus();
    bias->setText("0");
    emit bias->editingFinished();
    EXPECT_EQ(dialogs.lastText(), "Bias correction must be positive and less than two.");
    EXPECT_EQ(bias->text(), "1");
}

// Deleted while shown, the dialog's focused field loses its focus after the record behind
// it is gone: that late edit must reach neither the record nor the settings in force.
TEST_F(GuiFixture, AdvancedSettingsDeletedWhileEditingLeavesTheSettingsFile) {
    window->showHome();
    const std::string inForce = state.settingsFile;
    std::unique_ptr<QDialog> dialog(window->advancedSettingsDialog());
    dialog->show();
    QApplication::setActiveWindow(dialog.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    auto* file = dialog->findChild<QLineEdit*>("SettingsFileText");
    file->setFocus();
    file->setText(QString::fromStdString(dir.path("elsewhere.ini")));
    dialog.reset();
    EXPECT_EQ(state.settingsFile, inForce);
}
