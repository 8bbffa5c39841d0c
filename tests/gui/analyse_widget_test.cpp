#include "gui/analyse_widget.hpp"
#include "gui/stats_select_widget.hpp"
#include "gui_test_support.hpp"

#include <QCheckBox>

using namespace varo;
using varo::testing::GuiFixture;

namespace {
std::string data(const std::string& name) {
    return std::string(VARO_TEST_DATA) + "/statistics/" + name;
}
} // namespace

TEST_F(GuiFixture, SummaryStatisticsScreenRunsAModelledFile) {
    window->goTo(screens::ScreenKey::AnalyseData);
    dir.write("run.SIM", varo::testing::readFile(data("ensemble3.SIM")));
    dialogs.pickedFiles.push_back(
        dir.write("run.OUT", varo::testing::readFile(data("ensemble3.OUT"))));
    click("SelectInputFile");
    dialogs.pickedFiles.push_back(dir.path("r.txt"));
    click("SaveButton");
    click("tb1Details");
    EXPECT_EQ(text("FileEnsembleSize"), "3");

    type("EndDateText", "31/12/1960");
    EXPECT_EQ(dialogs.lastText(), "Analysis end date must be later than analysis start date.");
    EXPECT_EQ(text("EndDateText"), "31/12/1990");
    type("StartDateText", "01/01/1962");
    type("EndDateText", "31/12/1962");
    EXPECT_EQ(text("NoOfDaysText"), "365");
    click("EnsembleMeanCheck");
    click("tb1Analyse");
    EXPECT_EQ(dialogs.lastText(), "Summary statistics saved to r.txt.");
    const std::string results = varo::testing::readFile(dir.path("r.txt"));
    EXPECT_EQ(results.rfind("SUMMARY STATISTICS FOR: run.OUT\r\nAnalysis Start Date: 01/01/1962\r\n"
                            "Analysis End Date: 31/12/1962\r\nEnsemble Member(s): ALL\r\n"
                            "Month,Mean,Maximum,Minimum,Variance,Sum\r\n",
                            0),
              0u);
}

TEST_F(GuiFixture, StatisticsSelectionKeepsEightTicksAndWritesTheStateOnLeaving) {
    gui::ScreenContext context{state, dialogs, window->runs(), {}, {}};
    gui::StatsSelectDialog dialog(context, window.get()); // a child: the helpers find its controls
    dialog.show();
    for (int i : {4, 6, 7, 30}) {
        click(QString("Check1_%1").arg(i));
    }
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{"You can select up to a maximum of eight statistics only."});
    EXPECT_FALSE(find<QCheckBox>("Check1_30")->isChecked());
    type("AddPercentText", "120");
    EXPECT_EQ(dialogs.lastText(), "Percentile must be a value between 0 and 100.");
    EXPECT_EQ(text("AddPercentText"), "95");
    type("NDayTotalText", "10");
    click("DeltaOption1");

    dialog.accept();
    EXPECT_EQ(state.statisticTable[3].flag, "Y");
    EXPECT_EQ(state.statisticTable[29].flag, "N");
    EXPECT_EQ(state.statisticParameters.nDayTotal, 10);
    EXPECT_EQ(state.statisticParameters.deltaKind, 2);
}
