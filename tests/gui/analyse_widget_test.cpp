#include "gui/analyse_widget.hpp"
#include "gui/stats_select_widget.hpp"
#include "gui_test_support.hpp"

#include <QCheckBox>
#include <QLabel>

using namespace varo;
using varo::testing::GuiFixture;

namespace {
std::string data(const std::string& name) {
    return std::string(VARO_TEST_DATA) + "/statistics/" + name;
}
} // namespace

TEST_F(GuiFixture, SummaryStatisticsScreenRunsAModelledFile) {
    window->showHome();
    window->goTo(screens::ScreenKey::AnalyseData);
    click("tb1Analyse");
    EXPECT_EQ(dialogs.lastText(), "You must select a data file first.");

    dir.write("run.SIM", varo::testing::readFile(data("ensemble3.SIM")));
    dialogs.pickedFiles.push_back(
        dir.write("run.OUT", varo::testing::readFile(data("ensemble3.OUT"))));
    click("SelectInputFile");
    dialogs.pickedFiles.push_back(dir.path("r.txt"));
    click("SaveButton");
    EXPECT_EQ(find<QLabel>("SaveFileText")->text().toStdString(), dir.path("r.txt"));
    click("tb1Details");
    EXPECT_EQ(text("FileEnsembleSize"), "3");
    EXPECT_EQ(text("FileYearLength"), "366");

    type("EndDateText", "31/12/1960");
    EXPECT_EQ(dialogs.lastText(), "Analysis end date must be later than analysis start date.");
    EXPECT_EQ(text("EndDateText"), "31/12/1990");
    type("StartDateText", "01/01/1962");
    type("EndDateText", "31/12/1962");
    EXPECT_EQ(text("NoOfDaysText"), "365");
    type("EnsembleNumber", "0");
    EXPECT_EQ(dialogs.lastText(), "Ensemble member cannot be zero or greater than 100.");
    click("EnsembleMeanCheck");
    click("tb1Analyse");
    EXPECT_EQ(dialogs.lastText(), "Summary statistics saved to r.txt.");
    const std::string results = varo::testing::readFile(dir.path("r.txt"));
    EXPECT_EQ(results.rfind("SUMMARY STATISTICS FOR: run.OUT\r\nAnalysis Start Date: 01/01/1962\r\n"
                            "Analysis End Date: 31/12/1962\r\nEnsemble Member(s): ALL\r\n"
                            "Month,Mean,Maximum,Minimum,Variance,Sum\r\n",
                            0),
              0u);
    EXPECT_NE(results.find("Standard Deviations of Results"), std::string::npos);
}

TEST_F(GuiFixture, StatisticsSelectionKeepsEightTicksAndWritesTheStateOnLeaving) {
    gui::ScreenContext context{state, dialogs, window->runs(), {}, {}};
    gui::StatsSelectDialog dialog(context, window.get());
    dialog.show();
    auto box = [&](int i) { return dialog.findChild<QCheckBox*>(QString("Check1_%1").arg(i)); };
    for (int i : {4, 6, 7}) {
        QTest::mouseClick(box(i), Qt::LeftButton, {}, QPoint(8, box(i)->height() / 2));
    }
    EXPECT_TRUE(dialogs.errors().empty());
    QTest::mouseClick(box(30), Qt::LeftButton, {}, QPoint(8, box(30)->height() / 2));
    EXPECT_EQ(dialogs.lastText(), "You can select up to a maximum of eight statistics only.");
    EXPECT_FALSE(box(30)->isChecked());

    QLineEdit* percent = dialog.findChild<QLineEdit*>("AddPercentText");
    percent->setFocus();
    percent->selectAll();
    QTest::keyClicks(percent, "120");
    emit percent->editingFinished();
    EXPECT_EQ(dialogs.lastText(), "Percentile must be a value between 0 and 100.");
    EXPECT_EQ(percent->text(), "95");
    QLineEdit* nDay = dialog.findChild<QLineEdit*>("NDayTotalText");
    nDay->setFocus();
    nDay->selectAll();
    QTest::keyClicks(nDay, "10");
    emit nDay->editingFinished();
    QTest::mouseClick(dialog.findChild<QAbstractButton*>("DeltaOption1"), Qt::LeftButton, {},
                      QPoint(8, 8));

    dialog.accept();
    EXPECT_EQ(state.statisticTable[3].flag, "Y");
    EXPECT_EQ(state.statisticTable[29].flag, "N");
    EXPECT_EQ(state.statisticParameters.nDayTotal, 10);
    EXPECT_EQ(state.statisticParameters.deltaKind, 2);
}
